#include "platform/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(FileLock, IsHeldByOneAtATime) {
    TempFolder folder;
    const auto file = folder.path() / "orvane.lock";
    {
        FileLock first;
        EXPECT_FALSE(first.take(file).fault);
        FileLock second;
        const FileLock::Outcome refused = second.take(file);
        EXPECT_TRUE(refused.isOthers);
        EXPECT_FALSE(refused.fault);
    }
    writeFile(file, "left behind by a killed program");
    FileLock next;
    const FileLock::Outcome taken = next.take(file);
    EXPECT_FALSE(taken.isOthers);
    EXPECT_FALSE(taken.fault) << *taken.fault;
    FileLock impossible;
    const FileLock::Outcome failed = impossible.take(folder.path() / "nowhere" / "orvane.lock");
    EXPECT_FALSE(failed.isOthers) << "nobody else's, since it cannot be made";
    EXPECT_TRUE(failed.fault);
}

TEST(Secrets, AreGivenBackAsTheyWere) {
    for (const std::string& secret :
         {std::string(), std::string(" p\xC3\xA4ss; \"w\xC3\xB6rd\" "), std::string(1000, '%')}) {
        const auto stored = protectSecret(secret);
        ASSERT_TRUE(stored);
        EXPECT_EQ(unprotectSecret(*stored), secret);
        EXPECT_EQ(stored->find('\n'), std::string::npos) << "it is stored as one line";
    }
}

} // namespace
} // namespace orvane::test
