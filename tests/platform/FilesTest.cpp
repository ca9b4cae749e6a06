#include "platform/Files.h"

#include "platform/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

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
        EXPECT_EQ(copyToFinalName(from, to).value_or("copied"), "copied");
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
    EXPECT_EQ(writeToFinalName(kBytes, folder.path() / "missing" / "file").value_or(""),
              "No such file or directory");
    EXPECT_EQ(copyToFinalName(folder.path() / "missing", folder.path() / "file").value_or(""),
              "No such file or directory");
    EXPECT_TRUE(copyToFinalName(folder.path() / "taken", folder.path() / "file"));
    EXPECT_EQ(listing(folder.path()), before);
}

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

} // namespace
} // namespace orvane::test
