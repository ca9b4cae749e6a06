#include "platform/Files.h"
#include "platform/SystemCalls.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace orvane::test
