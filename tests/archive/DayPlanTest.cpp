#include "archive/DayWatch.h"
#include "imaging/SunTimes.h"
#include "tests/support/Fakes.h"
#include "tests/support/FolderTime.h"
#include "tests/support/TestPictures.h"
#include "ui/day/DayMarks.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace orvane::test {
namespace {

constexpr Schedule kHalfHours{9h, 17h, 30min, {}}; // sixteen a day

std::size_t minute(int hour, int minuteOfHour) {
    return static_cast<std::size_t>(hour * 60 + minuteOfHour);
}

/// "0900 0930f": taken at 9:00, fetched at 9:30.
DayPictures picturesAt(const std::string& list) {
    DayPictures pictures{};
    std::istringstream words(list);
    for (std::string word; words >> word;)
        pictures[minute(std::stoi(word.substr(0, 2)), std::stoi(word.substr(2, 2)))] =
            word.ends_with('f') ? PictureOrigin::Fetched : PictureOrigin::Taken;
    return pictures;
}

DayPlan planAt(int hour, int minuteOfHour, const std::string& pictures,
               const Schedule& schedule = kHalfHours, int delay = 0) {
    return planDay(schedule, dueMinutes(schedule), picturesAt(pictures), hour * 60 + minuteOfHour,
                   delay);
}

TEST(DayPlanTest, CountsAndTells) {
    struct Case {
        int hour, minuteOfHour;
        const char *pictures, *text;
        int delay = 0;
    };
    const Case cases[] = {
        {9, 0, "", "taken 0 of 16, next at 09:00"},
        {9, 1, "", "taken 0 of 16, next at 09:30, 1 missed"},
        {9, 0, "0900", "taken 1 of 16, next at 09:30"},
        // an outage, and what the synchronisation brought of it
        {12, 10, "0900 0930 1000f 1100 1130 1200",
         "taken 5 of 16, next at 12:30, 1 fetched later, 1 missed"},
        // the minute that ends the window is not due, and neither is one before it
        {16, 31, "0830 1630 1700", "taken 1 of 16, next tomorrow at 09:00, 15 missed"},
        // another interval in the morning
        {9, 45, "0900 0910 0920 0930 0940f", "taken 2 of 16, next at 10:00"},
        // a late capture belongs to its due minute if it is not too late for a repeated fetch
        {9, 45, "0900 0931", "taken 2 of 16, next at 10:00"},
        {9, 45, "0900 0933", "taken 1 of 16, next at 10:00, 1 missed"},
        {9, 45, "0900 0933", "taken 2 of 16, next at 10:00", 2},
        {9, 32, "0900", "taken 1 of 16, next at 09:30", 2},
        {9, 33, "0900", "taken 1 of 16, next at 10:00, 1 missed", 2},
        // the store's pictures have true times
        {9, 45, "0900 0931f", "taken 1 of 16, next at 10:00, 1 missed"}};
    for (const auto& [hour, minuteOfHour, pictures, text, delay] : cases)
        EXPECT_EQ(planAt(hour, minuteOfHour, pictures, kHalfHours, delay).text, text)
            << hour << ":" << minuteOfHour;
    EXPECT_EQ(planAt(9, 45, "0900 0931").states[minute(9, 31)], DayState::NotDue) << "not twice";
    EXPECT_EQ(planAt(9, 3, "0902 0903", {9h, 10h, 2min, {}}).text,
              "taken 1 of 30, next at 09:04, 1 missed")
        << "a due minute's picture is its own";
    EXPECT_EQ(planAt(12, 0, "", {9h, 17h, 30s, {}}).text, "no minute is due");
}

TEST(DayPlanTest, MarksOfManyMinutesShowTheWorst) {
    const Schedule everyMinute{0h, 23h + 59min, 1min, {}};
    DayPictures pictures;
    pictures.fill(PictureOrigin::Taken);
    const auto planOf = [&] {
        return planDay(everyMinute, dueMinutes(everyMinute), pictures, 23 * 60 + 59, 0);
    };
    EXPECT_EQ(planOf().text, "taken 1439 of 1439, next tomorrow at 00:00");
    pictures[minute(10, 3)] = PictureOrigin::None;
    pictures[minute(10, 4)] = PictureOrigin::Fetched;
    const std::vector<DayMark> marks = dayMarks(planOf(), 5);
    ASSERT_EQ(marks.size(), 288u);
    EXPECT_EQ(markText(marks[119]), "09:55 to 09:59 - 5 taken");
    EXPECT_EQ(markText(marks[120]),
              "10:00 to 10:04 - 3 taken, 1 fetched from the camera's store, 1 missed");
    EXPECT_EQ(marks[120].state, DayState::Missed);
    EXPECT_EQ(dayMarks(planWithoutRecording(pictures), 5)[120].state, DayState::Fetched);
    EXPECT_EQ(dayMarks(planAt(10, 15, "0900 0910 1000f"), 5).size(), 17U)
        << "sixteen due minutes and the one of another schedule";
    EXPECT_EQ(columnMinutes(3, 3), 1);
    EXPECT_EQ(columnMinutes(0.68, 3), 5);
    EXPECT_EQ(columnMinutes(0.01, 3), 60);
}

TEST(DayPlanTest, TheSunAgreesWithThePanel) {
    using namespace std::chrono;
    // declination -18.4 degrees, equation of time +15.4 minutes
    const auto autumn = sunOfDay(SiteValues(), 2006y / November / 15);
    ASSERT_TRUE(autumn);
    const auto noon = std::ranges::max_element(autumn->elevation);
    EXPECT_NEAR(*noon, 90 - 35.738 - 18.4, 0.3);
    EXPECT_NEAR(static_cast<double>(noon - autumn->elevation.begin()), 11 * 60 + 27, 3);
    for (const auto& [latitude, longitude, Tz] : {std::tuple{35.738, 139.315, 540},
                                                  {48.0, 11.0, 60},
                                                  {-33.9, 151.2, 600},
                                                  {40.7, -74.0, -300}}) {
        const SiteValues site{latitude, longitude, static_cast<std::int16_t>(Tz)};
        const auto sun = sunOfDay(site, 2006y / June / 1);
        SunTimes times;
        ASSERT_TRUE(sun && !ComputeSunriseSunset(site, 2006y / June / 1, times));
        EXPECT_EQ(minuteText(*sun->sunrise - 60).substr(1) + ":00", times.SunriseText) << latitude;
        EXPECT_EQ(minuteText(*sun->sunset + 60) + ":00", times.SunsetText) << latitude;
    }
    const auto polarDay = sunOfDay({80, 15, 60}, 2006y / June / 21);
    EXPECT_FALSE(polarDay->sunrise || polarDay->sunset);
    EXPECT_FALSE(sunOfDay({std::nan(""), 15, 60}, 2006y / June / 21));
}

/// Today over a real folder whose readings are counted.
struct Days : testing::Test {
    Days() {
        panel.Dir1[0].path = data.path();
        module.schedule = kHalfHours;
        module.RecordFlg = true;
        std::filesystem::create_directory(today);
    }
    void file(const std::string& name) { writeFile(today / name, jpegLike(name)); }
    const std::string& text() { return days.plan().text; }
    /// Every pass of the main loop, for that long.
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
    // from the camera's store: its own seconds; the clock of another PC may be ahead
    for (const auto& [name, ahead] :
         {std::pair("20061115_083017_00.jpg", 1s), std::pair("20061115_093017_00.jpg", 0s)}) {
        const auto changed = std::filesystem::file_time_type::clock::now() + ahead;
        setFolderTime(today, changed);
        refresh();
        file(name);
        setFolderTime(today, changed); // a file system with coarse stamps
        EXPECT_TRUE(refresh()) << name;
    }
    EXPECT_EQ(text(), "taken 1 of 2, next tomorrow at 09:00, 1 fetched later");
    EXPECT_EQ(reads, 5);
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

TEST_F(Days, AFolderThatCannotBeReadIsNotEmpty) {
    readable = false;
    days.refresh();
    days.add(today / "20061115_120000_00.jpg");
    EXPECT_EQ(text(), "today's folder cannot be read; see to its access rights");
    EXPECT_EQ(days.plan().missed + days.plan().gaps, 0);
    EXPECT_EQ(days.plan().taken, 1);
    EXPECT_EQ(std::ranges::count(days.plan().states, DayState::Missed), 0);
}

TEST_F(Days, TwoMissedInARowAreToldUntilACapture) {
    file("20061115_120000_00.jpg");
    days.follow();
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
TEST_F(Days, ASkippedMinuteIsNotDue) {
    file("20061115_120000_00.jpg");
    days.follow();
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
