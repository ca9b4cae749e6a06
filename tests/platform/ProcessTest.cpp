#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Finish.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace orvane::test {
namespace {

/// Programs that every system has: this one itself, which lists its tests, and none.
struct ProcessTest : testing::Test {
    ProcessEnd list(const std::string& tests) {
        process.start(self(), {"--gtest_list_tests", "--gtest_filter=" + tests});
        return finish(process.end(20s));
    }
    static std::filesystem::path self() {
        return QCoreApplication::applicationFilePath().toStdString();
    }

    QtClock clock;
    QtProcess process{clock};
};

TEST_F(ProcessTest, TellsWhatItSaysAndItsExitCode) {
    const ProcessEnd listed = list("ProcessTest.TellsWhatItSays*");
    EXPECT_FALSE(listed.fault) << *listed.fault;
    EXPECT_EQ(listed.code, 0);
    EXPECT_NE(listed.said.find("  TellsWhatItSaysAndItsExitCode"), std::string::npos);
    EXPECT_EQ(list("none").said.find("TellsWhatItSays"), std::string::npos) << "the one before";
}

TEST_F(ProcessTest, WhatCannotBeStartedIsToldByBoth) {
    process.start("no-such-program", {});
    const std::string bytes(100, 'x');
    runEventLoopUntil([&] { return finish(process.write(bytes, 1s)).has_value(); });
    const Fault fault = finish(process.end(20s)).fault;
    EXPECT_TRUE(fault && fault->starts_with("it cannot be started: ")) << fault.value_or("none");
    EXPECT_EQ(process.find("no-such-program"), std::filesystem::path());
    // this one is beside "this program", the tests
    EXPECT_EQ(process.find(self().stem().string()).filename(), self().filename());
}

} // namespace
} // namespace orvane::test
