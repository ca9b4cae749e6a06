#include "archive/Ledger.h"

#include "archive/Csv.h"
#include "archive/DataFolder.h"
#include "platform/Files.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

constexpr std::string_view kHeader = "time,offset,event,file,detail\r\n";
constexpr std::array<std::string_view, 8> kEntries{
    "taken",         "fetched later", "missed",        "program started",
    "program ended", "recording on",  "recording off", "schedule"};
constexpr std::size_t kFields = 5;
/// A clock is put forward by an hour at most when summer time begins.
constexpr std::chrono::minutes kLongestSkip{120};

/// On one line, so that a cut one can be told.
std::string fieldText(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return csvField(text);
}

/// Takes the next field from the front of `text`, without its quotes; false: it is none.
bool takeField(std::string_view& text, std::string& field) {
    field.clear();
    const bool isQuoted = text.starts_with('"');
    std::size_t at = isQuoted;
    for (; at < text.size() && (isQuoted || text[at] != ','); ++at) {
        if (text[at] == '"') {
            if (!isQuoted) return false;
            if (!text.substr(at + 1).starts_with('"')) break;
            ++at;
        }
        field += text[at];
    }
    if (isQuoted && at++ >= text.size()) return false;
    if (at < text.size() && text[at] != ',') return false;
    text.remove_prefix(std::min(at, text.size()));
    return true;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// "09:30" as minutes.
std::optional<int> parseMinute(std::string_view text) {
    if (text.size() != 5 || text[2] != ':') return std::nullopt;
    for (const std::size_t digit : {0U, 1U, 3U, 4U})
        if (!isDigit(text[digit])) return std::nullopt;
    const int hour = (text[0] - '0') * 10 + text[1] - '0';
    const int minute = (text[3] - '0') * 10 + text[4] - '0';
    if (hour > 23 || minute > 59) return std::nullopt;
    return hour * 60 + minute;
}

std::optional<std::chrono::minutes> parseOffset(std::string_view text) {
    if (text.empty() || (text[0] != '+' && text[0] != '-')) return std::nullopt;
    const auto size = parseMinute(text.substr(1));
    if (!size) return std::nullopt;
    return std::chrono::minutes(text[0] == '-' ? -*size : *size);
}

std::size_t at(int minute) {
    return static_cast<std::size_t>(minute);
}

DayState stateOf(LedgerEntry entry) {
    if (entry == LedgerEntry::Taken) return DayState::Taken;
    return entry == LedgerEntry::Fetched ? DayState::Fetched : DayState::Missed;
}

/// What holds from a line of that kind on.
Watch watchFrom(LedgerEntry entry) {
    if (entry == LedgerEntry::RecordingOn) return Watch::Recording;
    return entry == LedgerEntry::ProgramEnded ? Watch::NotRunning : Watch::Off;
}

std::vector<LedgerLine> linesOf(const std::filesystem::path& file) {
    std::string text;
    if (readWholeFile(file, text)) return {};
    return parseLedger(text);
}

} // namespace

std::string ledgerText(const LedgerLine& line) {
    return minuteText(line.minute) + "," + offsetText(line.offset) + "," +
           std::string(kEntries[static_cast<std::size_t>(line.entry)]) + "," +
           fieldText(line.file) + "," + fieldText(line.detail);
}

std::optional<LedgerLine> parseLedgerLine(std::string_view text) {
    std::array<std::string, kFields> fields;
    for (std::size_t i = 0; i < kFields; ++i) {
        if (!takeField(text, fields[i])) return std::nullopt;
        if (text.empty() != (i + 1 == kFields)) return std::nullopt;
        if (!text.empty()) text.remove_prefix(1);
    }
    const auto minute = parseMinute(fields[0]);
    const auto offset = parseOffset(fields[1]);
    const auto entry = std::ranges::find(kEntries, fields[2]);
    if (!minute || !offset || entry == kEntries.end()) return std::nullopt;
    return LedgerLine{*minute, *offset, static_cast<LedgerEntry>(entry - kEntries.begin()),
                      std::move(fields[3]), std::move(fields[4])};
}

std::vector<LedgerLine> parseLedger(std::string_view text) {
    std::vector<LedgerLine> lines;
    for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (const auto parsed = parseLedgerLine(line)) lines.push_back(*parsed);
    }
    return lines;
}

std::string scheduleText(const Schedule& schedule) {
    return minuteText(wholeMinutes(schedule.StartTime)) + " to " +
           minuteText(wholeMinutes(schedule.EndTime)) + " every " +
           twoDigits(wholeMinutes(schedule.IntervalTime) % 60) + " min";
}

