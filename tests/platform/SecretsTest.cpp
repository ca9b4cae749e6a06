#include "platform/SystemCalls.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane::test {
namespace {

TEST(Secrets, AreGivenBackAsTheyWere) {
    for (const std::string& secret :
         {std::string(), std::string("x"), std::string(" p\xC3\xA4ss; \"w\xC3\xB6rd\" "),
          std::string(1000, '%')}) {
        const auto stored = protectSecret(secret);
        ASSERT_TRUE(stored);
        EXPECT_EQ(unprotectSecret(*stored), secret);
        EXPECT_EQ(stored->find('\n'), std::string::npos) << "it is stored as one line";
    }
}

} // namespace
} // namespace orvane::test
