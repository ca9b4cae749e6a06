#pragma once

#include "imaging/SunTimes.h"
#include "platform/Conversions.h"

#include <array>
#include <optional>

namespace orvane {

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

} // namespace orvane
