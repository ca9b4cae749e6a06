#include "archive/DayReport.h"

#include "archive/Csv.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr std::string_view kHeader = "date,due,taken,fetched,missed,first,last,note\r\n";

std::string lineOf(std::initializer_list<std::string> fields) {
    std::string text;
    for (const std::string& field : fields)
        text += (text.empty() ? "" : ",") + csvField(field);
    return text + "\r\n";
}

/// The times of the day's first and last picture; a run that goes on past midnight puts those of
/// another day into the folder.
std::pair<std::string, std::string> firstAndLast(const DayFolder& folder) {
    std::string first;
    std::string last;
    for (const FiledPicture& picture : folder.pictures()) {
        if (picture.name.day() != folder.day()) continue;
        last = timeText(picture.name.time());
        if (first.empty()) first = last;
    }
    return {first, last};
}

} // namespace

void DayReport::start(DaySpan span, const std::filesystem::path& target) {
    if (running) return;
    target_ = target;
    rule_ = schedules_.rule();
    delay_ = wholeMinutes(std::chrono::seconds(std::max<int>(module_.image.Delay, 0)));
    table_ = kHeader;
    unread_ = 0;
    written_ = false;
    log("to " + utf8FromPath(target_));
    begin(span);
}

Task<Fault> DayReport::workOn(std::chrono::local_days date) {
    ArchiveDay day;
    day.turnTo(dataFolder(), date);
    const auto turn = [this](std::size_t done, std::size_t count) {
        show(done, count);
        return takeTurn();
    };
    Task<> reading = day.folder.read(DayFolder::Look::Whole, turn);
    co_await reading;
    unread_ += day.folder.fault().has_value();
    table_ += line(day);
    co_return std::nullopt;
}

std::string DayReport::line(const ArchiveDay& day) const {
    const std::chrono::local_days today =
        std::chrono::floor<std::chrono::days>(parts().clock.now());
    const std::chrono::local_days date = day.folder.day();
    const Schedule schedule = schedules_.of(date, rule_);
    const DayPlan plan = date < today ? day.planPast(schedule, delay_)
                                      : day.plan(schedule, minuteUnderWay(date), delay_);
    const std::string begin = dateText(WallTime(date));
    const std::string due = std::to_string(plan.due);
    if (const Fault& unread = day.folder.fault())
        return lineOf({begin, due, "", "", "", "", "", "cannot be read: " + *unread});
    std::string note = date < today ? "" : "not over";
    if (plan.notRecorded > 0)
        note += (note.empty() ? "" : ", ") + std::to_string(plan.notRecorded) + " not recorded";
    const auto [first, last] = firstAndLast(day.folder);
    return lineOf({begin, due, std::to_string(plan.taken), std::to_string(plan.fetched),
                   std::to_string(plan.missed), first, last, note});
}

/// Of today or a day to come, which has not begun.
int DayReport::minuteUnderWay(std::chrono::local_days day) const {
    const WallTime now = parts().clock.now();
    const auto since = minuteIndex(now) - minuteIndex(WallTime(day));
    return static_cast<int>(std::max<std::int64_t>(since, 0));
}

Task<Fault> DayReport::finish() {
    Fault fault = writeToFinalName(table_, target_);
    written_ = !fault;
    if (fault) fault = "the report cannot be written: " + *fault;
    co_return fault;
}

std::string DayReport::outcome() const {
    if (!written_) return "No report was written.";
    std::string told = utf8FromPath(target_.filename()) + " is written.";
    if (unread_ == 1) told += " The folder of 1 day cannot be read.";
    if (unread_ > 1) told += " The folders of " + std::to_string(unread_) + " days cannot be read.";
    if (unread_ > 0) told += " See to the access rights.";
    return told;
}

} // namespace orvane
