#pragma once

#include "platform/Conversions.h"

namespace orvane {

using TimeOfDay = std::chrono::seconds; ///< since midnight

/// The daily recording window and interval. It repeats every day; dates play no part in it.
struct Schedule {
    TimeOfDay StartTime{};
    TimeOfDay EndTime{};
    TimeOfDay IntervalTime{};
    TimeOfDay NextRecTime{};

    bool operator==(const Schedule&) const = default;
};

/// The whole minutes of a time of day or a duration.
template <class Rep, class Period>
int wholeMinutes(std::chrono::duration<Rep, Period> time) {
    return static_cast<int>(std::chrono::floor<std::chrono::minutes>(time).count());
}

/// Whether a capture is due in minute `minuteOfDay` (0 to 1439): inside the window, whose end
/// minute is not part of it, and a multiple of the interval's minutes within the hour. Never with
/// an interval below one minute. Asked often, so it begins with what takes no division.
inline bool isDueMinute(const Schedule& schedule, int minuteOfDay) {
    const std::chrono::minutes end{minuteOfDay + 1}; // of the minute
    if (end <= schedule.StartTime || end > schedule.EndTime) return false;
    const int interval = wholeMinutes(schedule.IntervalTime) % 60;
    return interval != 0 && minuteOfDay % 60 % interval == 0;
}
/// How many minutes of a day are due.
int dueMinutesPerDay(const Schedule& schedule);
/// The time of the next capture: the first start + k * interval that lies after `now` and not after
/// `end`, else `start` (tomorrow's first). `interval` 0 gives `start`. Pure; all times of day.
TimeOfDay createNextRecTime(TimeOfDay start, TimeOfDay end, TimeOfDay interval, TimeOfDay now);

} // namespace orvane
