#pragma once

#include "station/DaySchedules.h"
#include "station/Warnings.h"
#include "tracker/TimeSetting.h"

#include <functional>

namespace orvane {

/// Sets the clocks of camera and tracker once on every day on which recording is on, at a moment at
/// which no capture is due within a minute; where every minute or every other one is due, after a
/// capture. A device that does not answer costs that day's attempt and a warning, no more.
class DailyClocks {
  public:
    /// Opens (true) and unloads (false) the dialog that shows the procedure.
    using ShowDialog = std::function<void(bool)>;

    DailyClocks(Module1& module, const DaySchedules& schedules, TimeSetting& setting,
                Warnings& warnings, Busy& busy, Clock& clock, ShowDialog showDialog)
        : module_(module), schedules_(schedules), setting_(setting), warnings_(warnings),
          busy_(busy), clock_(clock), showDialog_(std::move(showDialog)) {}

    /// Whether to run it now, with nothing else going on; `justCaptured` right after a capture,
    /// before its pause.
    bool isDue(WallTime now, bool justCaptured) const;
    /// Bounded: about 11 seconds for the camera and at most 45 for a slow tracker.
    Task<> run();

    /// What came of a setting: when it ended, and why it failed.
    struct Outcome {
        WallTime at;
        Fault fault;
    };
    /// The last one since the program's start.
    const std::optional<Outcome>& last() const { return last_; }

  private:
    Module1& module_;
    const DaySchedules& schedules_;
    TimeSetting& setting_;
    Warnings& warnings_;
    Busy& busy_;
    Clock& clock_;
    ShowDialog showDialog_;
    std::chrono::local_days lastDay_{};
    std::optional<Outcome> last_;
};

} // namespace orvane
