#include "platform/Files.h"
#include "platform/SystemCalls.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace orvane::test {
namespace {

// A limit on the size of files fails a write half way, as a full disk does.
TEST(FileCopyPosix, WriteThatBreaksOffKeepsTheOlderFile) {
    const TempFolder folder;
    const auto file = folder.path() / "picture.jpg";
    writeFile(file, "older");
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{100'000, limit.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const auto fault = writeToFinalName(std::string(200'000, 'x'), file);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(fault, "File too large");
    EXPECT_EQ(contentsOf(file), "older");
    EXPECT_EQ(listing(folder.path()), std::vector<std::string>{"picture.jpg"});
}

/// Takes the descriptor away once all is written, so that the system's own close fails.
class UncloseableWriter final : public FileWriter {
  public:
    UncloseableWriter() : FileWriter(Force::No) {}

  protected:
    Fault open(const std::filesystem::path& file) override {
        next_ = ::dup(STDERR_FILENO); // the lowest that is free, which the file is given
        ::close(next_);
        return FileWriter::open(file);
    }
    Fault write(std::string_view bytes) override {
        Fault fault = FileWriter::write(bytes);
        ::close(next_);
        return fault;
    }

  private:
    int next_ = -1;
};

/// As on a network drive that reports a full disk only then.
TEST(FileCopyPosix, AFaultThatOnlyTheCloseTellsIsOne) {
    const TempFolder folder;
    UncloseableWriter writer;
    EXPECT_EQ(writer.put("picture", folder.path() / "picture.jpg"), "Bad file descriptor");
    EXPECT_EQ(listing(folder.path()), std::vector<std::string>());
}

TEST(EndRequestPosix, IsKeptUnlessTheSignalIsIgnored) {
    std::signal(SIGHUP, SIG_IGN); // as nohup does
    keepEndRequests();
    std::raise(SIGHUP);
    EXPECT_EQ(endRequest(), "");
    std::raise(SIGTERM);
    EXPECT_EQ(endRequest(), "SIGTERM");
    std::raise(SIGINT);
    EXPECT_EQ(endRequest(), "SIGINT");
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        std::signal(number, SIG_DFL);
}

const std::string kMuch(12'000'000, 'x'); ///< more than waits for a slow reader

/// Shell scripts in the place of programs that behave in all kinds of ways.
struct ProcessScript : testing::Test {
    void start(const std::string& script, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"-c", script, "sh"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        process->start("/bin/sh", arguments);
    }
    Fault write(const std::string& bytes, Ticks patience = 10s) {
        return finish(process->write(bytes, patience));
    }
    ProcessEnd end(Ticks patience = 10s) { return finish(process->end(patience)); }
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

/// What waits for a slow reader is bounded, so a writer goes at the reader's pace. The processor is
/// this program's first.
TEST_F(ProcessScript, EveryByteArrivesInItsOrder) {
    std::string bytes;
    for (int i = 0; bytes.size() < 20'000'000; ++i)
        bytes += std::to_string(i) + "\n";
    const auto copy = folder.path() / "a copy \xC3\xA4\xE7\xA9\xBA";
    const Ticks before = clock.ticks();
    start("nice; sleep 0.2; cat > \"$1\"; exit 3", {copy.string()});
    EXPECT_FALSE(write(bytes.substr(0, 100)));
    EXPECT_FALSE(write(bytes.substr(100)));
    EXPECT_GE(clock.ticks() - before, 190ms);
    const ProcessEnd ended = end();
    EXPECT_FALSE(ended.fault);
    EXPECT_EQ(ended.code, 3);
    EXPECT_EQ(ended.said, std::to_string(std::min(::nice(0) + 10, 19)) + "\n");
    EXPECT_TRUE(contentsOf(copy) == bytes);
}

TEST_F(ProcessScript, OneThatDoesNotReadIsAFault) {
    const struct {
        const char *script, *fault, *said;
        Ticks patience;
    } cases[] = {{"sleep 100", "it stands still", "", 100ms},
                 {"head -c 1000 > /dev/null; exec sleep 100", "it stands still", "", 100ms},
                 {"echo disk full >&2; exit 1", "it stopped reading", "disk full\n", 10s},
                 {"exec < /dev/null; sleep 0.1", "it stopped reading", "", 10s},
                 {"kill -9 $$", "it crashed or was killed", "", 10s}};
    for (const auto& [script, fault, said, patience] : cases) {
        start(script);
        EXPECT_TRUE(write(kMuch, patience)) << script;
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

/// A task that goes while it waits leaves nothing behind, and the next program is not disturbed.
TEST_F(ProcessScript, AWaitThatIsDroppedIsForgotten) {
    start("sleep 100");
    {
        Task<Fault> writing = process->write(kMuch, 1min);
        writing.start();
    }
    start("cat > /dev/null; echo second");
    EXPECT_FALSE(write("x"));
    EXPECT_EQ(end().said, "second\n");
}

} // namespace
} // namespace orvane::test
