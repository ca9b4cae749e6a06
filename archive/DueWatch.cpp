#include "archive/DueWatch.h"

#include "platform/Conversions.h"

namespace orvane {

namespace {

std::string hourMinuteOf(std::int64_t minute) {
    return hourMinute(WallTime(std::chrono::minutes(minute)));
}

} // namespace

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
