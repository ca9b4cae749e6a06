#include "imaging/SunTimes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace orvane::test {
namespace {

// True rising and setting times, and elevations, from an independent ephemeris.

constexpr int kNone = 9999;      ///< no crossing on this day
constexpr int kAmbiguous = 9998; ///< too close to an hour or day edge to compare
constexpr int kFault = 9997;     ///< local hour of the rising is negative

constexpr std::size_t kDates = 15;
constexpr std::size_t kMinutes = 4;

/// The sun's geometric elevation from the earth's centre on one of the dates: by the ephemeris, and
/// by a second writing of the station's theory, cut to four decimals.
struct SunSample {
    std::size_t date; ///< index
    double elevation[kMinutes];
    double stated[kMinutes];
};

struct SunPlace {
    const char* name;
    double latitude;
    double longitude;
    std::int16_t Tz;
    int sunrise[kDates]; ///< minutes from day zero's midnight of the shifted text
    int sunset[kDates];
    SunSample day;
};
constexpr int kSunDates[kDates][3] = {
    {2019, 1, 3},   {2024, 2, 29}, {2025, 5, 1},  {2023, 5, 31},  {2026, 6, 21},
    {2020, 7, 4},   {2027, 8, 15}, {2024, 9, 22}, {2031, 10, 30}, {2022, 11, 11},
    {2025, 12, 21}, {2024, 3, 1},  {2025, 3, 20}, {2028, 4, 9},   {2026, 4, 30},
};
constexpr std::size_t kSunMinutes[kMinutes] = {0, 433, 871, 1300}; ///< of universal time
constexpr SunPlace kSunPlaces[] = {
#include "tests/data/sun-places.inc"
};

std::chrono::year_month_day day(int year, unsigned month, unsigned dayOfMonth) {
    return {std::chrono::year(year), std::chrono::month(month), std::chrono::day(dayOfMonth)};
}

std::chrono::year_month_day sunDate(std::size_t index) {
    const auto& [year, month, dayOfMonth] = kSunDates[index];
    return day(year, static_cast<unsigned>(month), static_cast<unsigned>(dayOfMonth));
}

/// Reads "h:mm:00", with or without the date of a neighbour of day zero.
int minutesOf(const std::string& text) {
    int day = 30, hour = -1, minute = -1, end = 0;
    const int prefix = text.starts_with("1899/12/") ? 11 : 0;
    if (prefix > 0) std::sscanf(text.c_str(), "1899/12/%d", &day);
    if (std::sscanf(text.c_str() + prefix, "%d:%2d:00%n", &hour, &minute, &end) != 2 ||
        prefix + end != static_cast<int>(text.size()))
        return kNone;
    return ((day - 30) * 24 + hour) * 60 + minute;
}

void expectNear(int expected, const std::string& text) {
    if (expected == kAmbiguous) return;
    if (expected == kNone)
        EXPECT_EQ(text, "");
    else
        EXPECT_LE(std::abs(minutesOf(text) - expected), 2) << text << " instead of " << expected;
}

/// On each of the dates at each of the places, to two minutes. March and April are computed for a
/// later date, by one day in leap years and by two in others; the ephemeris is asked for that one.
TEST(SunTimes, AgreeWithAnIndependentEphemeris) {
    for (const SunPlace& place : kSunPlaces)
        for (std::size_t i = 0; i < kDates; ++i) {
            SCOPED_TRACE(std::string(place.name) + ", date " + std::to_string(i));
            SunTimes times;
            const auto fault = ComputeSunriseSunset({place.latitude, place.longitude, place.Tz},
                                                    sunDate(i), times);
            EXPECT_EQ(fault.has_value(), place.sunrise[i] == kFault);
            if (fault) continue;
            expectNear(place.sunrise[i], times.SunriseText);
            expectNear(place.sunset[i], times.SunsetText);
        }
}

TEST(SunTimes, AreNotComputedForNoPlace) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    for (const SiteValues& site :
         {SiteValues{nan, 0, 0}, {0, nan, 0}, {infinite, 0, 0}, {0, -infinite, 0}}) {
        SunTimes times{"1:02:00", "23:04:00"};
        EXPECT_TRUE(ComputeSunriseSunset(site, day(2025, 6, 21), times));
        EXPECT_EQ(times.SunriseText + ' ' + times.SunsetText, "1:02:00 23:04:00");
    }
}

