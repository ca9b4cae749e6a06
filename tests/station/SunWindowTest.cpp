#include "station/SunWindow.h"

#include "archive/DayPlan.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using std::chrono::local_days;
using std::chrono::minutes;
using std::chrono::sys_seconds;

local_days dayOf2025(int number) {
    return local_days(std::chrono::year(2025) / 1 / 1) + std::chrono::days(number);
}

OffsetAt always(minutes offset) {
    return [offset](sys_seconds) { return offset; };
}

/// "05:19-17:33"; empty: no window.
std::string textOf(const std::optional<SunWindow>& window) {
    if (!window) return {};
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d-%02d:%02d", window->begin / 60, window->begin % 60,
                  window->end / 60, window->end % 60);
    return text;
}

/// Spencer's series for the equation of time and the declination, good to a minute or two; in
/// minutes of universal time. Nothing: the sun does not cross -0.5 degrees.
struct Sun {
    double rise;
    double set;
};
std::optional<Sun> sunBySpencer(double latitude, double longitude, int dayOfYear) {
    constexpr double kDegree = std::numbers::pi / 180;
    const double g = 2 * std::numbers::pi * (dayOfYear + 0.5) / 365;
    const double equation = 229.18 * (0.000075 + 0.001868 * std::cos(g) - 0.032077 * std::sin(g) -
                                      0.014615 * std::cos(2 * g) - 0.040849 * std::sin(2 * g));
    const double declination = 0.006918 - 0.399912 * std::cos(g) + 0.070257 * std::sin(g) -
                               0.006758 * std::cos(2 * g) + 0.000907 * std::sin(2 * g) -
                               0.002697 * std::cos(3 * g) + 0.00148 * std::sin(3 * g);
    const double phi = latitude * kDegree;
    const double cosine = (std::sin(-0.5 * kDegree) - std::sin(phi) * std::sin(declination)) /
                          (std::cos(phi) * std::cos(declination));
    if (std::abs(cosine) >= 1) return std::nullopt;
    const double noon = 720 - 4 * longitude - equation;
    const double half = 4 * std::acos(cosine) / kDegree;
    return Sun{noon - half, noon + half};
}

struct Place {
    const char* name;
    double latitude;
    double longitude;
    int offset; ///< of the PC, minutes
};
/// The sun of a day lies between those of some days around it: March and April are computed up to
/// two days ahead, and far from Greenwich half of a local day is another universal one.
constexpr int kDaysOff = 3;
constexpr double kMinutesOff = 3;

void expectBetween(int given, double a, double b) {
    const double low = std::clamp(std::min(a, b) - kMinutesOff, 0.0, 1439.0);
    const double high = std::clamp(std::max(a, b) + kMinutesOff, 0.0, 1439.0);
    EXPECT_GE(given, low);
    EXPECT_LE(given, high);
}

/// Days of 2025 without a window.
int withoutSun(const Place& place, int step = 1) {
    int without = 0;
    for (int day = 0; day < 365; day += step) {
        // the zone is none that the place would have: it plays no part
        const auto window = sunWindow({place.latitude, place.longitude, -600}, dayOf2025(day),
                                      always(minutes(place.offset)));
        without += !window;
        const auto before = sunBySpencer(place.latitude, place.longitude, day - kDaysOff);
        const auto behind = sunBySpencer(place.latitude, place.longitude, day + kDaysOff);
        SCOPED_TRACE(std::string(place.name) + ", day " + std::to_string(day) + " " +
                     textOf(window));
        if (before.has_value() != behind.has_value()) continue; // polar day or night is at hand
        EXPECT_EQ(window.has_value(), before.has_value());
        if (!window || !before) continue;
        // as the operator counts: the noon of the day, wherever it lies in universal time
        const double noon = (before->rise + before->set) / 2 + place.offset;
        const double shift = place.offset - 1440 * std::floor(noon / 1440);
        expectBetween(window->begin, before->rise + shift - 60, behind->rise + shift - 60);
        expectBetween(window->end, before->set + shift + 60, behind->set + shift + 60);
    }
    return without;
}

TEST(SunWindow, AYearAgreesWithAnIndependentSun) {
    EXPECT_EQ(withoutSun({"35.7 north", 35.7, 139.3, 540}), 0);
    EXPECT_EQ(withoutSun({"half-hour zone", 19.1, 72.9, 330}, 6), 0);
    EXPECT_EQ(withoutSun({"far east", -18.1, 178.4, 720}, 6), 0);
    EXPECT_EQ(withoutSun({"far west", -13.8, -171.8, -660}, 6), 0);
    EXPECT_EQ(withoutSun({"beyond the date line", -13.8, -171.8, 780}, 6), 0);
    // polar night from the end of November to the middle of January, midnight sun from the middle
    // of May to the end of July
    const int polar = withoutSun({"69.6 north", 69.6, 19.0, 60});
    EXPECT_GT(polar, 105);
    EXPECT_LT(polar, 125);
}

