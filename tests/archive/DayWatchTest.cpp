#include "archive/DayWatch.h"
#include "tests/support/Fakes.h"
#include "tests/support/FolderTime.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr Schedule kHalfHours{9h, 17h, 30min, {}}; // sixteen a day

/// Today over a real folder whose readings are counted.
class Days : public testing::Test {
  protected:
    Days() {
        panel.Dir1[0].path = data.path();
        module.schedule = kHalfHours;
        module.RecordFlg = true;
        std::filesystem::create_directory(today);
    }
    void file(const std::string& name) { writeFile(today / name, jpegLike(name)); }
    const std::string& text() { return days.plan().text; }
    /// Whether anything that is shown has changed.
    bool refresh() {
        const auto before = days.revision();
        days.refresh();
        return days.revision() != before;
    }
    /// The folder was changed for the last time so long ago.
    void age(std::chrono::seconds by) {
        setFolderTime(today, std::filesystem::file_time_type::clock::now() - by);
    }

    TempFolder data;
    std::filesystem::path today = data.path() / "20061115";
    Module1 module;
    OperationPanel panel;
    JumpingClock clock{at(2006, 11, 15, 12, 10)};
    int reads = 0;
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    DayWatch days{module, panel, schedules, clock, [this](const auto& folder) {
                      ++reads;
                      return listDay(folder);
                  }};
};

TEST_F(Days, ReadsTheFolderOnlyWhenItChanged) {
    file("20061115_090000_00.jpg");
    age(1h);
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 1 of 16, next at 12:30, 6 missed");
    EXPECT_FALSE(refresh());
    clock.run(10s);
    EXPECT_FALSE(refresh()) << "nothing new within the minute";
    clock.run(1min);
    EXPECT_TRUE(refresh()) << "the line of the present time moves";
    EXPECT_EQ(reads, 1);
    file("20061115_093017_00.jpg"); // from the camera's store: its own seconds
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 1 of 16, next at 12:30, 1 fetched later, 5 missed");
    EXPECT_EQ(reads, 2);
}

TEST_F(Days, SeesAFileThatLeavesTheTimeOfChangeAsItIs) {
    refresh();
    const auto changed = std::filesystem::last_write_time(today);
    file("20061115_090000_00.jpg");
    setFolderTime(today, changed); // a file system with coarse stamps
    EXPECT_TRUE(refresh());
    EXPECT_EQ(days.plan().taken, 1);
}

TEST_F(Days, FollowsWhatItDependsOn) {
    file("20061115_090000_00.jpg");
    age(1h);
    refresh();
    module.RecordFlg = false;
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "recording is off");
    module.RecordFlg = true;
    module.schedule.EndTime = 10h;
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 1 of 2, next tomorrow at 09:00, 1 missed");
    EXPECT_EQ(reads, 1);
    const TempFolder other;
    panel.Dir1[0].path = other.path();
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 0 of 2, next tomorrow at 09:00, 2 missed");
    panel.Dir1[0].path = data.path();
    refresh();
    clock.runUntil(at(2006, 11, 16));
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 0 of 2, next at 09:00") << "a new day";
    EXPECT_EQ(days.minuteOfDay(), 0);
}

TEST_F(Days, WhatIsFiledCountsWithoutReading) {
    age(1h);
    refresh();
    EXPECT_EQ(days.plan().taken, 0);
    days.add(today / "20061115_120000_00.jpg");
    days.add(data.path() / "20061114" / "20061114_113000_00.jpg"); // another day
    EXPECT_EQ(text(), "taken 1 of 16, next at 12:30, 6 missed");
    EXPECT_EQ(reads, 1);
}

/// What cannot be read is not called missed.
TEST_F(Days, AFolderThatCannotBeReadIsNotEmpty) {
    DayWatch unreadable(module, panel, schedules, clock, [](const auto&) {
        return DayListing{{}, "Permission denied"};
    });
    unreadable.refresh();
    unreadable.add(today / "20061115_120000_00.jpg");
    EXPECT_EQ(unreadable.plan().text, "today's folder cannot be read; see to its access rights");
    EXPECT_EQ(unreadable.plan().missed, 0);
    EXPECT_EQ(unreadable.plan().gaps, 0);
    EXPECT_EQ(unreadable.plan().taken, 1);
    EXPECT_EQ(std::ranges::count(unreadable.plan().states, DayState::Missed), 0);
}

