#include "platform/Files.h"

#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace orvane::test {
namespace {

// A limit on the size of files fails a write half way, as a full disk does.
TEST(FileCopyPosix, WriteThatBreaksOffKeepsTheOlderFile) {
    const std::string bytes(200'000, 'x');
    const TempFolder folder;
    const auto file = folder.path() / "picture.jpg";
    writeFile(file, "older");
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{100'000, limit.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const auto fault = writeToFinalName(bytes, file);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(fault.value_or(""), "File too large");
    EXPECT_EQ(contentsOf(file), "older");
    EXPECT_EQ(listing(folder.path()), std::vector<std::string>{"picture.jpg"});
}

} // namespace
} // namespace orvane::test
