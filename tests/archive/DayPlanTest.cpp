#include "archive/DayPlan.h"
#include "imaging/SunTimes.h"
#include "ui/day/DayMarks.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace orvane::test {
namespace {

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

constexpr Schedule kHalfHours{9h, 17h, 30min, {}}; // sixteen a day

DayPlan planAt(int hour, int minuteOfHour, const std::string& pictures,
               const Schedule& schedule = kHalfHours, int delay = 0) {
    return planDay(schedule, dueMinutes(schedule), picturesAt(pictures), hour * 60 + minuteOfHour,
                   delay);
}

TEST(DayPlanTest, CountsAndTells) {
    struct Case {
        int hour, minuteOfHour;
        const char *pictures, *text;
    };
    const Case cases[] = {
        {8, 0, "", "taken 0 of 16, next at 09:00"},
        {9, 0, "", "taken 0 of 16, next at 09:00"},
        {9, 1, "", "taken 0 of 16, next at 09:30, 1 missed"},
        {9, 0, "0900", "taken 1 of 16, next at 09:30"},
        // an outage, and what the synchronisation brought of it
        {12, 10, "0900 0930 1100 1130 1200", "taken 5 of 16, next at 12:30, 2 missed"},
        {12, 10, "0900 0930 1000f 1030 1100 1130 1200",
         "taken 6 of 16, next at 12:30, 1 fetched later"},
        {12, 10, "0900 0930 1000f 1100 1130 1200",
         "taken 5 of 16, next at 12:30, 1 fetched later, 1 missed"},
        // the minute that ends the window is not due, and neither is one before it
        {16, 31, "0830 1630 1700", "taken 1 of 16, next tomorrow at 09:00, 15 missed"},
        // another interval in the morning
        {9, 45, "0900 0910 0920 0930 0940f", "taken 2 of 16, next at 10:00"},
    };
    for (const auto& [hour, minuteOfHour, pictures, text] : cases)
        EXPECT_EQ(planAt(hour, minuteOfHour, pictures).text, text) << hour << ":" << minuteOfHour;
}

TEST(DayPlanTest, ALateCaptureBelongsToItsDueMinute) {
    const DayPlan late = planAt(9, 45, "0900 0931");
    EXPECT_EQ(late.text, "taken 2 of 16, next at 10:00");
    EXPECT_EQ(late.states[minute(9, 31)], DayState::NotDue) << "it is not shown twice";
    EXPECT_EQ(planAt(9, 45, "0900 0933").missed, 1) << "too late for a repeated fetch";
    EXPECT_EQ(planAt(9, 45, "0900 0931f").missed, 1) << "the store's pictures have true times";
    EXPECT_EQ(planAt(9, 45, "0900 0933", kHalfHours, 2).missed, 0);
    EXPECT_EQ(planAt(9, 32, "0900", kHalfHours, 2).text, "taken 1 of 16, next at 09:30");
    EXPECT_EQ(planAt(9, 33, "0900", kHalfHours, 2).missed, 1);
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

} // namespace
} // namespace orvane::test
