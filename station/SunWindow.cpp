#include "station/SunWindow.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int kBeside = 60; ///< minutes between the window's ends and the sun's

} // namespace

/// A local day has the daylight whose highest sun falls on it: east or west of the meridian of
/// Greenwich its sunrise may be on the universal day before, or its sunset on the one after.
std::optional<SunWindow> sunWindow(const SiteValues& site, std::chrono::local_days day,
                                   const OffsetAt& offsetAt) {
    using std::chrono::minutes;
    const auto table =
        computeElevationByMinute(site.latitude, site.longitude, std::chrono::year_month_day(day));
    const std::optional<Daylight> light = table ? daylightOf(*table) : std::nullopt;
    if (!light) return std::nullopt;
    const std::chrono::sys_days date(day.time_since_epoch());
    const minutes noon(light->noon);
    const auto turn = std::chrono::floor<std::chrono::days>(noon + offsetAt(date + noon));
    const auto localMinute = [&](int minute) {
        const auto since = minutes(minute) - turn;
        return static_cast<int>((since + offsetAt(date + since)).count());
    };
    const SunWindow window{std::max(localMinute(light->sunrise - kBeside), 0),
                           std::min(localMinute(light->sunset + kBeside), kDayMinutes - 1)};
    if (window.begin >= window.end) return std::nullopt; // the day itself was cut
    return window;
}

} // namespace orvane
