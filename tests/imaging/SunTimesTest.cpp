#include "imaging/SunTimes.h"
#include "platform/Conversions.h"
#include "tests/imaging/SunTable.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

std::chrono::year_month_day day(int year, unsigned month, unsigned dayOfMonth) {
    return {std::chrono::year(year), std::chrono::month(month), std::chrono::day(dayOfMonth)};
}

/// Reads "h:mm:00", with or without the date of a neighbour of day zero.
int minutesOf(const std::string& text) {
    int base = 0;
    std::string time = text;
    if (text.starts_with("1899/12/29 ")) base = -1440;
    if (text.starts_with("1899/12/31 ")) base = 1440;
    if (base != 0) time = text.substr(11);
    int hour = -1;
    int minute = -1;
    int end = 0;
    if (std::sscanf(time.c_str(), "%d:%2d:00%n", &hour, &minute, &end) != 2 ||
        end != static_cast<int>(time.size()))
        return kNone;
    return base + hour * 60 + minute;
}

void expectNear(int expected, const std::string& text) {
    if (expected == kAmbiguous) return;
    if (expected == kNone)
        EXPECT_EQ(text, "");
    else
        EXPECT_LE(std::abs(minutesOf(text) - expected), 2) << text << " instead of " << expected;
}

TEST(SunTimes, AgreeWithAnIndependentEphemerisToTwoMinutes) {
    for (const SunRow& row : kSunTable) {
        SCOPED_TRACE(std::string(row.place) + " " + std::to_string(row.year) + "/" +
                     std::to_string(row.month) + "/" + std::to_string(row.day));
        SunTimes times;
        const auto fault = ComputeSunriseSunset({row.latitude, row.longitude, row.Tz},
                                                day(row.year, row.month, row.day), times);
        EXPECT_EQ(fault.has_value(), row.sunrise == kFault);
        if (fault) continue;
        expectNear(row.sunrise, times.SunriseText);
        expectNear(row.sunset, times.SunsetText);
    }
}

TEST(SunTimes, AprilEndsAheadOfTheFirstOfMay) {
    // 30 April 2026 is computed as 2 May, so the sun rises earlier on it than on 1 May.
    SunTimes april;
    SunTimes may;
    const SiteValues reykjavik{64.15, -21.94, 0};
    ASSERT_FALSE(ComputeSunriseSunset(reykjavik, day(2026, 4, 30), april));
    ASSERT_FALSE(ComputeSunriseSunset(reykjavik, day(2026, 5, 1), may));
    EXPECT_LT(minutesOf(april.SunriseText), minutesOf(may.SunriseText));
}

TEST(SunTimes, PolarDayAndNightKeepTheTexts) {
    for (const unsigned month : {6u, 12u}) {
        SunTimes times{"1:02:00", "23:04:00"};
        EXPECT_FALSE(ComputeSunriseSunset({78.2, 15.6, 60}, day(2025, month, 21), times));
        EXPECT_EQ(times.SunriseText, "1:02:00");
        EXPECT_EQ(times.SunsetText, "23:04:00");
    }
}

TEST(SunTimes, CoordinatesThatAreNoNumbersAreAFault) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    for (const auto& site : {SiteValues{nan, 0, 0}, SiteValues{0, nan, 0},
                             SiteValues{infinite, 0, 0}, SiteValues{0, -infinite, 0}}) {
        SunTimes times{"before", "before"};
        EXPECT_TRUE(ComputeSunriseSunset(site, day(2025, 6, 1), times));
        EXPECT_EQ(times.SunriseText, "before");
        EXPECT_EQ(times.SunsetText, "before");
    }
}

TEST(SunElevation, AgreesWithAnEphemerisAndASecondWriting) {
    for (const SunSample& sample : kSunSamples) {
        const auto table = computeElevationByMinute(sample.latitude, sample.longitude,
                                                    day(sample.year, sample.month, sample.day));
        ASSERT_TRUE(table);
        // The theory leaves out the equation of the equinoxes, 0.005 degree in time.
        EXPECT_NEAR((*table)[1 + sample.minute], sample.elevation, 0.007);
        // One in the last place: libraries may round a sine differently.
        EXPECT_NEAR((*table)[1 + sample.minute], sample.stated, 0.00011);
    }
}

TEST(SunElevation, IsCutToFourDecimalsTowardsZero) {
    const auto table = computeElevationByMinute(35.738, 139.315, day(2025, 6, 21));
    ASSERT_TRUE(table);
    for (std::size_t i = 1; i <= kDayMinutes; ++i) {
        char text[32];
        std::snprintf(text, sizeof text, "%.4f", (*table)[i]);
        EXPECT_EQ((*table)[i], std::strtod(text, nullptr)) << i;
    }
}

/// Entries above the threshold.
struct Up {
    std::size_t from; ///< first entry above
    std::size_t to;   ///< first entry below again
};
ElevationTable tableOf(const std::vector<Up>& spans, double below = -5, double above = 5) {
    ElevationTable table;
    table.fill(below);
    for (const Up& span : spans)
        for (std::size_t i = span.from; i < span.to; ++i)
            table[i] = above;
    return table;
}

struct Scan {
    const char* name;
    std::vector<Up> spans;
    int Tz;
    const char* sunrise;
    const char* sunset;
    const char* fault = "";
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
    {"zone beyond two days", {{61, 700}}, 3000, "", "", "27:00 is not a time of day"},
    {"first pair", {{2, 700}}, 0, "1899/12/29 23:01:00", "12:39:00"},
    {"last pair", {{1440, 1441}}, 0, "22:59:00", ""},
    {"nothing is seen after the last sample", {{300, 1441}}, 0, "3:59:00", ""},
};

TEST(SunScan, WritesTheTexts) {
    for (const Scan& scan : kScans) {
        SCOPED_TRACE(scan.name);
        SunTimes times;
        const auto fault =
            scanCrossings(tableOf(scan.spans), static_cast<std::int16_t>(scan.Tz), times);
        EXPECT_EQ(fault.value_or(""), scan.fault);
        EXPECT_EQ(times.SunriseText, scan.sunrise);
        EXPECT_EQ(times.SunsetText, scan.sunset);
    }
}

TEST(SunScan, NegativeSettingHourIsCorrected) {
    ElevationTable table = tableOf({{1, 241}}); // up from the first sample on: a setting only
    SunTimes times;
    EXPECT_FALSE(scanCrossings(table, -600, times));
    EXPECT_EQ(times.SunsetText, "19:00:00"); // 4 - 10 + 24 h, one hour later
    EXPECT_EQ(times.SunriseText, "");
}

TEST(SunScan, ExactlyTheThresholdCountsAsBelow) {
    SunTimes times;
    EXPECT_FALSE(scanCrossings(tableOf({{301, 601}}, -0.5, -0.4999), 0, times));
    EXPECT_EQ(times.SunriseText, "4:00:00");
    EXPECT_EQ(times.SunsetText, "11:00:00");

    SunTimes none;
    EXPECT_FALSE(scanCrossings(tableOf({{301, 601}}, -5, -0.5), 0, none));
    EXPECT_EQ(none.SunriseText, "");
    EXPECT_EQ(none.SunsetText, "");
}

TEST(SunScan, TextsWrittenBeforeAFaultStay) {
    SunTimes times;
    EXPECT_TRUE(scanCrossings(tableOf({{1, 61}, {121, 181}}), -360, times));
    EXPECT_EQ(times.SunsetText, "20:00:00"); // 1 - 6 + 24 h, one hour later
    EXPECT_EQ(times.SunriseText, "");
}

} // namespace
} // namespace orvane::test
