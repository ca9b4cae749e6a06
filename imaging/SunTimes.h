#pragma once

#include "imaging/SunElevation.h"
#include "platform/Conversions.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

struct SiteValues {
    double latitude = 35.738;   ///< degrees, north positive
    double longitude = 139.315; ///< degrees, east positive
    std::int16_t Tz = 540;      ///< minutes east of universal time

    bool operator==(const SiteValues&) const = default;
};

/// Whether a place on earth has that value; degrees, and minutes east of universal time.
constexpr bool isLatitude(double degrees) {
    return degrees >= -90 && degrees <= 90;
}
constexpr bool isLongitude(double degrees) {
    return degrees >= -180 && degrees <= 180;
}
constexpr bool isZone(int minutes) {
    return minutes >= -12 * 60 && minutes <= 14 * 60;
}
/// By how many hours the zone is beside the sun's own time at the longitude, 0 to 12.
double hoursBesideSun(const SiteValues& site);

/// The day's two texts as time of day, hours without a leading zero ("3:53:00"); one that falls on
/// another day carries that day's date counted from day zero ("1899/12/29 23:53:00"). Empty until a
/// crossing has been found.
struct SunTimes {
    std::string SunriseText; ///< 60 minutes before the sun rises above -0.5 degrees
    std::string SunsetText;  ///< 60 minutes after it sets below -0.5 degrees
};

/// Computes the texts for `date` (the local calendar day) into `times`; a text whose crossing is
/// not found keeps its value. Returns why the calculation was given up, or nothing; texts written
/// before the fault stay as they were.
std::optional<std::string> ComputeSunriseSunset(const SiteValues& site,
                                                std::chrono::year_month_day date, SunTimes& times);

/// The part that looks for crossings: the last rising and the last setting of the universal day
/// win, a sample of exactly -0.5 counts as below. `Tz` in minutes east; its hours are rounded,
/// halves to even. A rising whose local hour is negative is a fault.
std::optional<std::string> scanCrossings(const ElevationTable& elevation, std::int16_t Tz,
                                         SunTimes& times);

/// The sun over one local day, by minute of the local day.
struct SunDay {
    std::array<double, kDayMinutes> elevation{}; ///< degrees
    /// First minute with the sun up, and with the sun down again: the crossings of -0.5 degrees
    /// whose times, moved by an hour, stand on the operation panel. Nothing in polar day or night.
    std::optional<int> sunrise;
    std::optional<int> sunset;
};

/// Uses the table that the panel's sun times come from: that of the universal day with the local
/// day's date, turned by the time zone. Where the two days differ, the sun is that of a day before
/// or after, which nobody sees in a drawing, and the times agree with the panel's to the minute
/// (but for zones with a part of an hour, which the panel rounds). Nothing when it cannot be
/// computed.
std::optional<SunDay> sunOfDay(const SiteValues& site, std::chrono::year_month_day date);

/// The daylight around the highest sun of a universal day, in minutes from the day's midnight. The
/// day is taken as a circle, as in `sunOfDay`: the sunrise may lie on the day before, the sunset on
/// the day after.
struct Daylight {
    int sunrise = 0; ///< first minute with the sun up, -1439 to 1439
    int noon = 0;    ///< the highest sun, 0 to 1439
    int sunset = 0;  ///< first minute with the sun down again, 1 to 2879
};

/// The same crossings that `scanCrossings` finds. Nothing in polar day and night.
std::optional<Daylight> daylightOf(const ElevationTable& elevation);

} // namespace orvane