TEST(SunElevation, AgreesWithAnEphemerisAndASecondWriting) {
    for (const SunPlace& place : kSunPlaces) {
        SCOPED_TRACE(place.name);
        const auto table =
            computeElevationByMinute(place.latitude, place.longitude, sunDate(place.day.date));
        ASSERT_TRUE(table);
        for (std::size_t i = 0; i < kMinutes; ++i) {
            const double computed = (*table)[1 + kSunMinutes[i]];
            // The theory leaves out the equation of the equinoxes, 0.005 degree in time.
            EXPECT_NEAR(computed, place.day.elevation[i], 0.007);
            // One in the last place: libraries may round a sine differently.
            EXPECT_NEAR(computed, place.day.stated[i], 0.00011);
            EXPECT_EQ(computed, std::round(computed * 10'000) / 10'000) << "cut to four decimals";
        }
    }
}

struct Scan {
    const char* name;
    std::vector<std::pair<int, int>> above; ///< first entries above the threshold and below again
    int Tz;
    const char *sunrise, *sunset, *fault = "";
    double low = -5, high = 5; ///< degrees; the threshold is -0.5
};

// The entry before the crossing has index i; it is reported as universal minute i.
const Scan kScans[] = {
    {"plain", {{294, 1081}}, 0, "3:53:00", "19:00:00"},
    {"hour taken down by a day", {{1200, 1300}}, 540, "3:59:00", "7:39:00"},
    {"no crossing", {}, 540, "", ""},
    {"last of the day wins", {{101, 201}, {401, 501}}, 0, "5:40:00", "9:20:00"},
    {"first local hour falls on the day before", {{54, 700}}, 0, "1899/12/29 23:53:00", "12:39:00"},
    {"last local hour falls on the day after", {{300, 1388}}, 0, "3:59:00", "1899/12/31 0:07:00"},
    {"exact midnight", {{61, 1381}}, 0, "0:00:00", "1899/12/31 0:00:00"},
    {"5.5 rounds up to 6", {{31, 700}}, 330, "5:30:00", "17:39:00"},
    {"6.5 rounds down to 6", {{91, 700}}, 330, "5:30:00", "17:39:00"},
    {"-0.5 rounds to 0", {{11, 700}}, -30, "1899/12/29 23:10:00", "11:39:00"},
    {"negative rising hour", {{188, 700}}, -360, "", "", "-3:07 is not a time of day"},
    {"setting stays", {{1, 61}, {121, 181}}, -360, "", "20:00:00", "-4:00 is not a time of day"},
    {"negative setting hour is corrected", {{1, 241}}, -600, "", "19:00:00"}, // 4 - 10 + 24 + 1 h
    {"zone beyond two days", {{61, 700}}, 3000, "", "", "27:00 is not a time of day"},
    {"first pair", {{2, 700}}, 0, "1899/12/29 23:01:00", "12:39:00"},
    {"last pair", {{1440, 1441}}, 0, "22:59:00", ""},
    {"nothing is seen after the last sample", {{300, 1441}}, 0, "3:59:00", ""},
    {"exactly the threshold is below", {{301, 601}}, 0, "4:00:00", "11:00:00", "", -0.5, -0.4999},
    {"and never above", {{301, 601}}, 0, "", "", "", -5, -0.5}};

TEST(SunScan, WritesTheTexts) {
    for (const Scan& scan : kScans) {
        SCOPED_TRACE(scan.name);
        ElevationTable table;
        table.fill(scan.low);
        for (const auto& [from, to] : scan.above)
            std::fill(table.begin() + from, table.begin() + to, scan.high);
        SunTimes times{"as before", "as before"};
        const auto fault = scanCrossings(table, static_cast<std::int16_t>(scan.Tz), times);
        EXPECT_EQ(fault.value_or(""), scan.fault);
        EXPECT_EQ(times.SunriseText, *scan.sunrise == 0 ? "as before" : scan.sunrise);
        EXPECT_EQ(times.SunsetText, *scan.sunset == 0 ? "as before" : scan.sunset);
    }
}

} // namespace
} // namespace orvane::test
