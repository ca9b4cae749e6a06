#include "platform/Paths.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A folder whose name no single code page can write, deeper than 260 characters in all.
struct Paths : testing::Test {
    Paths() {
        for (int i = 0; i < 5; ++i)
            folder /= std::string(60, static_cast<char>('a' + i));
        std::filesystem::create_directories(folder);
    }

    TempFolder temp;
    std::filesystem::path folder = temp.path() / std::filesystem::path(u8"観測 ü Données №1");
    JumpingClock clock{at(2006, 7, 15, 14, 3, 27)};
};

TEST_F(Paths, AStationRecordsIntoAnyFolder) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.store.values["DataPath/PathDataFile"] = utf8FromPath(folder);
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    const std::filesystem::path name = "20061115_093000_00.jpg";
    EXPECT_TRUE(std::filesystem::exists(folder / "20061115" / name));
    EXPECT_TRUE(std::filesystem::exists(folder / "Edit" / "20061115" / name));
    EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
}

TEST_F(Paths, TheLogIsWrittenIntoAnyFolder) {
    ErrorLog log(folder, clock, {});
    EXPECT_TRUE(log.write("recMessage:SUM ERROR"));
    EXPECT_EQ(contentsOf(folder / "ERROR.LOG"), "2006/07/15 14:03:27 recMessage:SUM ERROR\r\n");
}

TEST_F(Paths, PicturesAreReadAndWrittenInAnyFolder) {
    LibjpegImageControl control(clock);
    const auto from = folder / std::filesystem::path(u8"空.jpg");
    const auto to = folder / std::filesystem::path(u8"空-copié.jpg");
    writeFile(from, encoded(gradient(64, 48)));
    EXPECT_EQ(finish(clock, control.load(from)), std::nullopt);
    EXPECT_EQ(finish(clock, control.save(to, ImageControl::kFormat444, 2, "")), std::nullopt);
    EXPECT_LT(meanDifference(decoded(to), gradient(64, 48)), 4);
}

} // namespace
} // namespace orvane::test
