#include "archive/ShownDay.h"

#include "tests/archive/ArchiveStation.h"
#include "tests/support/FolderTime.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A station that records every half hour from 9 to 11; it is 9:45 of the 15th.
struct OtherDays : testing::Test {
    OtherDays() {
        s.type(9, 11, 30);
        s.module.RecordFlg = true;
        for (const char* name : {"20061112_090000_00.jpg", "20061114_090000_00.jpg",
                                 "20061114_093007_00.jpg", "20061115_090000_00.jpg"})
            s.write(name);
        shown.refresh();
    }
    const std::string& textOf(unsigned day) {
        shown.turnTo(november(day));
        s.clock.runUntil([this] { return !shown.isReading(); }, 1min);
        shown.refresh();
        return shown.plan().text;
    }

    ArchiveStation s{at(2006, 11, 15, 9, 45)};
    Keograms keograms{{s.imageControl, s.module, s.busy, s.clock}};
    ShownDay shown{{s.days, s.panel, keograms, s.clock, s.faults}};
};

TEST_F(OtherDays, EachIsJudgedAsOneThatIsOver) {
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.now(), 9 * 60 + 45);
    EXPECT_EQ(shown.firstDay(), november(12));
    EXPECT_EQ(textOf(14), "taken 1 of 4, 1 fetched later, 2 missed");
    EXPECT_FALSE(shown.isToday());
    EXPECT_EQ(shown.now(), std::nullopt);
    EXPECT_EQ(shown.plan().begin, 9 * 60);
    EXPECT_EQ(shown.pictureOf(9 * 60 + 30).filename(), "20061114_093007_00.jpg");
    EXPECT_EQ(shown.pictureOf(10 * 60), "");
    EXPECT_EQ(textOf(13), "taken 0 of 4, 4 missed");
    EXPECT_EQ(textOf(12), "taken 1 of 4, 3 missed");
    EXPECT_EQ(textOf(15), s.days.plan().text);
    EXPECT_TRUE(shown.isToday());
}

TEST_F(OtherDays, StayWithinTheArchive) {
    textOf(1);
    EXPECT_EQ(shown.day(), november(12));
    for (const auto day : {november(30), std::chrono::local_days::max()}) {
        shown.turnTo(day);
        EXPECT_EQ(shown.day(), november(15));
    }
}

TEST_F(OtherDays, FollowWhatIsFiledLater) {
    textOf(14);
    const std::int64_t before = shown.revision();
    s.write("20061114_100000_00.jpg");
    setFolderTime(s.dataFolder() / "20061114",
                  std::filesystem::file_time_type::clock::now() + 1min);
    shown.refresh();
    EXPECT_GT(shown.revision(), before);
    EXPECT_EQ(shown.plan().text, "taken 2 of 4, 1 fetched later, 1 missed");
}

/// Midnight moves today; a day that was turned to stays.
TEST_F(OtherDays, MidnightAndAnotherFolder) {
    s.clock.run(24h);
    shown.refresh();
    EXPECT_EQ(shown.day(), november(16));
    EXPECT_TRUE(shown.isToday());
    textOf(14);
    s.clock.run(24h);
    shown.refresh();
    EXPECT_EQ(shown.day(), november(14));
    s.clock.jumpWall(-72h); // the clock was wrong: it is the 14th
    shown.refresh();
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.day(), november(14));
    textOf(12);
    s.panel.Dir1[0].path = s.folder.path() / "elsewhere";
    shown.refresh();
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.firstDay(), november(14)) << "an archive without a folder begins today";
}

TEST_F(OtherDays, ReadingIsSlicedAndCanBeLeft) {
    for (int minute = 0; minute < 11 * 60; ++minute)
        s.write(ImageName::ofCapture(at(2006, 11, 13, 0, minute)).text());
    shown.turnTo(november(13));
    EXPECT_TRUE(shown.isReading());
    EXPECT_EQ(shown.plan().text, "reading the day's folder...");
    EXPECT_LT(shown.pictures().size(), 100U) << "the window is not held up for the whole folder";
    shown.turnTo(november(14));
    s.clock.run(1s);
    EXPECT_EQ(shown.plan().text, "taken 1 of 4, 1 fetched later, 2 missed");
    EXPECT_EQ(textOf(13), "taken 4 of 4");
}

} // namespace
} // namespace orvane::test
