#include "imaging/SunDay.h"

namespace orvane {

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

} // namespace orvane
