#pragma once

#include "platform/Operator.h"
#include "station/Busy.h"
#include "station/OperationPanel.h"
#include "tracker/TrackerCommands.h"

#include <functional>

namespace orvane {

/// The controls of the dialog `frmOption`.
struct OptionForm {
    TextBox txt_sn;    ///< serial number
    TextBox txt_tz;    ///< minutes east of universal time
    Label lbl_hours;   ///< the same in hours; empty while it is no number
    TextBox txt_lon;   ///< degrees
    TextBox txt_lat;   ///< degrees
    TextBox txt_org;   ///< origin, degrees
    Button Command1{}; ///< send
    /// What is going on or how it ended, for the dialog's status line.
    Label status;
    /// An exchange is running: the dialog can neither be closed nor started twice.
    Value<bool> working;
};

/// Reads the tracker's options into the form and writes the edited ones back. What the tracker
/// accepts or tells becomes the station's own site.
class TrackerOptions {
  public:
    /// `siteChanged` is called after the site values were replaced.
    TrackerOptions(OptionForm& form, Module1& module, TrackerCommands& commands, ErrorLog& log,
                   Operator& op, Busy& busy, std::function<void()> siteChanged);

    /// Reads serial number, site and origin, when the dialog is activated.
    Task<> activate();
    /// After an edit of the zone: shows its hours.
    void txt_tz_Change();
    /// Validates and writes; faulty fields are told in boxes and left out.
    Task<> Command1_Click();

  private:
    OpenPort open(const char* status);
    void finish(const std::string& success);
    bool succeeded(Exchange result, const char* name, bool reading);
    void refuse(const char* name, const char* fault);
    Task<bool> read(TrackerCommand command, const char* name, int count, Reply& reply);
    Task<> readSerial();
    Task<> readSite();
    Task<> readOrigin();
    Task<> writeSerial();
    Task<> writeSite();
    Task<> writeOrigin();
    std::string siteFault() const;
    void showSite(const SiteValues& site);
    void noteChange(const char* name, const std::string& before, const std::string& now);
    void takeSite(const SiteValues& told);
    void setWorking(bool working);

    OptionForm& form_;
    Module1& module_;
    TrackerCommands& commands_;
    ErrorLog& log_;
    Operator& op_;
    Busy& busy_;
    std::function<void()> siteChanged_;
    std::string failures_; ///< of the run, for the status line, as is what reading has changed
    std::string changes_;
};

} // namespace orvane