/// Every pass of the main loop, for that long.
class Followed : public Days {
  protected:
    Followed() {
        file("20061115_120000_00.jpg");
        days.follow();
    }
    void follow(std::chrono::minutes span) {
        for (int minute = 0; minute < span.count(); ++minute) {
            clock.run(1min);
            days.follow();
        }
    }
    void jump(std::chrono::minutes by) {
        clock.jumpWall(by);
        days.follow();
    }
};

TEST_F(Followed, TwoMissedInARowAreToldUntilACapture) {
    const std::string warning = "No image at 12:30 and 13:00. Please check the camera.";
    follow(21min); // 12:31
    EXPECT_EQ(days.missedWarning(), "");
    follow(30min);
    EXPECT_EQ(days.missedWarning(), warning);
    EXPECT_TRUE(days.isOverdue(at(2006, 11, 15, 12)));
    EXPECT_FALSE(days.isOverdue(at(2006, 11, 15, 12, 30)));
    follow(30min);
    EXPECT_EQ(days.missedWarning(), warning);
    file("20061115_133007_00.jpg"); // the store's picture does not say that the camera is well
    EXPECT_EQ(days.missedWarning(), warning);
    file("20061115_133000_00.jpg");
    EXPECT_EQ(days.missedWarning(), "");
    module.RecordFlg = false;
    follow(2h);
    EXPECT_EQ(days.missedWarning(), "");
    module.RecordFlg = true;
    follow(2min); // what went by while recording was off is not told
    EXPECT_EQ(days.missedWarning(), "");
    EXPECT_FALSE(days.isOverdue(at(2006, 11, 15, 15, 30)));
}

/// A plan is kept while only the time goes on: it is the one that a new look brings.
TEST_F(Followed, ThePlanIsThatOfANewLook) {
    module.image.Delay = 130;
    days.refresh();
    for (int minute = 0; minute < 24 * 60; ++minute) {
        follow(1min);
        if (minute == 51) file("20061115_130200_00.jpg"); // late, by the delay
        if (minute == 300) module.schedule.EndTime = 20h;
        if (minute == 51 || minute == 300) days.refresh();
        DayWatch fresh(module, panel, schedules, clock);
        fresh.refresh();
        ASSERT_EQ(text(), fresh.plan().text) << minute;
        ASSERT_EQ(days.plan().states, fresh.plan().states) << minute;
    }
}

TEST_F(Followed, MinutesInARowReachAcrossMidnight) {
    module.schedule = {0h, 23h + 59min, 30min, {}};
    days.follow();
    for (int minute = 12 * 60 + 30; minute < 23 * 60 + 30; minute += 30)
        days.add(today / ImageName::ofCapture(at(2006, 11, 15, minute / 60, minute % 60)).text());
    clock.runUntil(at(2006, 11, 15, 23, 59));
    days.follow();
    EXPECT_EQ(days.missedWarning(), "");
    clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_EQ((days.follow(), days.missedWarning()),
              "No image at 23:30 and 00:00. Please check the camera.");
    EXPECT_TRUE(days.isOverdue(at(2006, 11, 15, 23)));
}

/// Minutes that the clock was put over never were: nothing was due in them.
TEST_F(Followed, ASkippedMinuteIsNotDue) {
    follow(10min); // 12:20
    jump(2h);      // 14:20
    EXPECT_EQ(days.missedWarning(), "");
    EXPECT_FALSE(days.isOverdue(at(2006, 11, 15, 12)));
    days.refresh();
    EXPECT_EQ(text(), "taken 1 of 12, next at 14:30, 6 missed");
    jump(-80min); // 13:00, half of them come again
    EXPECT_EQ(text(), "taken 1 of 15, next at 13:00, 6 missed");
    jump(24h * 3);
    days.refresh();
    EXPECT_EQ(text(), "taken 0 of 8, next at 13:00");
    EXPECT_FALSE(days.isOverdue(at(2006, 11, 15, 12)));
    follow(40min);
    EXPECT_EQ(days.plan().missed, 2) << "these were";
    jump(-24h * 3); // and back again: nothing of that day is missed yet
    days.refresh();
    EXPECT_EQ(days.missedWarning(), "");
}

} // namespace
} // namespace orvane::test
