#pragma once

#include "archive/DayPictures.h"
#include "station/Module1.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// What there is to say about one minute of a day.
enum class DayState : std::uint8_t { NotDue, Taken, Missed, Fetched, ToCome };
inline constexpr std::size_t kDayStates = 5;

/// A day's due minutes and what became of them. It comes from the schedule and the day's files
/// alone, so it is the same after a restart, with two consequences: an outage and a minute before
/// recording was switched on both count as missed, and after a change of the schedule the past is
/// judged by the new one. A picture outside the due minutes keeps its state but is not counted.
///
/// While recording is off nobody expects a picture: nothing is due, missed or to come, and the
/// states tell only what the folder holds.
struct DayPlan {
    std::array<DayState, kDayMinutes> states{}; ///< by minute of the day
    std::array<bool, kDayMinutes> isDue{};
    int due = 0; ///< minutes of the whole day; the next three count these only
    int taken = 0;
    int fetched = 0;
    int missed = 0;
    std::optional<int> next;  ///< minute of the next capture; nothing when no minute is due
    bool nextIsToday = false; ///< else `next` is tomorrow's
    std::optional<int> begin; ///< first minute of the recording window; nothing while it is off
    std::optional<int> end;   ///< the minute that ends it
    std::string text;         ///< "taken 12 of 17, next at 14:30, 2 fetched later, 3 missed"
};

/// Judges the day of `now`. `pictures` are those of that day.
///
/// A capture is named after the moment of its copy, which `delay` (below 0 counts as 0) and a
/// repeated fetch move beyond the due minute. So a due minute without a capture takes the one that
/// follows it closely, and is still to come until it and the whole minutes of `delay` are over.
DayPlan planDay(const Schedule& schedule, bool recording, const DayPictures& pictures, WallTime now,
                std::chrono::seconds delay);

/// One mark of the drawing: a minute, or several that are too narrow to be told apart.
struct DayMark {
    int first = 0; ///< minute of the day
    int last = 0;
    DayState state = DayState::NotDue; ///< the worst of its minutes
    bool isDue = false;                ///< at least one of its minutes is due
    std::array<int, kDayStates> counts{};
};

/// The marks in order of time; minutes with the same quotient by `columnMinutes` are merged.
std::vector<DayMark> dayMarks(const DayPlan& plan, int columnMinutes);
/// The fewest minutes, a divisor of 60, that are at least `pixels` wide.
int columnMinutes(double pixelsPerMinute, double pixels);
/// "09:30 - taken"; for several minutes "09:00 to 09:04 - 4 taken, 1 missed".
std::string markText(const DayMark& mark);
/// "09:30" for minute 570 of the day; 1440 is "24:00".
std::string minuteText(int minuteOfDay);

} // namespace orvane
