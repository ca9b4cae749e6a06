#pragma once

#include <array>
#include <chrono>
#include <optional>

namespace orvane {

/// The sun's elevation in degrees, cut to four decimals, for every minute of a universal day:
/// entry i belongs to i - 1 minutes after midnight. Entries 0 and 1441 are unused.
using ElevationTable = std::array<double, 1442>;

/// Latitude and longitude in degrees, north and east positive. Nothing when the calculation
/// overflows, divides by zero or has no finite result, as for coordinates that are no numbers.
///
/// Low-precision solar theory with Newcomb's mean elements (epoch 1900 January 0.5), good to about
/// 0.01 degree. March and April are computed one day (leap years) or two days (other years)
/// ahead of the calendar.
std::optional<ElevationTable> computeElevationByMinute(double latitude, double longitude,
                                                       std::chrono::year_month_day date);

/// Whether the sun counts as up: above -0.5 degrees, and not at it.
constexpr bool isSunUp(double elevation) {
    return elevation > -0.5;
}

} // namespace orvane
