#pragma once

#include "archive/DayWatch.h"
#include "station/ErrorLog.h"

#include <functional>
#include <map>

namespace orvane {

/// Writes the days' ledgers: what became of each due minute, once it is judged, and when program,
/// recording and schedule begin or end. A ledger that cannot be written stops nothing: its lines
/// are kept, and written together with the next ones.
class LedgerKeeper {
  public:
    /// What it works with; all of it outlives this.
    struct Parts {
        DayWatch& days;
        const Module1& module;
        const OperationPanel& panel; ///< for the data folder in use
        const Clock& clock;
        ErrorLog& log;
        std::function<std::chrono::minutes()> offset; ///< of the local time from universal time
    };

    explicit LedgerKeeper(Parts parts) : parts_(std::move(parts)) {}

    /// Writes what is new. To be called once a minute and whenever something was switched, after
    /// `DayWatch::follow`. The first call is the program's start.
    void follow();
    /// Why the capture of a due minute (as `minuteIndex` counts) brought no picture; the last
    /// reason of a minute counts.
    void noteFailure(std::int64_t dueMinute, const std::string& reason);
    /// The program ends. Nothing is written before the first `follow` and after this.
    void end();

  private:
    enum class Program : std::uint8_t { NotStarted, Runs, Ended };

    void turnTo(const std::filesystem::path& dataFolder);
    void noteSwitches(bool all);
    void noteJudged(std::vector<LedgerLine> lines, bool isToday);
    void note(LedgerEntry entry, std::string detail = {});
    void followOffset();
    std::chrono::minutes offsetOf(std::int64_t minute) const;
    void write();

    Parts parts_;
    Program program_ = Program::NotStarted;
    std::filesystem::path dataFolder_;
    std::chrono::local_days day_{};
    std::filesystem::path file_;                   ///< the day's ledger
    bool recording_ = false;                       ///< as it was noted last, as is the schedule
    Schedule schedule_;                            ///< without its next record
    std::map<std::int64_t, std::string> failures_; ///< by due minute
    std::string unwritten_;                        ///< lines for `file_`
    bool mended_ = false;                          ///< `file_` ends with a whole line
    bool told_ = false;                            ///< that it cannot be written
    std::chrono::minutes offset_{};
    std::chrono::minutes offsetBefore_{}; ///< before `offsetSince_`, a minute
    std::int64_t offsetSince_ = 0;
};

} // namespace orvane
