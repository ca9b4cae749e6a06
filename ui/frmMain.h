#pragma once

#include "core/Condition.h"
#include "core/Shutdown.h"
#include "platform/SystemInfo.h"
#include "ui/FocusRing.h"
#include "ui/panel/frmOperation.h"
#include "ui/pictures/QtImageViews.h"

#include <QMainWindow>

namespace orvane {

class Alerts;
class CopiesAnew;
class DayReport;
class DaySurvey;
class FilmFile;
class FirstSteps;
class FrmComPort;
class FrmTKRTimeAuto;
class FullScreen;
class PortSelection;
class ShownDay;
class TimeSetting;
class TrackerOptions;
class frmOption;
struct OptionForm;
struct TimeSettingForm;

/// The main window: the operation panel at its left, the picture windows beside it, the newest
/// pictures' strip below those, the day at a glance below all; above them a banner while something
/// is wrong. It makes the parts, connects what one asks of another, and decides nothing. A close
/// request starts a task that asks; the window goes when the answer allows it. So there are three
/// states: open, asked, and unloaded, from which on each close request is granted. It goes before
/// what it shows.
class frmMain : public QMainWindow {
    Q_OBJECT

  public:
    /// What the dialogs of the "Tools" menu show and drive.
    struct Tracker {
        PortSelection& ports;
        TimeSettingForm& timeForm;
        TimeSetting& timeSetting;
        OptionForm& optionForm;
        TrackerOptions& options;
    };
    /// What the window shows and drives; all of it outlives the window.
    struct Parts {
        frmOperation::Parts operation;
        Module1& module;
        Busy& busy;
        Shutdown& shutdown;
        Wishes& wishes;
        QtImageViews& views;
        ShownDay& day;
        DaySurvey& survey;
        Tracker tracker;
        CopiesAnew& copies;
        DayReport& report;
        FilmFile& film;
        Alerts& alerts;
        Clock& clock;
        Faults& faults;
        Operator& op;
        SystemInfo& systemInfo;
        Condition& condition;
        FirstSteps& steps;
    };

    explicit frmMain(Parts parts);

    frmOperation& operation() { return *operation_; }
    /// The clock dialog, made on first use and not shown by that. It lives as long as the window.
    FrmTKRTimeAuto* timeDialog();
    /// Where the window stands; nothing while it is minimised.
    std::optional<WindowPlace> place() const;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override { return ring_->step(next); }

  private:
    void addFileMenu();
    void addToolsMenu();
    void addRecordingMenu();
    void addWindowMenu();
    void addHelpMenu();
    void followBusy(bool idle);
    void listWindows(QMenu& menu);
    void fitDesktop();
    QMenu& addMenu(const char* name, const QString& caption);

    void MDIForm_Load();
    void mnuFileOpen_Click();
    void mnuFileExit_Click();
    void mnuCOMSelect_Click();
    void mnuTKROption_Click();
    void mnuStatusPage_Click();
    void mnuHelpAbout_Click();
    void showFolder(const std::filesystem::path& folder);
    void remedy(Remedy remedy);
    static Task<> unload(QPointer<frmMain> window, UnloadMode mode);

    Parts parts_;
    frmOperation* operation_;
    PictureArea* area_;
    std::unique_ptr<FocusRing> ring_;
    QAction* saveAs_ = nullptr;
    FullScreen* fullScreen_ = nullptr;
    // Each is made on first use and only hidden when it closes: a value has one observer, so no
    // second dialog may follow it before the first has gone.
    FrmComPort* comPort_ = nullptr;
    FrmTKRTimeAuto* timeDialog_ = nullptr;
    frmOption* option_ = nullptr;
    QList<QAction*> idleActions_;   ///< enabled while the station is not busy
    QList<QAction*> windowActions_; ///< the menu's list of windows, as it was last shown
    QString openFolder_;            ///< where a picture was opened last
    bool exiting_ = false;          ///< "Exit" closes the window
    /// Since it was shown last.
    bool placed_ = false;
    /// The station has been shut down: nothing holds the window any more.
    bool unloaded_ = false;
    Bindings bindings_;
};

} // namespace orvane
