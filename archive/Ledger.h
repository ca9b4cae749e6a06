#pragma once

#include "archive/DayPlan.h"
#include "platform/Fault.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <string_view>
#include <utility>

namespace orvane {

/// What a line of a day's ledger tells.
enum class LedgerEntry : std::uint8_t {
    Taken, ///< the first three judge a due minute
    Fetched,
    Missed,
    ProgramStarted, ///< from here on the lines tell what begins in their minute
    ProgramEnded,
    RecordingOn,
    RecordingOff,
    Schedule
};

struct LedgerLine {
    int minute = 0;                ///< of the day, 0 to 1439
    std::chrono::minutes offset{}; ///< of that minute's time from universal time
    LedgerEntry entry = LedgerEntry::Missed;
    std::string file = {};   ///< the picture's name
    std::string detail = {}; ///< why it was missed, or the schedule
};

/// A line in the form of RFC 4180, "09:30,+09:00,missed,,HTTP status 503", without its end. What
/// would break the line is replaced by blanks.
std::string ledgerText(const LedgerLine& line);
/// Nothing for what this program does not write.
std::optional<LedgerLine> parseLedgerLine(std::string_view text);
/// The lines of a whole file. What is no such line is passed over, and what follows the last line's
/// end: it was cut by a loss of power.
std::vector<LedgerLine> parseLedger(std::string_view text);
/// "09:00 to 17:00 every 30 min", and back.
std::string scheduleText(const Schedule& schedule);
std::optional<Schedule> parseSchedule(std::string_view text);

/// What the lines of one day tell, in the order in which they were written. Files decide what there
/// is; this adds why a picture is missing, and when nobody recorded.
class LedgerDay {
  public:
    void apply(const LedgerLine& line);

    bool isEmpty() const { return isEmpty_; } ///< no line has been read
    const WatchMinutes& watch() const { return watch_; }
    /// The same of a day that is over. A program that records judges each due minute, so after the
    /// last line it was not running.
    WatchMinutes watchOfPast() const;
    /// The minutes that were due by the schedule in force in each, from minute `now` on by
    /// `present`. Before the first schedule that is known, that one counts.
    DueMinutes dueBy(const Schedule& present, int now) const;
    /// What the last lines of the due minutes tell: taken, fetched or missed; `NotDue` where there
    /// is none. Index: minute of the day.
    const std::array<DayState, kDayMinutes>& judged() const { return judged_; }
    /// Why a minute was missed; empty when nobody knows.
    std::string reasonOf(int minute) const;

  private:
    void set(int first, int end, Watch watch);
    void begin(const LedgerLine& line);
    void skip(const LedgerLine& line);

    bool isEmpty_ = true;
    WatchMinutes watch_{};
    std::array<DayState, kDayMinutes> judged_{};
    std::map<int, std::string> reasons_;
    std::vector<std::pair<int, Schedule>> schedules_; ///< with the minute that each begins in
    DueMinutes skipped_{};          ///< never were: the clock was put forward for summer time
    int alive_ = 0;                 ///< the first minute in which the program may not have run
    std::chrono::minutes offset_{}; ///< of the line before
};

/// D/Ledger/yyyymmdd.csv
std::filesystem::path ledgerOf(const std::filesystem::path& dataFolder,
                               std::chrono::local_days day);
/// Nothing that stands in the file is a fault, and no file is an empty day.
LedgerDay readLedger(const std::filesystem::path& file);
/// Whether a day without a ledger lies between two that have one, of which the later begins with
/// the program's start: nobody was there to write one.
bool wasProgramAway(const std::filesystem::path& dataFolder, std::chrono::local_days day);
/// Takes away what follows the last line's end, so that nothing is appended to half a line.
Fault mendLedger(const std::filesystem::path& file);
/// Appends `lines`, each with its end; the file is open within this call only. Makes the folder of
/// the file, but not the one above it. After a failure the file may need to be mended.
Fault appendToLedger(const std::filesystem::path& file, std::string_view lines);

} // namespace orvane
