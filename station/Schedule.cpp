#include "station/Schedule.h"

namespace orvane {

bool isDueMinute(const Schedule& schedule, int minuteOfDay) {
    const int interval = wholeMinutes(schedule.IntervalTime) % 60;
    if (interval == 0) return false;
    return minuteOfDay >= wholeMinutes(schedule.StartTime) &&
           minuteOfDay < wholeMinutes(schedule.EndTime) && minuteOfDay % 60 % interval == 0;
}

int dueMinutesPerDay(const Schedule& schedule) {
    int due = 0;
    for (int minute = 0; minute < kDayMinutes; ++minute)
        due += isDueMinute(schedule, minute);
    return due;
}

} // namespace orvane
