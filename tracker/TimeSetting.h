#pragma once

#include "platform/HttpTransfer.h"
#include "platform/Operator.h"
#include "station/Busy.h"
#include "station/OperationPanel.h"
#include "tracker/TrackerCommands.h"

#include <array>
#include <optional>
#include <string>

namespace orvane {

/// The controls of the dialog `FrmTKRTimeAuto`.
struct TimeSettingForm {
    struct StatusLabel {
        Value<std::string> caption;
        Value<bool> blue; ///< else black
    };
    std::array<StatusLabel, 2> Label2; ///< 0 the camera's outcome, 1 the tracker's
    TextBox txtSystemQuery;            ///< the query sent to the camera; read-only on the dialog
    Button Command1{};                 ///< Set Tracker Clock
    Button Command3{};                 ///< close
};

/// Sets the clocks of camera and tracker from the PC clock. Takes about 11 seconds for the camera;
/// the window stays alive meanwhile. While a procedure runs, both buttons are disabled and the
/// station is busy.
class TimeSetting {
  public:
    TimeSetting(TimeSettingForm& form, OperationPanel& panel, TrackerCommands& commands,
                HttpTransfer& wbSystemTm, ErrorLog& log, Operator& op, Clock& clock, Busy& busy);

    /// The camera's clock, when the dialog is activated. Ends when both requests are out. The
    /// camera's answers are not looked at.
    Task<> activate();
    /// Runs the tracker clock procedure for the target time taken at the last `activate` (now, when
    /// there was none). Answers why the tracker did not confirm, or nothing. With `automatic`
    /// nothing is shown in boxes.
    Task<std::optional<std::string>> setTrackerClock(bool automatic);
    /// "Set Tracker Clock": the target time is the moment of the click.
    Task<> Command1_Click();

    bool running() const { return running_; }

  private:
    Task<std::optional<std::string>> exchangeClock();
    Task<> switchTracking(bool on);
    std::optional<std::string> faultOf(Exchange clockSet);
    void setRunning(bool running);
    void request(const std::string& path);

    TimeSettingForm& form_;
    OperationPanel& panel_;
    TrackerCommands& commands_;
    HttpTransfer& wbSystemTm_;
    ErrorLog& log_;
    Operator& op_;
    Clock& clock_;
    Busy& busy_;
    WallTime target_{};
    Task<HttpReply> request_; ///< nobody waits for its answer
    bool running_ = false;
};

/// "?i_year=2006&i_mon=7..." for the camera's clock page; no leading zeros.
std::string clockQuery(WallTime target);

} // namespace orvane
