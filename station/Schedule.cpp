#include "station/Schedule.h"

namespace orvane {

int dueMinutesPerDay(const Schedule& schedule) {
    int due = 0;
    for (int minute = 0; minute < kDayMinutes; ++minute)
        due += isDueMinute(schedule, minute);
    return due;
}

} // namespace orvane
