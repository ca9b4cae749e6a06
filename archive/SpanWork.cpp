#include "archive/SpanWork.h"

#include "archive/DataFolder.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr Ticks kPause = 5ms;  ///< between two slices: the windows' own events come first
constexpr Ticks kLook = 100ms; ///< between two looks whether the station is idle again

std::string number(std::int64_t value) {
    return std::to_string(value);
}

} // namespace

void SpanWork::begin(DaySpan span) {
    span_ = span;
    dataFolder_ = parts_.panel.Dir1[0].path;
    progress = 0;
    running = true;
    task_ = run(span);
    task_.start();
}

void SpanWork::cancel() {
    if (!running) return;
    task_.reset();
    end("Cancelled.");
}

Task<> SpanWork::run(DaySpan span) {
    Task<bool> working = parts_.faults.run(name_, days(span));
    const bool worked = co_await working;
    if (!worked) end("Ended by a fault; see ERROR.LOG. Please tell whoever maintains the program.");
}

Task<> SpanWork::days(DaySpan span) {
    Fault fault;
    for (day_ = span.first; day_ <= span.last && !fault; day_ += std::chrono::days(1)) {
        show(0, 0);
        Task<> turn = takeTurn();
        co_await turn;
        std::error_code error;
        if (std::filesystem::is_directory(dataFolder_, error)) {
            Task<Fault> working = workOn(day_);
            fault = co_await working;
        } else {
            fault = "the data folder is not there; connect its disk or choose another one";
        }
    }
    if (!fault) {
        Task<Fault> finishing = finish();
        fault = co_await finishing;
    }
    if (!fault) progress = kWhole;
    end(fault ? "Ended early: " + *fault + "." : "");
}

Task<Fault> SpanWork::finish() {
    co_return std::nullopt;
}

void SpanWork::end(const std::string& how) {
    close();
    const std::string done = outcome();
    const std::string both = how.empty() || done.empty() ? how + done : how + " " + done;
    log(dateText(WallTime(span_.first)) + " to " + dateText(WallTime(span_.last)) + ": " + both);
    text = both;
    running = false;
}

Task<> SpanWork::takeTurn() {
    co_await parts_.clock.sleep(kPause);
    while (parts_.busy.active())
        co_await parts_.clock.sleep(kLook);
}

void SpanWork::show(std::size_t done, std::size_t count) {
    const std::int64_t days = (span_.last - span_.first).count() + 1;
    const std::int64_t day = (day_ - span_.first).count();
    const auto step = static_cast<std::int64_t>(done);
    const auto steps = static_cast<std::int64_t>(std::max<std::size_t>(count, 1));
    progress = static_cast<int>(kWhole * day / days + kWhole * step / steps / days);
    std::string where = dateText(WallTime(day_));
    if (days > 1) where += ", day " + number(day + 1) + " of " + number(days);
    if (count > 0) where += ": picture " + number(step + 1) + " of " + number(steps);
    text = where;
}

std::filesystem::path SpanWork::folderOf(std::chrono::local_days day) const {
    return datedFolderOf(dataFolder_, WallTime(day));
}

std::string SpanWork::counted(int count, const std::string& one, const std::string& many) {
    return number(count) + " " + (count == 1 ? one : many);
}

void SpanWork::log(const std::string& line) const {
    parts_.log.write(std::string(name_) + ":" + line);
}

} // namespace orvane
