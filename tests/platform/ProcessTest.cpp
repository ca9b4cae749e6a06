#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Finish.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace orvane::test {
namespace {

/// Programs that every system has: this one itself, which lists its tests, and none.
struct ProcessTest : testing::Test {
    ProcessEnd run(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   Ticks patience = 20s) {
        process.start(program, arguments);
        Task<ProcessEnd> ending = process.end(patience);
        ending.start();
        return finish(ending);
    }
    static std::filesystem::path self() {
        return QCoreApplication::applicationFilePath().toStdString();
    }

    QtClock clock;
    QtProcess process{clock};
};

TEST_F(ProcessTest, TellsWhatItSaysAndItsExitCode) {
    const ProcessEnd listed =
        run(self(), {"--gtest_list_tests", "--gtest_filter=ProcessTest.TellsWhatItSays*"});
    EXPECT_FALSE(listed.fault) << *listed.fault;
    EXPECT_EQ(listed.code, 0);
    EXPECT_NE(listed.said.find("  TellsWhatItSaysAndItsExitCode"), std::string::npos);
    const ProcessEnd again = run(self(), {"--gtest_list_tests", "--gtest_filter=none"});
    EXPECT_EQ(again.said.find("TellsWhatItSays"), std::string::npos) << "what the one before said";
}

TEST_F(ProcessTest, WhatCannotBeStartedIsToldByBoth) {
    process.start("no-such-program", {});
    const std::string bytes(100, 'x');
    runEventLoopUntil([&] {
        Task<Fault> writing = process.write(bytes, 1s);
        writing.start();
        return finish(writing).has_value();
    });
    Task<ProcessEnd> ending = process.end(1s);
    ending.start();
    const ProcessEnd end = finish(ending);
    ASSERT_TRUE(end.fault);
    EXPECT_TRUE(end.fault->starts_with("it cannot be started: ")) << *end.fault;
    EXPECT_EQ(process.find("no-such-program"), std::filesystem::path());
}

/// It is beside "this program", the tests.
TEST_F(ProcessTest, IsFoundByItsName) {
    EXPECT_EQ(process.find(self().stem().string()).filename(), self().filename());
}

} // namespace
} // namespace orvane::test
