#include "station/DaySchedules.h"

#include "station/PanelSchedule.h"

#include <utility>

namespace orvane {

namespace {

constexpr std::size_t kMostWindows = 400; // a year that somebody leafs through

std::string timesText(const Schedule& schedule) {
    const WallTime midnight{};
    return hourMinute(midnight + schedule.StartTime) + " to " +
           hourMinute(midnight + schedule.EndTime);
}

} // namespace

DaySchedules::Rule DaySchedules::rule() const {
    const bool followsSun = panel_.chk_sun.ticked;
    const bool recording = module_.RecordFlg;
    if (recording && !followsSun) return {module_.schedule, false, {}};
    Rule rule{scheduleOf(panel_), followsSun, siteOf(today_)};
    if (recording) rule.typed.IntervalTime = module_.schedule.IntervalTime;
    return rule;
}

Schedule DaySchedules::of(std::chrono::local_days day, const Rule& rule) const {
    Schedule schedule = rule.typed;
    if (!rule.followsSun) return schedule;
    if (const auto& window = windowOf(day, rule.site)) {
        schedule.StartTime = std::chrono::minutes(window->begin);
        schedule.EndTime = std::chrono::minutes(window->end);
    }
    return schedule;
}

bool DaySchedules::isDue(std::int64_t minute) const {
    const WallTime moment = momentOf(minute);
    return isDueMinute(of(std::chrono::floor<std::chrono::days>(moment)), minuteOfDay(moment));
}

/// What was in the field at midnight counts for the new day, even if it is half a number: it is in
/// force in all other respects.
const SiteValues& DaySchedules::siteOf(std::chrono::local_days today) const {
    return module_.siteInEdit && today == today_ ? seen_.site : module_.site;
}

const std::optional<SunWindow>& DaySchedules::windowOf(std::chrono::local_days day,
                                                       const SiteValues& site) const {
    if (site != windowsSite_ || windows_.size() > kMostWindows) windows_.clear();
    windowsSite_ = site;
    const auto found = windows_.find(day);
    if (found != windows_.end()) return found->second;
    return windows_.emplace(day, sunWindow(site, day, offsetAt_)).first->second;
}

void DaySchedules::begin() {
    seen_.minute = -1;
    follow();
}

/// Once a second and more often.
void DaySchedules::follow() {
    const WallTime now = clock_.now();
    const std::int64_t minute = minuteIndex(now);
    const bool followsSun = panel_.chk_sun.ticked;
    const bool isSame = minute == seen_.minute && followsSun == seen_.followsSun &&
                        module_.RecordFlg == seen_.recording;
    if (isSame && (module_.siteInEdit || module_.site == seen_.site)) return;
    const auto today = std::chrono::floor<std::chrono::days>(now);
    const Seen seen{minute, followsSun, module_.RecordFlg, siteOf(today)};
    today_ = today;
    const Seen before = std::exchange(seen_, seen);
    if (seen.followsSun != before.followsSun) ++revision_;
    if (seen.followsSun) {
        if (seen.site != before.site) ++revision_;
        followOffset(today);
        // a station that has not recorded since its start has none in force
        if (seen.recording || module_.schedule != Schedule()) enforce(of(today), now);
    }
    show(today);
}

/// At noon, universal time: it differs when the PC's zone was changed, and behind a day on which
/// summer time begins or ends, which does no harm.
void DaySchedules::followOffset(std::chrono::local_days today) {
    const std::chrono::sys_days date(today.time_since_epoch());
    const auto offset = offsetAt_(date + 12h);
    if (std::exchange(offset_, offset) == offset) return;
    windows_.clear();
    ++revision_;
}

void DaySchedules::enforce(Schedule schedule, WallTime now) {
    schedule.NextRecTime = module_.schedule.NextRecTime;
    if (schedule == module_.schedule) return;
    schedule.NextRecTime =
        createNextRecTime(schedule.StartTime, schedule.EndTime, schedule.IntervalTime,
                          std::chrono::floor<std::chrono::seconds>(timeOfDay(now)));
    module_.schedule = schedule;
    ++revision_;
}

void DaySchedules::show(std::chrono::local_days today) {
    if (!seen_.followsSun) {
        panel_.lbl_window.caption = std::string();
        return;
    }
    panel_.lbl_window.caption =
        (windowOf(today, seen_.site) ? "today " : "no sunrise today: ") + timesText(of(today));
}

} // namespace orvane
