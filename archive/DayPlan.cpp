#include "archive/DayPlan.h"

#include <algorithm>

namespace orvane {

namespace {

/// A fetch that is repeated up to the end of its minute may take the time-out's minute more.
constexpr int kRepeatMinutes = 2;

std::size_t at(int minute) {
    return static_cast<std::size_t>(minute);
}

DayState stateOf(PictureOrigin origin) {
    switch (origin) {
    case PictureOrigin::Taken:
        return DayState::Taken;
    case PictureOrigin::Fetched:
        return DayState::Fetched;
    case PictureOrigin::None:
        break;
    }
    return DayState::NotDue;
}

/// Of a due minute that is over and has no picture.
DayState withoutPicture(Watch watch) {
    if (watch == Watch::Off) return DayState::Off;
    return watch == Watch::NotRunning ? DayState::NotRunning : DayState::Missed;
}

void judge(DayPlan& plan, const DayPictures& pictures, int minute, int now, int delay,
           const WatchMinutes& watch) {
    DayState& state = plan.states[at(minute)];
    if (state == DayState::Taken) {
        ++plan.taken;
        return;
    }
    if (const auto capture = captureOf(plan.isDue, pictures, minute, delay)) {
        if (*capture != minute) plan.states[at(*capture)] = DayState::NotDue;
        state = DayState::Taken;
    }
    if (state == DayState::NotDue)
        state = minute + delay < now ? withoutPicture(watch[at(minute)]) : DayState::ToCome;
    plan.taken += state == DayState::Taken;
    plan.fetched += state == DayState::Fetched;
    plan.missed += state == DayState::Missed;
    plan.notRecorded += state == DayState::Off || state == DayState::NotRunning;
    plan.gaps += isGap(state);
}

void judgeAll(DayPlan& plan, const DayPictures& pictures, int now, int delay,
              const WatchMinutes& watch) {
    plan.due = static_cast<int>(std::ranges::count(plan.isDue, true));
    for (int minute = 0; minute < kDayMinutes; ++minute)
        if (plan.isDue[at(minute)]) judge(plan, pictures, minute, now, delay, watch);
}

DayPlan planOf(const DayPictures& pictures) {
    DayPlan plan;
    std::ranges::transform(pictures, plan.states.begin(), stateOf);
    return plan;
}

void findNext(DayPlan& plan, const Schedule& tomorrow) {
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        plan.nextIsToday = plan.isDue[at(minute)] && plan.states[at(minute)] == DayState::ToCome;
        if (plan.nextIsToday || (!plan.next && isDueMinute(tomorrow, minute))) plan.next = minute;
        if (plan.nextIsToday) return;
    }
}

std::string planText(const DayPlan& plan) {
    if (plan.due == 0) return "no minute is due";
    std::string text = "taken " + std::to_string(plan.taken) + " of " + std::to_string(plan.due);
    if (plan.next)
        text += (plan.nextIsToday ? ", next at " : ", next tomorrow at ") + minuteText(*plan.next);
    if (plan.fetched > 0) text += ", " + std::to_string(plan.fetched) + " fetched later";
    if (plan.missed > 0) text += ", " + std::to_string(plan.missed) + " missed";
    if (plan.notRecorded > 0) text += ", " + std::to_string(plan.notRecorded) + " not recorded";
    return text;
}

} // namespace

DueMinutes dueMinutes(const Schedule& schedule) {
    DueMinutes isDue{};
    for (int minute = 0; minute < kDayMinutes; ++minute)
        isDue[at(minute)] = isDueMinute(schedule, minute);
    return isDue;
}

std::optional<int> captureOf(const DueMinutes& isDue, const DayPictures& pictures, int due,
                             int delay) {
    if (pictures[at(due)] == PictureOrigin::Taken) return due;
    const int last = std::min(due + kRepeatMinutes + delay, kDayMinutes - 1);
    for (int minute = due + 1; minute <= last && !isDue[at(minute)]; ++minute)
        if (pictures[at(minute)] == PictureOrigin::Taken) return minute;
    return std::nullopt;
}

DayPlan planWithoutRecording(const DayPictures& pictures, const DueMinutes& isDue, int now,
                             int delay, const WatchMinutes& watch) {
    DayPlan plan = planOf(pictures);
    for (int minute = 0; minute + delay < now; ++minute)
        plan.isDue[at(minute)] = isDue[at(minute)] && watch[at(minute)] != Watch::Unknown;
    judgeAll(plan, pictures, now, delay, watch);
    plan.text = "recording is off";
    return plan;
}

DayPlan planDay(const Schedule& schedule, const DueMinutes& isDue, const DayPictures& pictures,
                int now, int delay, const WatchMinutes& watch,
                const std::optional<Schedule>& tomorrow) {
    DayPlan plan = planOf(pictures);
    plan.isDue = isDue;
    plan.begin = wholeMinutes(schedule.StartTime);
    plan.end = wholeMinutes(schedule.EndTime);
    judgeAll(plan, pictures, now, delay, watch);
    findNext(plan, tomorrow.value_or(schedule));
    plan.text = planText(plan);
    return plan;
}

DayPlan planPastDay(const DueMinutes& isDue, const DayPictures& pictures, int delay,
                    const WatchMinutes& watch) {
    DayPlan plan = planOf(pictures);
    plan.isDue = isDue;
    const auto first = std::ranges::find(isDue, true);
    const auto last = std::find(isDue.rbegin(), isDue.rend(), true);
    if (first != isDue.end()) plan.begin = static_cast<int>(first - isDue.begin());
    if (first != isDue.end()) plan.end = static_cast<int>(last.base() - isDue.begin());
    judgeAll(plan, pictures, kDayMinutes + delay, delay, watch);
    plan.text = plan.due == 0 ? "no minute was due" : planText(plan);
    return plan;
}

std::string minuteText(int minuteOfDay) {
    return twoDigits(minuteOfDay / 60) + ":" + twoDigits(minuteOfDay % 60);
}

} // namespace orvane
