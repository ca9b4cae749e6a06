#include "archive/DayPlan.h"

#include "platform/Conversions.h"

#include <algorithm>
#include <cstdio>

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

/// The capture of due minute `due` that was filed up to `late` minutes after it; nothing when there
/// is none before the next due minute.
std::optional<int> lateCapture(const DayPlan& plan, int due, int late) {
    const int last = std::min(due + late, kDayMinutes - 1);
    for (int minute = due + 1; minute <= last && !plan.isDue[at(minute)]; ++minute)
        if (plan.states[at(minute)] == DayState::Taken) return minute;
    return std::nullopt;
}

void judge(DayPlan& plan, int minute, int now, int delay) {
    DayState& state = plan.states[at(minute)];
    if (state != DayState::Taken) {
        if (const auto late = lateCapture(plan, minute, kRepeatMinutes + delay)) {
            plan.states[at(*late)] = DayState::NotDue;
            state = DayState::Taken;
        }
    }
    if (state == DayState::NotDue)
        state = minute + delay < now ? DayState::Missed : DayState::ToCome;
    plan.taken += state == DayState::Taken;
    plan.fetched += state == DayState::Fetched;
    plan.missed += state == DayState::Missed;
}

void findNext(DayPlan& plan) {
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        if (!plan.isDue[at(minute)]) continue;
        plan.nextIsToday = plan.states[at(minute)] == DayState::ToCome;
        if (plan.nextIsToday || !plan.next) plan.next = minute;
        if (plan.nextIsToday) return;
    }
}

std::string planText(const DayPlan& plan) {
    if (!plan.next) return "no minute is due";
    std::string text = "taken " + std::to_string(plan.taken) + " of " + std::to_string(plan.due);
    text += (plan.nextIsToday ? ", next at " : ", next tomorrow at ") + minuteText(*plan.next);
    if (plan.fetched > 0) text += ", " + std::to_string(plan.fetched) + " fetched later";
    if (plan.missed > 0) text += ", " + std::to_string(plan.missed) + " missed";
    return text;
}

/// The higher, the more it deserves to be seen.
int severity(DayState state) {
    switch (state) {
    case DayState::Missed:
        return 4;
    case DayState::Fetched:
        return 3;
    case DayState::ToCome:
        return 2;
    case DayState::Taken:
        return 1;
    case DayState::NotDue:
        break;
    }
    return 0;
}

const char* stateText(DayState state) {
    switch (state) {
    case DayState::Taken:
        return "taken";
    case DayState::Missed:
        return "missed";
    case DayState::Fetched:
        return "fetched from the camera's store";
    case DayState::ToCome:
        return "to come";
    case DayState::NotDue:
        break;
    }
    return "not due";
}

} // namespace

DayPlan planDay(const Schedule& schedule, bool recording, const DayPictures& pictures, WallTime now,
                std::chrono::seconds delay) {
    DayPlan plan;
    std::ranges::transform(pictures, plan.states.begin(), stateOf);
    if (!recording) {
        plan.text = "recording is off";
        return plan;
    }
    plan.begin = wholeMinutes(schedule.StartTime);
    plan.end = wholeMinutes(schedule.EndTime);
    for (int minute = 0; minute < kDayMinutes; ++minute)
        plan.isDue[at(minute)] = isDueMinute(schedule, minute);
    plan.due = static_cast<int>(std::ranges::count(plan.isDue, true));
    const int delayMinutes = wholeMinutes(std::max(delay, std::chrono::seconds(0)));
    for (int minute = 0; minute < kDayMinutes; ++minute)
        if (plan.isDue[at(minute)]) judge(plan, minute, wholeMinutes(timeOfDay(now)), delayMinutes);
    findNext(plan);
    plan.text = planText(plan);
    return plan;
}

std::vector<DayMark> dayMarks(const DayPlan& plan, int columnMinutes) {
    std::vector<DayMark> marks;
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        const DayState state = plan.states[at(minute)];
        if (state == DayState::NotDue) continue;
        if (marks.empty() || marks.back().first / columnMinutes != minute / columnMinutes)
            marks.push_back({.first = minute});
        DayMark& mark = marks.back();
        mark.last = minute;
        mark.isDue = mark.isDue || plan.isDue[at(minute)];
        ++mark.counts[static_cast<std::size_t>(state)];
        if (severity(state) > severity(mark.state)) mark.state = state;
    }
    return marks;
}

int columnMinutes(double pixelsPerMinute, double pixels) {
    for (const int minutes : {1, 2, 3, 4, 5, 6, 10, 12, 15, 20, 30})
        if (minutes * pixelsPerMinute >= pixels) return minutes;
    return 60;
}

std::string markText(const DayMark& mark) {
    if (mark.first == mark.last)
        return minuteText(mark.first) + " - " + stateText(mark.state) +
               (mark.isDue ? "" : ", not on the schedule");
    std::string text = minuteText(mark.first) + " to " + minuteText(mark.last) + " -";
    const char* separator = " ";
    for (const DayState state :
         {DayState::Taken, DayState::Fetched, DayState::Missed, DayState::ToCome}) {
        const int count = mark.counts[static_cast<std::size_t>(state)];
        if (count == 0) continue;
        text += separator + std::to_string(count) + " " + stateText(state);
        separator = ", ";
    }
    return text;
}

std::string minuteText(int minuteOfDay) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d", minuteOfDay / 60, minuteOfDay % 60);
    return text;
}

} // namespace orvane
