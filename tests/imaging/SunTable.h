#pragma once

// True rising and setting times, and elevations, from an independent ephemeris.

#include <cstddef>
#include <cstdint>

namespace orvane::test {

inline constexpr int kNone = 9999;      ///< no crossing on this day
inline constexpr int kAmbiguous = 9998; ///< too close to an hour or day edge to compare
inline constexpr int kFault = 9997;     ///< local hour of the rising is negative

inline constexpr std::size_t kDates = 15;
inline constexpr std::size_t kMinutes = 4;

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
inline constexpr int kSunDates[kDates][3] = {
    {2019, 1, 3},   {2024, 2, 29}, {2025, 5, 1},  {2023, 5, 31},  {2026, 6, 21},
    {2020, 7, 4},   {2027, 8, 15}, {2024, 9, 22}, {2031, 10, 30}, {2022, 11, 11},
    {2025, 12, 21}, {2024, 3, 1},  {2025, 3, 20}, {2028, 4, 9},   {2026, 4, 30},
};
inline constexpr std::size_t kSunMinutes[kMinutes] = {0, 433, 871, 1300}; ///< of universal time
inline constexpr SunPlace kSunPlaces[] = {
#include "tests/data/sun-places.inc"
};

} // namespace orvane::test
