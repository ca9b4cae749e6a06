#include "core/DueWatch.h"

#include "platform/Conversions.h"

namespace orvane {

namespace {

constexpr std::int64_t kDayMinutes = 24 * 60;

int wholeMinutes(TimeOfDay time) {
    return static_cast<int>(std::chrono::floor<std::chrono::minutes>(time).count());
}

std::string hourMinuteOf(std::int64_t minute) {
    return hourMinute(WallTime(std::chrono::minutes(minute)));
}

} // namespace

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

void DueWatch::filed(std::int64_t minute) {
    lastFiled_ = minute;
    missed_ = 0;
    warning_.clear();
}

void DueWatch::advance(WallTime now, const Schedule& schedule) {
    const std::int64_t current = minuteIndex(now);
    if (current == next_) return;
    const bool jumped = current < next_ || current > next_ + kDayMinutes;
    if (!jumped) {
        for (; next_ < current; ++next_)
            judge(next_, schedule);
    }
    next_ = current;
}

void DueWatch::reset() {
    *this = DueWatch();
}

void DueWatch::judge(std::int64_t minute, const Schedule& schedule) {
    const int minuteOfDay = static_cast<int>(minute % kDayMinutes);
    if (!isDueMinute(schedule, minuteOfDay) || isFiled(minute)) return;
    ++missedInAll_;
    if (++missed_ == 1) firstMissed_ = minute;
    // the text stays with further misses: a changed one would open the warning again every time
    if (missed_ == 2)
        warning_ = "No image at " + hourMinuteOf(firstMissed_) + " and " + hourMinuteOf(minute) +
                   ". Please check the camera.";
}

} // namespace orvane