std::optional<Schedule> parseSchedule(std::string_view text) {
    if (text.size() != scheduleText({}).size()) return std::nullopt;
    const auto start = parseMinute(text.substr(0, 5));
    const auto end = parseMinute(text.substr(9, 5));
    const auto interval = parseMinute("00:" + std::string(text.substr(21, 2)));
    if (!start || !end || !interval) return std::nullopt;
    using std::chrono::minutes;
    const Schedule schedule{minutes(*start), minutes(*end), minutes(*interval), {}};
    if (scheduleText(schedule) != text) return std::nullopt;
    return schedule;
}

void LedgerDay::apply(const LedgerLine& line) {
    isEmpty_ = false;
    skip(line);
    offset_ = line.offset;
    if (line.entry >= LedgerEntry::ProgramStarted) return begin(line);
    judged_[at(line.minute)] = stateOf(line.entry);
    if (line.entry == LedgerEntry::Missed) reasons_[line.minute] = line.detail;
    // what was seen to be missed was not passed over by nobody
    if (line.entry == LedgerEntry::Missed) set(line.minute, line.minute + 1, Watch::Recording);
    alive_ = std::max(alive_, line.minute + 1);
}

void LedgerDay::begin(const LedgerLine& line) {
    if (line.entry == LedgerEntry::Schedule) {
        std::erase_if(schedules_, [&](const auto& entry) { return entry.first >= line.minute; });
        if (const auto schedule = parseSchedule(line.detail))
            schedules_.emplace_back(line.minute, *schedule);
    } else {
        if (line.entry == LedgerEntry::ProgramStarted) set(alive_, line.minute, Watch::NotRunning);
        set(line.minute, kDayMinutes, watchFrom(line.entry));
    }
    alive_ = line.minute;
}

WatchMinutes LedgerDay::watchOfPast() const {
    WatchMinutes watch = watch_;
    if (isEmpty_) return watch;
    const auto broken = watch.begin() + std::min(alive_, kDayMinutes);
    std::replace(broken, watch.end(), Watch::Recording, Watch::NotRunning);
    return watch;
}

void LedgerDay::set(int first, int end, Watch watch) {
    for (int minute = first; minute < end; ++minute)
        watch_[at(minute)] = watch;
}

/// When summer time begins, the lines go on with a larger offset. The first due minute after it
/// tells where: schedules are the same in every hour.
void LedgerDay::skip(const LedgerLine& line) {
    const auto by = line.offset - offset_;
    if (alive_ == 0 || line.entry == LedgerEntry::ProgramStarted || by <= 0min || by > kLongestSkip)
        return;
    const int first = line.minute - static_cast<int>(by.count());
    for (int minute = std::max(first, alive_); minute < line.minute; ++minute)
        skipped_[at(minute)] = true;
}

DueMinutes LedgerDay::dueBy(const Schedule& present, int now) const {
    DueMinutes isDue{};
    std::size_t place = 0;
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        while (place + 1 < schedules_.size() && schedules_[place + 1].first <= minute)
            ++place;
        const bool known = !schedules_.empty() && minute < now;
        isDue[at(minute)] = !skipped_[at(minute)] &&
                            isDueMinute(known ? schedules_[place].second : present, minute);
    }
    return isDue;
}

std::string LedgerDay::reasonOf(int minute) const {
    const auto found = reasons_.find(minute);
    return found == reasons_.end() ? std::string() : found->second;
}

std::filesystem::path ledgerOf(const std::filesystem::path& dataFolder,
                               std::chrono::local_days day) {
    return dataFolder / "Ledger" / (dateDigits(WallTime(day)) + ".csv");
}

LedgerDay readLedger(const std::filesystem::path& file) {
    LedgerDay day;
    for (const LedgerLine& line : linesOf(file))
        day.apply(line);
    return day;
}

bool wasProgramAway(const std::filesystem::path& dataFolder, std::chrono::local_days day) {
    const std::filesystem::path sought = ledgerOf(dataFolder, day);
    bool isLater = false; // than another ledger
    for (const std::filesystem::path& file : listFolder(sought.parent_path()).entries) {
        if (file.filename() > sought.filename()) {
            const std::vector<LedgerLine> lines = linesOf(file);
            return isLater && !lines.empty() && lines[0].entry == LedgerEntry::ProgramStarted;
        }
        isLater = true;
    }
    return false;
}

Fault mendLedger(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
    std::string text;
    if (Fault fault = readWholeFile(file, text)) return fault;
    const std::size_t end = text.rfind('\n') + 1; // 0: there is none
    if (end != text.size()) std::filesystem::resize_file(file, end, error);
    return error ? Fault(error.message()) : std::nullopt;
}

Fault appendToLedger(const std::filesystem::path& file, std::string_view lines) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (!error && size > 0) return appendToFile(lines, file);
    std::filesystem::create_directory(file.parent_path(), error);
    if (error) return error.message();
    return appendToFile(std::string(kHeader).append(lines), file);
}

} // namespace orvane
