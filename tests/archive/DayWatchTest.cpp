#include "archive/DayWatch.h"
#include "tests/support/Fakes.h"
#include "tests/support/FolderTime.h"
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

    TempFolder data;
    std::filesystem::path today = data.path() / "20061115";
    Module1 module;
    OperationPanel panel;
    JumpingClock clock{at(2006, 11, 15, 12, 10)};
    int reads = 0;
    bool readable = true;
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    DayWatch days{module, panel, schedules, clock, [this](const auto& folder) {
                      ++reads;
                      return readable ? listDay(folder) : DayListing{{}, "Permission denied"};
                  }};
};

TEST_F(Days, ReadsTheFolderOnlyWhenItChanged) {
    file("20061115_090000_00.jpg");
    setFolderTime(today, std::filesystem::file_time_type::clock::now() - 1h);
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 1 of 16, next at 12:30, 6 missed");
    EXPECT_FALSE(refresh());
    clock.run(10s);
    EXPECT_FALSE(refresh()) << "nothing new within the minute";
    clock.run(1min);
    EXPECT_TRUE(refresh()) << "the line of the present time moves";
    days.add(today / "20061115_120000_00.jpg");
    days.add(data.path() / "20061114" / "20061114_113000_00.jpg"); // another day
    EXPECT_EQ(text(), "taken 2 of 16, next at 12:30, 5 missed") << "it counts without reading";
    module.schedule.EndTime = 10h;
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 1 of 2, next tomorrow at 09:00, 1 missed");
    module.RecordFlg = false;
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "recording is off");
    EXPECT_EQ(reads, 1);
    module.RecordFlg = true;
    const auto changed = std::filesystem::file_time_type::clock::now();
    setFolderTime(today, changed);
    refresh();
    file("20061115_093017_00.jpg"); // from the camera's store: its own seconds
    setFolderTime(today, changed);  // a file system with coarse stamps
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 1 of 2, next tomorrow at 09:00, 1 fetched later");
    EXPECT_EQ(reads, 3);
    clock.runUntil(at(2006, 11, 16));
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 0 of 2, next at 09:00") << "a new day";
    EXPECT_EQ(days.minuteOfDay(), 0);
    const TempFolder other;
    panel.Dir1[0].path = other.path();
    clock.runUntil(at(2006, 11, 16, 9, 1));
    EXPECT_TRUE(refresh());
    EXPECT_EQ(text(), "taken 0 of 2, next at 09:30, 1 missed");
}

/// What cannot be read is not called missed.
TEST_F(Days, AFolderThatCannotBeReadIsNotEmpty) {
    readable = false;
    days.refresh();
    days.add(today / "20061115_120000_00.jpg");
    EXPECT_EQ(text(), "today's folder cannot be read; see to its access rights");
    EXPECT_EQ(days.plan().missed + days.plan().gaps, 0);
    EXPECT_EQ(days.plan().taken, 1);
    EXPECT_EQ(std::ranges::count(days.plan().states, DayState::Missed), 0);
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
    follow(51min); // 13:01
    EXPECT_EQ(days.missedWarning(), warning);
    EXPECT_TRUE(days.isOverdue(at(2006, 11, 15, 12)));
    EXPECT_FALSE(days.isOverdue(at(2006, 11, 15, 12, 30)));
    follow(30min);
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
    module.schedule = {0h, 23h + 59min, 30min, {}};
    for (int minute = 15 * 60 + 30; minute < 23 * 60 + 30; minute += 30)
        days.add(today / ImageName::ofCapture(at(2006, 11, 15, 0, minute)).text());
    clock.runUntil(at(2006, 11, 15, 23, 58));
    follow(1min);
    EXPECT_EQ(days.missedWarning(), "");
    follow(2min);
    EXPECT_EQ(days.missedWarning(), "No image at 23:30 and 00:00. Please check the camera.");
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
