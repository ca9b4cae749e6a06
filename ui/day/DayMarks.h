#pragma once

#include "archive/DayPlan.h"

#include <array>
#include <string>
#include <vector>

namespace orvane {

/// One mark of the drawing: a minute, or several that are too narrow to be told apart.
struct DayMark {
    int first = 0; ///< minute of the day
    int last = 0;
    DayState state = DayState::NotDue; ///< the worst of its minutes
    int worst = 0;                     ///< the first minute with that state
    bool isDue = false;                ///< at least one of its minutes is due
    std::array<int, kDayStates> counts{};
};

/// The marks in order of time; minutes with the same quotient by `columnMinutes` are merged.
std::vector<DayMark> dayMarks(const DayPlan& plan, int columnMinutes);
/// The fewest minutes, a divisor of 60, that are at least `pixels` wide.
int columnMinutes(double pixelsPerMinute, double pixels);
/// "09:30 - taken: 20061115_093000_00.jpg"; for several minutes "09:00 to 09:04 - 4 taken, 1
/// missed; 09:03: HTTP status 503". `detail` is the file or the reason of the worst minute; empty
/// when there is none.
std::string markText(const DayMark& mark, const std::string& detail = {});
} // namespace orvane
