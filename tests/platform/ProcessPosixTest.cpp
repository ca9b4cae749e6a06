#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <csignal>

#include <unistd.h>

namespace orvane::test {
namespace {

/// Shell scripts in the place of programs that behave in all kinds of ways.
struct ProcessScript : testing::Test {
    void start(const std::string& script, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"-c", script, "sh"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        process->start("/bin/sh", arguments);
    }
    Fault write(const std::string& bytes, Ticks patience = 10s) {
        Task<Fault> writing = process->write(bytes, patience);
        writing.start();
        return finish(writing);
    }
    ProcessEnd end(Ticks patience = 10s) {
        Task<ProcessEnd> ending = process->end(patience);
        ending.start();
        return finish(ending);
    }
    /// Whether the one that `startSleeper` started is there.
    bool lives() const { return ::kill(std::stoi(contentsOf(folder.path() / "pid")), 0) == 0; }
    void startSleeper() {
        const auto pid = folder.path() / "pid";
        std::filesystem::remove(pid);
        start("echo $$ > \"$1\".new; mv \"$1\".new \"$1\"; exec sleep 100", {pid.string()});
        runEventLoopUntil([&] { return std::filesystem::exists(pid); });
        EXPECT_TRUE(lives());
    }

    TempFolder folder;
    QtClock clock;
    std::unique_ptr<QtProcess> process = std::make_unique<QtProcess>(clock);
};

TEST_F(ProcessScript, EveryByteArrivesInItsOrder) {
    std::string bytes;
    for (int i = 0; bytes.size() < 20'000'000; ++i)
        bytes += std::to_string(i) + "\n";
    const auto copy = folder.path() / "a copy \xC3\xA4\xE7\xA9\xBA";
    start("cat > \"$1\"; echo done; exit 3", {copy.string()});
    EXPECT_FALSE(write(bytes.substr(0, 100)));
    EXPECT_FALSE(write(bytes.substr(100)));
    const ProcessEnd ended = end();
    EXPECT_FALSE(ended.fault);
    EXPECT_EQ(ended.code, 3);
    EXPECT_EQ(ended.said, "done\n");
    EXPECT_TRUE(contentsOf(copy) == bytes);
}

/// What waits for a slow reader is bounded: a writer goes at the reader's pace.
TEST_F(ProcessScript, WritingWaitsForTheReader) {
    start("sleep 0.3; head -c 10000000 > /dev/null; exec cat > /dev/null");
    const std::string bytes(12'000'000, 'x');
    const Ticks before = clock.ticks();
    EXPECT_FALSE(write(bytes));
    EXPECT_GE(clock.ticks() - before, 250ms);
    EXPECT_FALSE(end().fault);
}

TEST_F(ProcessScript, OneThatDoesNotReadIsAFault) {
    const struct {
        const char* script;
        const char* fault;
        const char* said;
        Ticks patience;
    } cases[] = {
        {"sleep 100", "it stands still", "", 100ms},
        {"head -c 1000 > /dev/null; exec sleep 100", "it stands still", "", 100ms},
        {"echo disk full >&2; exit 1", "it stopped reading", "disk full\n", 10s},
        {"exec < /dev/null; sleep 0.1", "it stopped reading", "", 10s},
        {"kill -9 $$", "it crashed or was killed", "", 10s},
    };
    const std::string bytes(12'000'000, 'x');
    for (const auto& [script, fault, said, patience] : cases) {
        start(script);
        EXPECT_TRUE(write(bytes, patience)) << script;
        const ProcessEnd ended = end(patience);
        EXPECT_EQ(ended.fault, fault) << script;
        EXPECT_EQ(ended.said, said) << script;
    }
}

TEST_F(ProcessScript, WhatItSaysIsBounded) {
    start("head -c 3000000 /dev/zero; echo the end");
    const ProcessEnd ended = end();
    EXPECT_FALSE(ended.fault);
    EXPECT_EQ(ended.said.size(), 65536U);
    EXPECT_TRUE(ended.said.ends_with("the end\n"));
    start("exec cat /dev/zero"); // writes for ever
    EXPECT_EQ(end(200ms).fault, Fault("it does not end"));
}

TEST_F(ProcessScript, ItIsKilledOnRequestAndWithItsOwner) {
    startSleeper();
    const Ticks before = clock.ticks();
    process->kill();
    EXPECT_LT(clock.ticks() - before, 50ms);
    runEventLoopUntil([&] { return !lives(); });
    EXPECT_TRUE(write("x")); // nothing runs
    EXPECT_TRUE(end().fault);
    startSleeper();
    process.reset();
    EXPECT_FALSE(lives());
}

TEST_F(ProcessScript, TheProcessorIsThisProgramsFirst) {
    start("nice");
    constexpr int kLast = 19;
    EXPECT_EQ(end().said, std::to_string(std::min(::nice(0) + 10, kLast)) + "\n");
}

/// A task that goes while it waits leaves nothing behind, and the next program is not disturbed.
TEST_F(ProcessScript, AWaitThatIsDroppedIsForgotten) {
    const std::string bytes(12'000'000, 'x');
    start("sleep 100");
    {
        Task<Fault> writing = process->write(bytes, 1min);
        writing.start();
    }
    start("cat > /dev/null; echo second");
    EXPECT_FALSE(write("x"));
    const ProcessEnd ended = end();
    EXPECT_FALSE(ended.fault);
    EXPECT_EQ(ended.said, "second\n");
}

} // namespace
} // namespace orvane::test
