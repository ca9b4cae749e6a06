#include "platform/Files.h"

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
    writeFile(from, kBytes);
    writeFile(to, "older and to be replaced");
    EXPECT_EQ(copyToFinalName(from, to).value_or("copied"), "copied");
    EXPECT_EQ(contentsOf(to), kBytes);
    EXPECT_EQ(contentsOf(from), kBytes);
    EXPECT_EQ(listing(folder.path()).size(), 2u);
}

TEST(FileCopy, EmptyFileIsAFileToo) {
    const TempFolder folder;
    EXPECT_FALSE(writeToFinalName({}, folder.path() / "empty"));
    std::string bytes = "before";
    EXPECT_FALSE(readWholeFile(folder.path() / "empty", bytes));
    EXPECT_EQ(bytes, "");
}

TEST(FileCopy, TellsTheSystemsReasonAndLeavesNothing) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.path() / "taken");
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

} // namespace
} // namespace orvane::test
