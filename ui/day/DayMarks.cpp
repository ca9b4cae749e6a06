#include "ui/day/DayMarks.h"

namespace orvane {

namespace {

struct StateFacts {
    const char* text;
    int severity; ///< the higher, the more it deserves to be seen
};

StateFacts factsOf(DayState state) {
    switch (state) {
    case DayState::Taken:
        return {"taken", 1};
    case DayState::ToCome:
        return {"to come", 2};
    case DayState::Off:
        return {"recording off", 3};
    case DayState::NotRunning:
        return {"program not running", 4};
    case DayState::Fetched:
        return {"fetched from the camera's store", 5};
    case DayState::Missed:
        return {"missed", 6};
    case DayState::NotDue:
        break;
    }
    return {"not due", 0};
}

} // namespace

std::vector<DayMark> dayMarks(const DayPlan& plan, int columnMinutes) {
    std::vector<DayMark> marks;
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        const DayState state = plan.states[static_cast<std::size_t>(minute)];
        if (state == DayState::NotDue) continue;
        if (marks.empty() || marks.back().first / columnMinutes != minute / columnMinutes)
            marks.push_back({.first = minute});
        DayMark& mark = marks.back();
        mark.last = minute;
        mark.isDue = mark.isDue || plan.isDue[static_cast<std::size_t>(minute)];
        ++mark.counts[static_cast<std::size_t>(state)];
        if (factsOf(state).severity <= factsOf(mark.state).severity) continue;
        mark.state = state;
        mark.worst = minute;
    }
    return marks;
}

int columnMinutes(double pixelsPerMinute, double pixels) {
    // Divisors of an hour, so that marks begin with it.
    for (const int minutes : {1, 2, 3, 4, 5, 6, 10, 12, 15, 20, 30})
        if (minutes * pixelsPerMinute >= pixels) return minutes;
    return 60;
}

std::string markText(const DayMark& mark, const std::string& detail) {
    if (mark.first == mark.last)
        return minuteText(mark.first) + " - " + factsOf(mark.state).text +
               (mark.isDue ? "" : ", not on the schedule") + (detail.empty() ? "" : ": " + detail);
    std::string text = minuteText(mark.first) + " to " + minuteText(mark.last) + " -";
    const char* separator = " ";
    for (const DayState state : {DayState::Taken, DayState::Fetched, DayState::Missed,
                                 DayState::Off, DayState::NotRunning, DayState::ToCome}) {
        const int count = mark.counts[static_cast<std::size_t>(state)];
        if (count == 0) continue;
        text += separator + std::to_string(count) + " " + factsOf(state).text;
        separator = ", ";
    }
    // Of several minutes only a miss needs its reason; one file's name would say nothing of the
    // others.
    if (mark.state == DayState::Missed && !detail.empty())
        text += "; " + minuteText(mark.worst) + ": " + detail;
    return text;
}

} // namespace orvane
