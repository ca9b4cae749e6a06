#include "station/Schedule.h"

namespace orvane {

int dueMinutesPerDay(const Schedule& schedule) {
    int due = 0;
    for (int minute = 0; minute < kDayMinutes; ++minute)
        due += isDueMinute(schedule, minute);
    return due;
}

TimeOfDay createNextRecTime(TimeOfDay start, TimeOfDay end, TimeOfDay interval, TimeOfDay now) {
    if (now < start || interval <= 0s) return start;
    const TimeOfDay next = start + ((now - start) / interval + 1) * interval;
    return next > end ? start : next;
}

} // namespace orvane
