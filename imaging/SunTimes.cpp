#include "imaging/SunTimes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orvane {

namespace {

constexpr int kShift = 60; ///< minutes between a crossing and its text

enum class Crossing { Rising, Setting };

/// Hour of the local day. Only a setting crossing is moved up from the day before.
int localHour(Crossing crossing, int universalHour, std::int16_t Tz) {
    // The default rounding mode takes halves to even.
    int hour = static_cast<int>(std::nearbyint(Tz / 60.0 + universalHour));
    if (hour >= 24) hour -= 24;
    if (crossing == Crossing::Setting && hour < 0) hour += 24;
    return hour;
}

/// `minutes` from midnight of day zero, 1899/12/30, from one day before to one day after it.
std::string timeText(int minutes) {
    const char* date = minutes < 0 ? "1899/12/29 " : minutes >= kDayMinutes ? "1899/12/31 " : "";
    const int inDay = (minutes + kDayMinutes) % kDayMinutes;
    char text[32];
    std::snprintf(text, sizeof text, "%s%d:%02d:00", date, inDay / 60, inDay % 60);
    return text;
}

std::optional<std::string> writeText(Crossing crossing, int minuteIndex, std::int16_t Tz,
                                     SunTimes& times) {
    const int minute = minuteIndex % 60;
    const int hour = localHour(crossing, minuteIndex / 60, Tz);
    if (hour < 0 || hour >= 24) {
        char text[48];
        std::snprintf(text, sizeof text, "%d:%02d is not a time of day", hour, minute);
        return text;
    }
    const int time = hour * 60 + minute;
    if (crossing == Crossing::Rising)
        times.SunriseText = timeText(time - kShift);
    else
        times.SunsetText = timeText(time + kShift);
    return std::nullopt;
}

std::optional<Crossing> crossingBetween(double before, double after) {
    if (isSunUp(before) == isSunUp(after)) return std::nullopt;
    return isSunUp(after) ? Crossing::Rising : Crossing::Setting;
}

} // namespace

double hoursBesideSun(const SiteValues& site) {
    return std::abs(std::remainder(site.Tz / 60.0 - site.longitude / 15, 24));
}

std::optional<std::string> scanCrossings(const ElevationTable& elevation, std::int16_t Tz,
                                         SunTimes& times) {
    for (std::size_t i = 1; i < elevation.size() - 2; ++i) {
        const std::optional<Crossing> crossing = crossingBetween(elevation[i], elevation[i + 1]);
        if (!crossing) continue;
        if (auto fault = writeText(*crossing, static_cast<int>(i), Tz, times)) return fault;
    }
    return std::nullopt;
}

std::optional<std::string> ComputeSunriseSunset(const SiteValues& site,
                                                std::chrono::year_month_day date, SunTimes& times) {
    const std::optional<ElevationTable> elevation =
        computeElevationByMinute(site.latitude, site.longitude, date);
    if (!elevation) return "no sun elevation for this latitude and longitude";
    return scanCrossings(*elevation, site.Tz, times);
}

std::optional<SunDay> sunOfDay(const SiteValues& site, std::chrono::year_month_day date) {
    const auto table = computeElevationByMinute(site.latitude, site.longitude, date);
    if (!table) return std::nullopt;
    SunDay day;
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        const int universal = ((minute - site.Tz) % kDayMinutes + kDayMinutes) % kDayMinutes;
        day.elevation[static_cast<std::size_t>(minute)] =
            (*table)[static_cast<std::size_t>(universal) + 1];
    }
    for (std::size_t minute = 1; minute < day.elevation.size(); ++minute) {
        const bool up = isSunUp(day.elevation[minute]);
        if (up == isSunUp(day.elevation[minute - 1])) continue;
        (up ? day.sunrise : day.sunset) = static_cast<int>(minute);
    }
    return day;
}

std::optional<Daylight> daylightOf(const ElevationTable& elevation) {
    const auto isUp = [&](int minute) {
        const int ofDay = (minute + kDayMinutes) % kDayMinutes;
        return isSunUp(elevation[static_cast<std::size_t>(ofDay) + 1]);
    };
    const auto highest = std::max_element(elevation.begin() + 1, elevation.end() - 1);
    const auto noon = static_cast<int>(highest - elevation.begin()) - 1;
    if (!isUp(noon)) return std::nullopt;
    Daylight light{noon, noon, noon + 1};
    while (isUp(light.sunset))
        if (++light.sunset == noon + kDayMinutes) return std::nullopt;
    while (isUp(light.sunrise - 1))
        --light.sunrise;
    return light;
}

} // namespace orvane
