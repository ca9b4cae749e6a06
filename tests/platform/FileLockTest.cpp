#include "platform/SystemCalls.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

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
    std::ofstream(file) << "left behind by a killed program";
    FileLock next;
    const FileLock::Outcome taken = next.take(file);
    EXPECT_FALSE(taken.isOthers);
    EXPECT_FALSE(taken.fault) << *taken.fault;
}

TEST(FileLock, OneThatCannotBeMadeIsNobodyElses) {
    TempFolder folder;
    FileLock lock;
    const FileLock::Outcome failed = lock.take(folder.path() / "nowhere" / "orvane.lock");
    EXPECT_FALSE(failed.isOthers);
    EXPECT_TRUE(failed.fault);
}

} // namespace
} // namespace orvane::test
