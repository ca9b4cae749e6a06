#pragma once

#include "imaging/SunTimes.h"

#include <chrono>
#include <functional>
#include <optional>

namespace orvane {

/// The offset of the PC's local time from universal time at a moment, which may be any.
using OffsetAt = std::function<std::chrono::minutes(std::chrono::sys_seconds)>;

/// The recording window of a day around the sun, in minutes of the PC's local day; the end is not
/// part of it.
struct SunWindow {
    int begin = 0; ///< 0 or more
    int end = 0;   ///< more than `begin`, 1439 (23:59) at most, as can be typed
};

/// From one hour before the sunrise to one hour after the sunset at the site, in the PC's local
/// time; what reaches beyond the day is cut. Each end has the offset of its own moment, so the days
/// on which that changes are right; the site's own zone plays no part. Uses the table that the
/// panel's sun times come from, so that the two agree to the minute where the zones do. Nothing in
/// polar day and night, and when the sun cannot be computed.
std::optional<SunWindow> sunWindow(const SiteValues& site, std::chrono::local_days day,
                                   const OffsetAt& offsetAt);

} // namespace orvane
