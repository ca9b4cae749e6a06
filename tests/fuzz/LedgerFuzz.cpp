// Feeds arbitrary bytes, as a day's ledger, to what reads it.

#include "archive/Ledger.h"
#include "tests/fuzz/Require.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace {

using namespace orvane;

bool isSame(const LedgerLine& a, const LedgerLine& b) {
    return a.minute == b.minute && a.offset == b.offset && a.entry == b.entry && a.file == b.file &&
           a.detail == b.detail;
}

/// The five fields of a line as RFC 4180 has them, worked out apart from the reader; none when it
/// has others.
std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields(1);
    enum { Begin, Plain, Quoted, Behind } place = Begin;
    for (const char c : line) {
        if (place == Quoted || (place == Behind && c == '"')) {
            // the second one of two quotes stands for itself
            if (place == Behind || c != '"') fields.back() += c;
            place = place == Quoted && c == '"' ? Behind : Quoted;
        } else if (c == ',') {
            fields.emplace_back();
            place = Begin;
        } else if (place == Begin && c == '"') {
            place = Quoted;
        } else if (place == Behind || c == '"') {
            return {};
        } else {
            fields.back() += c;
            place = Plain;
        }
    }
    if (place == Quoted || fields.size() != 5) fields.clear();
    return fields;
}

bool isLine(const std::string& line) {
    static const std::regex head("([01][0-9]|2[0-3]):[0-5][0-9],[+-]([01][0-9]|2[0-3]):[0-5][0-9],"
                                 "(taken|fetched later|missed|program (started|ended)|"
                                 "recording (on|off)|schedule)");
    const auto fields = fieldsOf(line);
    return !fields.empty() && std::regex_match(fields[0] + ',' + fields[1] + ',' + fields[2], head);
}

/// Without what follows the last line's end.
std::vector<std::string> wholeLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line) && !stream.eof();) {
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

/// What is read from `line` is what is read again when it has been written.
void requireRoundTrip(const LedgerLine& line) {
    LedgerLine expected = line;
    for (std::string* field : {&expected.file, &expected.detail})
        for (char& c : *field)
            if (c >= 0 && c < ' ') c = ' ';
    const std::string text = ledgerText(line);
    require(text.find_first_of("\r\n") == std::string::npos && isLine(text));
    const auto read = parseLedgerLine(text);
    require(read && isSame(*read, expected));
}

void requireDay(const std::vector<LedgerLine>& lines) {
    LedgerDay day;
    std::array<std::string, kDayMinutes> reasons;
    std::array<DayState, kDayMinutes> states{};
    for (const LedgerLine& line : lines) {
        const auto minute = static_cast<std::size_t>(line.minute);
        if (line.entry == LedgerEntry::Missed) reasons[minute] = line.detail;
        if (line.entry == LedgerEntry::Taken) states[minute] = DayState::Taken;
        if (line.entry == LedgerEntry::Fetched) states[minute] = DayState::Fetched;
        if (line.entry == LedgerEntry::Missed) states[minute] = DayState::Missed;
        day.apply(line);
    }
    require(day.isEmpty() == lines.empty() && day.judged() == states);
    const WatchMinutes watch = day.watchOfPast();
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        const auto place = static_cast<std::size_t>(minute);
        require(day.reasonOf(minute) == reasons[place]);
        // a day that is over is known as far as it was before, but for a program that broke off
        require(watch[place] == day.watch()[place] || watch[place] == Watch::NotRunning);
        if (lines.empty()) require(watch[place] == Watch::Unknown);
    }
    const Schedule present{9h, 17h, 30min, {}};
    for (const int now : {0, 720, kDayMinutes}) {
        const DueMinutes isDue = day.dueBy(present, now);
        for (int minute = now; minute < kDayMinutes; ++minute)
            require(!isDue[static_cast<std::size_t>(minute)] ||
                    (minute >= 540 && minute < 1020 && minute % 30 == 0));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::size_t cut = data[0] * 256U + data[1];
    const std::string text(reinterpret_cast<const char*>(data + 2), size - 2);
    const std::vector<LedgerLine> lines = parseLedger(text);
    const std::vector<std::string> texts = wholeLines(text);
    require(lines.size() == static_cast<std::size_t>(std::ranges::count_if(texts, isLine)));
    std::size_t next = 0;
    for (const std::string& line : texts) {
        if (!isLine(line)) continue;
        const auto fields = fieldsOf(line);
        require(lines[next].file == fields[3] && lines[next].detail == fields[4]);
        require(minuteText(lines[next].minute) == fields[0]);
        requireRoundTrip(lines[next++]);
    }
    // of a file that is cut the first lines are known, and nothing else
    const auto first = parseLedger(std::string_view(text).substr(0, std::min(cut, text.size())));
    require(first.size() <= lines.size() &&
            std::equal(first.begin(), first.end(), lines.begin(), isSame));
    requireDay(lines);
    for (const LedgerLine& line : lines)
        if (const auto schedule = parseSchedule(line.detail))
            require(scheduleText(*schedule) == line.detail);
    return 0;
}
