#pragma once

#include "core/PanelSettings.h"
#include "core/PanelStatus.h"
#include "core/Wishes.h"
#include "platform/Operator.h"
#include "station/DaySchedules.h"
#include "station/ErrorLog.h"

#include <optional>

namespace orvane {

/// Switches recording on and off and keeps the schedule fields in order. Two states: Ready (inputs
/// enabled, Command1 enabled) and Recording (inputs disabled, Command2 enabled).
class Recording {
  public:
    Recording(Module1& module, OperationPanel& panel, DaySchedules& schedules,
              PanelSettings& settings, PanelStatus& status, ErrorLog& log, Operator& op,
              Wishes& wishes, Clock& clock)
        : module_(module), panel_(panel), schedules_(schedules), settings_(settings),
          status_(status), log_(log), op_(op), wishes_(wishes), clock_(clock) {}

    /// Start Recording. A schedule that is not usable is told in a box; the task ends when the box
    /// is closed, in Ready.
    Task<> Command1_Click();
    /// Stop Recording.
    void Command2_Click();
    /// "Stop" of the menu, which a capture does not lock as it locks Command2: cuts that short.
    Task<> mnuRecordingStop_Click();
    /// The operator has chosen a data folder. One that seems to be part of an archive is taken only
    /// after a question, and no more when recording was started meanwhile.
    Task<> chooseDataFolder(std::filesystem::path folder);
    /// The panel as it is when nothing is recorded, for start-up.
    void ready();
    /// After an edit of field `index`: a value inside its range goes to the spinner.
    void Text1_Change(std::size_t index);
    /// Empties a field whose value is outside its range.
    void Text1_LostFocus(std::size_t index);
    /// After a click on spinner `index`: its value goes to the field.
    void UpDown1_Change(std::size_t index);
    /// Locks or unlocks the schedule fields.
    void chk_auto_Click();
    /// Has the window follow the sun or the time fields, which are locked meanwhile; stores it.
    void chk_sun_Click();

    /// The field of `Text1` that a refused start complained of, until the next start.
    Value<std::optional<std::size_t>> faultyField;
    /// How often recording has been switched on.
    int starts() const { return starts_; }
    /// What a start would tell now; nothing when it would be taken. Changes nothing.
    struct ScheduleFault {
        std::string message;
        std::size_t field; ///< index of the field that it speaks of
    };
    std::optional<ScheduleFault> scheduleFault() const;

    Value<bool> mnuRecordingStart{true}; ///< the menu entries' enabled states
    Value<bool> mnuRecordingStop{false};

  private:
    std::optional<int> validate();
    void enableInputs(bool enabled);
    void lockTimes();

    Module1& module_;
    OperationPanel& panel_;
    DaySchedules& schedules_;
    PanelSettings& settings_;
    PanelStatus& status_;
    ErrorLog& log_;
    Operator& op_;
    Wishes& wishes_;
    Clock& clock_;
    int starts_ = 0;
};

} // namespace orvane
