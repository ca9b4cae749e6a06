#include "platform/Paths.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A name that no single code page can write, and more than 260 characters in all.
TEST(Paths, AStationRecordsIntoAnyFolder) {
    TestStation s(at(2006, 11, 15, 9, 29));
    auto folder = s.folder.path() / std::filesystem::path(u8"観測 ü Données №1");
    for (int i = 0; i < 5; ++i)
        folder /= std::string(60, static_cast<char>('a' + i));
    std::filesystem::create_directories(folder);
    s.store.values["DataPath/PathDataFile"] = utf8FromPath(folder);
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    const std::filesystem::path name = "20061115_093000_00.jpg";
    EXPECT_TRUE(std::filesystem::exists(folder / "20061115" / name));
    EXPECT_TRUE(std::filesystem::exists(folder / "Edit" / "20061115" / name));
    EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
    EXPECT_TRUE(ErrorLog(folder, s.clock, {}).write("recMessage:SUM ERROR"));
    EXPECT_EQ(contentsOf(folder / "ERROR.LOG"), "2006/11/15 09:31:00 recMessage:SUM ERROR\r\n");
}

} // namespace
} // namespace orvane::test
