#include "core/DailyClocks.h"

namespace orvane {

namespace {

/// Whether the schedule leaves no minute that is neither due nor followed by a due one.
bool leavesNoGap(const Schedule& schedule) {
    const int interval = wholeMinutes(schedule.IntervalTime) % 60;
    return interval == 1 || interval == 2;
}

} // namespace

bool DailyClocks::isDue(WallTime now, bool justCaptured) const {
    if (!module_.RecordFlg || module_.AdjTime != 1 || busy_.active()) return false;
    const auto day = std::chrono::floor<std::chrono::days>(now);
    if (day == lastDay_) return false;
    const std::int64_t minute = minuteIndex(now);
    const bool clear = !schedules_.isDue(minute) && !schedules_.isDue(minute + 1);
    return clear || (justCaptured && leavesNoGap(module_.schedule));
}

Task<> DailyClocks::run() {
    lastDay_ = std::chrono::floor<std::chrono::days>(clock_.now());
    const Scope dialog(showDialog_);
    Task<> camera = setting_.activate();
    co_await camera;
    Task<std::optional<std::string>> tracker = setting_.setTrackerClock(true);
    const std::optional<std::string> fault = co_await tracker;
    last_ = Outcome{clock_.now(), fault};
    warnings_.set(Warnings::Cause::ClockSetting,
                  fault ? "The daily clock setting failed: " + *fault : "");
}

} // namespace orvane
