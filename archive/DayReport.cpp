#include "archive/DayReport.h"

#include "archive/Csv.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "station/PanelSchedule.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr std::string_view kHeader = "date,due,taken,fetched,missed,first,last,note\r\n";
constexpr std::size_t kFilesOfASlice = 50;

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
    schedule_ = scheduleOf(parts().panel);
    delay_ = wholeMinutes(std::chrono::seconds(std::max<int>(module_.image.Delay, 0)));
    table_ = kHeader;
    unread_ = 0;
    written_ = false;
    log("to " + utf8FromPath(target_));
    begin(span);
}

Task<Fault> DayReport::workOn(std::chrono::local_days day) {
    DayFolder folder(listDay);
    folder.turnTo(folderOf(day), day);
    Task<Fault> reading = read(folder);
    const Fault unread = co_await reading;
    unread_ += unread.has_value();
    table_ += line(folder, unread);
    co_return std::nullopt;
}

/// Each file is looked at, as when the day itself was watched, but in slices.
Task<Fault> DayReport::read(DayFolder& folder) {
    const DayListing listing = listDay(folderOf(folder.day()));
    std::size_t looked = 0;
    for (const FiledPicture& picture : listing.pictures) {
        if (isWholePicture(picture.file)) folder.add(picture.file);
        if (++looked % kFilesOfASlice != 0) continue;
        show(looked, listing.pictures.size());
        Task<> turn = takeTurn();
        co_await turn;
    }
    co_return listing.fault;
}

std::string DayReport::line(const DayFolder& folder, const Fault& unread) const {
    const int now = minuteUnderWay(folder.day());
    const DayPlan plan = planDay(schedule_, dueMinutes(schedule_), folder.origins(), now, delay_);
    const std::string date = dateText(WallTime(folder.day()));
    const std::string due = std::to_string(plan.due);
    if (unread) return lineOf({date, due, "", "", "", "", "", "cannot be read: " + *unread});
    const auto [first, last] = firstAndLast(folder);
    return lineOf({date, due, std::to_string(plan.taken), std::to_string(plan.fetched),
                   std::to_string(plan.missed), first, last, now < kDayMinutes ? "not over" : ""});
}

/// Of that day: behind its last due minute once it is over, 0 before it has begun.
int DayReport::minuteUnderWay(std::chrono::local_days day) const {
    const WallTime now = parts().clock.now();
    const auto since = minuteIndex(now) - minuteIndex(WallTime(day));
    return static_cast<int>(std::clamp<std::int64_t>(since, 0, kDayMinutes + delay_));
}

Fault DayReport::finish() {
    const Fault fault = writeToFinalName(table_, target_);
    written_ = !fault;
    if (fault) return "the report cannot be written: " + *fault;
    return std::nullopt;
}

std::string DayReport::outcome() const {
    if (!written_) return "No report was written.";
    std::string told = utf8FromPath(target_.filename()) + " is written.";
    if (unread_ == 1) told += " The folder of 1 day cannot be read.";
    if (unread_ > 1) told += " The folders of " + std::to_string(unread_) + " days cannot be read.";
    return told;
}

} // namespace orvane