/// Minutes of the text that stands on the panel.
int minutesOf(const std::string& text) {
    int hour = -1;
    int minute = -1;
    EXPECT_EQ(std::sscanf(text.c_str(), "%d:%d:00", &hour, &minute), 2) << text;
    return hour * 60 + minute;
}

TEST(SunWindow, IsWhatThePanelShowsWhereTheZonesAgree) {
    const SiteValues site{35.738, 139.315, 540};
    for (int day = 0; day < 365; day += 2) {
        const local_days date = dayOf2025(day);
        SunTimes times;
        ASSERT_FALSE(ComputeSunriseSunset(site, std::chrono::year_month_day(date), times));
        const auto window = sunWindow(site, date, always(9h));
        ASSERT_TRUE(window);
        EXPECT_EQ(window->begin, minutesOf(times.SunriseText)) << day;
        EXPECT_EQ(window->end, minutesOf(times.SunsetText)) << day;
    }
}

/// Of a half-hour zone, which the panel's texts round: the crossings of the table itself.
TEST(SunWindow, AHalfHourCountsToTheMinute) {
    const local_days date = dayOf2025(172);
    const auto table = computeElevationByMinute(19.1, 72.9, std::chrono::year_month_day(date));
    ASSERT_TRUE(table);
    std::size_t rising = 0;
    std::size_t setting = 0;
    for (std::size_t i = 2; i <= kDayMinutes; ++i) {
        if ((*table)[i] > -0.5 && (*table)[i - 1] <= -0.5) rising = i - 1;
        if ((*table)[i] <= -0.5 && (*table)[i - 1] > -0.5) setting = i - 1;
    }
    const auto window = sunWindow({19.1, 72.9, 330}, date, always(330min));
    ASSERT_TRUE(window);
    EXPECT_EQ(window->begin, static_cast<int>(rising) + 330 - 60);
    EXPECT_EQ(window->end, static_cast<int>(setting) + 330 + 60);
}

/// Published for Tokyo on 21 June 2025: 4:25 and 19:00, of the sun's upper edge behind the air,
/// which is two minutes beside ours.
TEST(SunWindow, IsThatOfThePcsClockAndIsCutToTheDay) {
    const local_days june = dayOf2025(171);
    const SiteValues tokyo{35.68, 139.77, 540};
    const auto here = sunWindow(tokyo, june, always(9h));
    ASSERT_TRUE(here);
    EXPECT_NEAR(here->begin, 3 * 60 + 25, 4) << textOf(here);
    EXPECT_NEAR(here->end, 20 * 60, 4) << textOf(here);
    const auto of = [&](minutes offset) { return textOf(sunWindow(tokyo, june, always(offset))); };
    const auto time = minuteText;
    // the PC's clock runs three hours ahead of the site's, four behind it, on universal time
    EXPECT_EQ(of(12h), time(here->begin + 180) + "-" + time(here->end + 180));
    EXPECT_EQ(of(8h), time(here->begin - 60) + "-" + time(here->end - 60));
    EXPECT_EQ(of(5h), "00:00-" + time(here->end - 240));
    EXPECT_EQ(of(0h), "00:00-" + time(here->end - 540));
    // of the day whose noon it is: at 18 o'clock there
    EXPECT_EQ(of(-8h), time(here->begin - 17 * 60 + 1440) + "-23:59");
}

/// Berlin's summer time begins on 30 March 2025 at 1:00 universal time: each end of a window has
/// the offset of its own moment.
TEST(SunWindow, EachEndHasTheOffsetOfItsMoment) {
    const local_days march = local_days(std::chrono::year(2025) / 3 / 30);
    const SiteValues berlin{52.5, 13.4, 60};
    const auto winter = sunWindow(berlin, march, always(1h));
    ASSERT_TRUE(winter);
    const auto changingAt = [&](std::chrono::minutes moment) {
        const sys_seconds change = std::chrono::sys_days(march.time_since_epoch()) + moment;
        return sunWindow(berlin, march,
                         [change](sys_seconds time) { return time < change ? 1h : 2h; });
    };
    const auto night = changingAt(60min);
    ASSERT_TRUE(night);
    EXPECT_EQ(night->begin, winter->begin + 60);
    EXPECT_EQ(night->end, winter->end + 60);
    // half an hour before the sunrise: the window has begun by the old time
    const auto morning = changingAt(std::chrono::minutes(winter->begin - 60 + 30));
    ASSERT_TRUE(morning);
    EXPECT_EQ(morning->begin, winter->begin);
    EXPECT_EQ(morning->end, winter->end + 60);
}

TEST(SunWindow, ThereIsNoneWithoutASun) {
    const local_days day = dayOf2025(100);
    EXPECT_FALSE(sunWindow({std::nan(""), 0, 0}, day, always(0h)));
    EXPECT_FALSE(sunWindow({90, 0, 0}, day, always(0h)));
    EXPECT_FALSE(sunWindow({-90, 0, 0}, day, always(0h)));
}

} // namespace
} // namespace orvane::test
