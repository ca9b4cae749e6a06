#include "platform/SystemCalls.h"

#include <csignal>
#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(EndRequest, IsKeptUnlessTheSignalIsIgnored) {
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
