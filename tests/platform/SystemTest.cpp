#include "platform/SystemCalls.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Finish.h"
#include "tests/support/TestStation.h"

#include <QCoreApplication>

namespace orvane::test {
namespace {

const std::string kBytes = std::string("a\0b\r\n\x1A", 6) + std::string(200'000, '\xFF');

TEST(FileCopy, CopiesEveryByteAndReplacesAnOlderFile) {
    const TempFolder folder;
    const auto from = folder.path() / std::filesystem::path(u8"空.jpg");
    const auto to = folder.path() / std::filesystem::path(u8"copié.jpg");
    for (const std::string& bytes : {kBytes, std::string()}) {
        writeFile(from, bytes);
        writeFile(to, "older and to be replaced");
        EXPECT_EQ(copyToFinalName(from, to), std::nullopt);
        EXPECT_EQ(contentsOf(to), bytes);
        EXPECT_EQ(contentsOf(from), bytes);
        EXPECT_EQ(listing(folder.path()).size(), 2u);
    }
}

TEST(FileCopy, TellsTheSystemsReasonAndLeavesNothing) {
    const TempFolder folder;
    writeFile(folder.path() / "taken" / "inside", "x");
    const auto before = listing(folder.path());
    EXPECT_TRUE(writeToFinalName(kBytes, folder.path() / "taken"));
    EXPECT_EQ(writeToFinalName(kBytes, folder.path() / "missing" / "file"),
              "No such file or directory");
    EXPECT_EQ(copyToFinalName(folder.path() / "missing", folder.path() / "file"),
              "No such file or directory");
    EXPECT_TRUE(copyToFinalName(folder.path() / "taken", folder.path() / "file"));
    EXPECT_EQ(listing(folder.path()), before);
}

TEST(FileLock, IsHeldByOneAtATime) {
    const TempFolder folder;
    const auto file = folder.path() / "orvane.lock";
    const auto outcomeOf = [](FileLock::Outcome outcome) {
        return std::pair(outcome.isOthers, outcome.fault.has_value());
    };
    {
        FileLock first, second;
        EXPECT_EQ(outcomeOf(first.take(file)), std::pair(false, false));
        EXPECT_EQ(outcomeOf(second.take(file)), std::pair(true, false));
    }
    writeFile(file, "left behind by a killed program");
    FileLock next, impossible;
    EXPECT_EQ(outcomeOf(next.take(file)), std::pair(false, false));
    EXPECT_EQ(outcomeOf(impossible.take(folder.path() / "nowhere" / "orvane.lock")),
              std::pair(false, true));
}

/// A name that no single code page can write, and more than 260 characters in all.
TEST(Paths, AStationRecordsIntoAnyFolder) {
    TestStation s(at(2006, 11, 15, 9, 29));
    auto folder = s.folder.path() / std::filesystem::path(u8"観測 ü Données №1");
    for (int i = 0; i < 5; ++i)
        folder /= std::string(60, static_cast<char>('a' + i));
    std::filesystem::create_directories(folder);
    s.store.values["DataPath/PathDataFile"] = utf8FromPath(folder);
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    const std::filesystem::path name = "20061115_093000_00.jpg";
    EXPECT_TRUE(std::filesystem::exists(folder / "20061115" / name));
    EXPECT_TRUE(std::filesystem::exists(folder / "Edit" / "20061115" / name));
    EXPECT_TRUE(ErrorLog(folder, s.clock, {}).write("recMessage:SUM ERROR"));
    EXPECT_EQ(contentsOf(folder / "ERROR.LOG"), "2006/11/15 09:31:00 recMessage:SUM ERROR\r\n");
}

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
