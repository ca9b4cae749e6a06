#include "archive/FolderScan.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// Only an attribute word of exactly 16 marks a sub-folder. Windows and Wine keep other bits of a
/// folder in other ways.
TEST(FolderScan, AReadOnlyFolderCountsAsAFile) {
    const TempFolder temp;
    const auto folder = temp.path() / "sky";
    std::filesystem::create_directory(folder);
    Module1 module;
    OperationPanel panel;
    panel.Dir1[1].path = temp.path();
    FolderScan scan(module, panel);
    scan.file_check("sky");
    EXPECT_EQ(module.foundCount, 1);
    using std::filesystem::perms;
    std::filesystem::permissions(folder, perms::owner_read | perms::owner_exec);
    scan.file_check("sky");
    EXPECT_EQ(module.foundCount, 2);
    EXPECT_EQ(module.foundImages[1], folder);
    std::filesystem::permissions(folder, perms::owner_all);
}

} // namespace
} // namespace orvane::test
