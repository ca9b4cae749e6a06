#include "archive/DaySurvey.h"

#include <algorithm>

namespace orvane {

void DaySurvey::start(DaySpan span) {
    task_.reset();
    results_.clear();
    found = 0;
    task_ = run(span);
    task_.start();
}

Task<> DaySurvey::run(DaySpan span) {
    Task<bool> looking = parts_.faults.run("DaySurvey", look(span));
    co_await looking;
}

/// The newest first: the operator looks at them first, and they are nearest to the disk's cache.
Task<> DaySurvey::look(DaySpan span) {
    co_await parts_.clock.yield(); // the calendar is shown first
    const std::filesystem::path dataFolder = parts_.panel.Dir1[0].path;
    const std::chrono::local_days today = parts_.days.folder().day();
    const std::chrono::local_days first =
        std::max(span.first, firstDayOf(dataFolder).value_or(today));
    const auto turn = [this](std::size_t, std::size_t) { return pause(); };
    for (auto date = std::min(span.last, today); date >= first; date -= std::chrono::days(1)) {
        Result result;
        if (date == today) {
            result = resultOf(parts_.days.plan());
        } else {
            ArchiveDay day;
            day.turnTo(dataFolder, date);
            Task<> reading = day.folder.read(DayFolder::Look::Size, turn);
            co_await reading;
            if (const Fault& fault = day.folder.fault())
                result.text = "cannot be read: " + *fault;
            else
                result = resultOf(day.planPast(parts_.days.scheduleOn(date), parts_.days.delay()));
        }
        results_[date] = std::move(result);
        found = static_cast<int>(results_.size());
        Task<> waiting = pause();
        co_await waiting;
    }
}

Task<> DaySurvey::pause() {
    co_await parts_.clock.yield();
}

DaySurvey::Result DaySurvey::resultOf(const DayPlan& plan) {
    const auto count = [&](DayState state) {
        return static_cast<int>(std::ranges::count(plan.states, state));
    };
    const int pictures = plan.taken + plan.fetched;
    const int expected = pictures + plan.missed + count(DayState::NotRunning);
    Result result{{}, pictures + plan.missed > 0 || count(DayState::Taken) > 0, plan.text};
    if (expected > 0) result.share = static_cast<double>(pictures) / expected;
    return result;
}

} // namespace orvane
