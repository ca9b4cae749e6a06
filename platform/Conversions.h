#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

inline constexpr int kDayMinutes = 24 * 60;

/// The whole text as a decimal number with a point as separator, blanks around it allowed. Nothing
/// for anything else, infinities and "nan" included.
std::optional<double> toDouble(std::string_view text);
/// The whole text as a number, rounded to the nearest integer with ties to even; nothing when it is
/// not a number or does not fit 16 bits.
std::optional<std::int16_t> toInt16(std::string_view text);
/// The leading number of a text; 0 when it does not start with one.
double leadingNumber(std::string_view text);
/// The shortest decimal text that reads back as the same number.
std::string toText(double value);

/// Wall time as text: "yyyy/mm/dd", "hh:mm:ss", "yyyymmdd", "yyyymmdd_hhmm", "hh:mm".
std::string dateText(WallTime time);
std::string timeText(WallTime time);
std::string dateDigits(WallTime time);
std::string minuteStamp(WallTime time);
std::string hourMinute(WallTime time);
/// A date as people write it, in English everywhere: "5 Nov 2006".
std::string plainDate(WallTime time);
/// "Jan" to "Dec".
const char* monthName(std::chrono::month month);

/// The offset of a local time from universal time, less than a day: "+09:00".
std::string offsetText(std::chrono::minutes offset);
/// Whole seconds with that offset, as ISO 8601 has it: "2006-11-15T12:30:00+09:00".
std::string isoTime(WallTime time, std::chrono::minutes offset);
/// The same moment in seconds since the beginning of 1970, universal time.
std::int64_t universalSeconds(WallTime time, std::chrono::minutes offset);

/// 0 to 99 with a leading zero.
std::string twoDigits(int value);

/// The calendar day of a wall time.
std::chrono::year_month_day dayOf(WallTime time);
/// The time since midnight.
inline std::chrono::milliseconds timeOfDay(WallTime time) {
    return time - std::chrono::floor<std::chrono::days>(time);
}
/// The minute of the day that a wall time lies in, 0 to 1439.
inline int minuteOfDay(WallTime time) {
    return static_cast<int>(timeOfDay(time) / 1min);
}
/// Whole minutes since the start of the calendar's count; equal exactly within one minute.
inline std::int64_t minuteIndex(WallTime time) {
    return std::chrono::floor<std::chrono::minutes>(time.time_since_epoch()).count();
}
/// The first moment of a minute counted so.
WallTime momentOf(std::int64_t minute);

} // namespace orvane
