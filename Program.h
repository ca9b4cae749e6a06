#pragma once

#include "archive/CopiesAnew.h"
#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "archive/FilmFile.h"
#include "archive/FolderScan.h"
#include "archive/ShownDay.h"
#include "core/Alerts.h"
#include "core/AutoStart.h"
#include "core/Condition.h"
#include "core/DailyClocks.h"
#include "core/FirstSteps.h"
#include "core/MainLoop.h"
#include "core/Shutdown.h"
#include "core/StartTest.h"
#include "core/StatusFile.h"
#include "platform/SerialPort.h"
#include "platform/SystemCalls.h"
#include "platform/curl/CurlMail.h"
#include "platform/curl/CurlTransfer.h"
#include "platform/qt/LibjpegImageControl.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "platform/qt/QtSettingsStore.h"
#include "station/TaskGroup.h"
#include "tracker/PortSelection.h"
#include "tracker/TimeSetting.h"
#include "tracker/TrackerOptions.h"
#include "ui/dialogs/Frm_AutoStart.h"
#include "ui/dialogs/Frm_massege.h"
#include "ui/dialogs/QtOperator.h"
#include "ui/frmMain.h"
#include "ui/pictures/QtImageViews.h"

#include <QCoreApplication>

#include <memory>

namespace orvane {

/// Where the program lies: its log, its lock and what it writes for others lie there too.
std::filesystem::path programFolder();
/// Tells the operator and ends the program with that exit code.
Task<> tellAndExit(Operator& op, std::string text, int code);

/// Every object of the program, in the order in which they depend on each other; the tasks come
/// last, so that they are destroyed first.
class Program {
  public:
    Program();

    /// Opens the countdown dialog and nothing else. `unlocked`: why a second start cannot be told
    /// from the first.
    void open(const Fault& unlocked);

    /// A failure that escaped every handler: told, and the program goes on; but for one before the
    /// main loop runs, which would never run then.
    void tellFault(const std::exception_ptr& fault);

    /// The operating system ends the program: nobody is asked.
    void end(const std::string& reason);

  private:
    static std::filesystem::path defaultDataFolder();
    /// The page that shows the station's state to a browser.
    static std::string statusPage();
    void showMainWindow();
    /// The device that stands for a COM port where ports have no such names.
    std::string devicePath(int port) const;
    void showTimeDialog(bool open);
    /// The tracker has told or taken another site than the panel shows.
    void takeSite();
    /// The start-up has succeeded.
    void beginWork();
    void endProgram();
    void enterMainLoop();

    QtClock clock_;
    QtSettingsStore store_;
    CurlLoop curl_;
    CurlTransfer inetFileGet_{curl_, clock_};
    CurlTransfer WebBrowserTst_{curl_, clock_};
    CurlTransfer WbBrowser1_{curl_, clock_};
    CurlTransfer WbBrowser2_{curl_, clock_};
    CurlTransfer wbSystemTm_{curl_, clock_};
    CurlTransfer gapPages_{curl_, clock_};
    CurlTransfer gapTransfer_{curl_, clock_};
    CurlMail mail_{curl_, clock_};
    std::unique_ptr<SerialPort> MSComm1_ =
        makeSerialPort([this](int port) { return devicePath(port); });
    LibjpegImageControl imageControl_{clock_};
    LibjpegImageControl viewsControl_{clock_}; ///< holds what the windows decode, over waits
    LibjpegImageControl copiesControl_{clock_};
    LibjpegImageControl keogramsControl_{clock_};
    LibjpegImageControl filmControl_{clock_};
    QtProcess ffmpeg_{clock_};
    LibjpegImageControl alertsControl_{clock_};
    std::unique_ptr<SystemInfo> systemInfo_ = makeSystemInfo();
    QtOperator op_{clock_};

    Module1 module_;
    OperationPanel panel_;
    Warnings warnings_{clock_};
    Busy busy_;
    ErrorLog log_{programFolder(),
                  clock_,
                  {[this] { return panel_.Label7.caption.get(); },
                   [this](const std::string& caption) { panel_.Label7.caption = caption; }}};
    Faults faults_{log_, clock_, op_};
    DaySchedules schedules_{module_, panel_, clock_, QtClock::utcOffsetAt};
    DayWatch days_{module_, panel_, schedules_, clock_};
    LedgerKeeper ledger_{
        {days_, module_, panel_, clock_, log_, [this] { return clock_.utcOffset(); }}};
    DiskWatch disk_;
    QtImageViews views_{clock_, faults_, op_, module_, days_, viewsControl_};
    PanelSettings settings_{module_, panel_, store_, defaultDataFolder()};
    PanelStatus status_{module_, panel_, clock_, faults_};
    CameraPanel camera_{module_, panel_, inetFileGet_, WebBrowserTst_, views_,
                        busy_,   op_,    clock_,       imageControl_};
    FileWriter files_{FileWriter::Force::Yes};
    PictureArchive archive_{
        {module_, days_, disk_, files_, imageControl_, views_, warnings_, log_, clock_}};
    ImageStore imageStore_{{module_, panel_, archive_, inetFileGet_, WbBrowser1_, WbBrowser2_, log_,
                            faults_, op_, clock_, busy_}};
    GapFilling gaps_{
        {module_, panel_, days_, archive_, gapPages_, gapTransfer_, log_, faults_, clock_, busy_}};
    Wishes wishes_{{module_, busy_, inetFileGet_, imageStore_, clock_}};
    Recording recording_{module_, panel_, schedules_, settings_, status_,
                         log_,    op_,    wishes_,    clock_};
    StartTest startTest_{
        {module_, panel_, recording_, camera_, imageStore_, inetFileGet_, faults_, clock_}};
    FirstSteps steps_{{module_, panel_, camera_, recording_, schedules_, days_, clock_}};
    FolderScan folderScan_{module_, panel_};
    Keograms keograms_{{keogramsControl_, module_, busy_, clock_}};
    ShownDay shownDay_{{days_, panel_, keograms_, clock_, faults_}};
    DaySurvey survey_{{days_, panel_, clock_, faults_}};
    CopiesAnew copies_{{panel_, busy_, log_, faults_, clock_}, copiesControl_};
    DayReport report_{{panel_, busy_, log_, faults_, clock_}, module_, schedules_};
    FilmFile film_{{panel_, busy_, log_, faults_, clock_}, filmControl_, ffmpeg_, store_};
    Alerts alerts_{{module_, panel_, warnings_, days_, store_, log_, faults_, clock_,
                    alertsControl_, keograms_, mail_, [this] { return clock_.utcOffset(); }}};
    FrameLink link_{*MSComm1_, store_, log_, clock_, module_};
    TrackerCommands commands_{link_};
    PortSelection portSelection_{store_, link_, log_, op_};
    TimeSettingForm timeForm_;
    TimeSetting timeSetting_{timeForm_, panel_, commands_, wbSystemTm_, log_, op_, clock_, busy_};
    OptionForm optionForm_;
    TrackerOptions options_{optionForm_,           module_, commands_, log_, op_, busy_,
                            [this] { takeSite(); }};
    DailyClocks dailyClocks_{
        module_, schedules_, timeSetting_, warnings_, busy_, clock_, [this](bool open) {
            showTimeDialog(open);
        }};
    FileWriter statusFiles_{FileWriter::Force::No};
    StatusFile statusFile_{{{module_, panel_, days_, disk_, warnings_, dailyClocks_, clock_,
                             ORVANE_VERSION, [this] { return clock_.utcOffset(); }},
                            warnings_,
                            statusFiles_,
                            log_,
                            clock_,
                            statusPage()},
                           faults_};
    Shutdown shutdown_{{settings_, store_, busy_, wishes_, op_, log_, [this] { endProgram(); }}};
    Station station_{module_,
                     panel_,
                     settings_,
                     status_,
                     recording_,
                     camera_,
                     imageStore_,
                     inetFileGet_,
                     days_,
                     ledger_,
                     disk_,
                     archive_,
                     gaps_,
                     wishes_,
                     log_,
                     faults_,
                     clock_,
                     op_,
                     warnings_,
                     busy_,
                     views_,
                     dailyClocks_,
                     [this] { showMainWindow(); },
                     [](int code) { QCoreApplication::exit(code); },
                     keepAwake,
                     [this] { beginWork(); },
                     &startTest_};
    MainLoop loop_{station_};
    AutoStart autoStart_{module_,
                         store_,
                         clock_,
                         {[this] { countdown_->closeDialog(); }, [this] { enterMainLoop(); },
                          [] { QCoreApplication::exit(0); }},
                         [this](const std::exception_ptr& fault) { tellFault(fault); }};

    Condition condition_{{module_, panel_, warnings_, days_, clock_}, faults_};
    std::unique_ptr<Frm_AutoStart> countdown_;
    std::unique_ptr<frmMain> main_;
    std::unique_ptr<Frm_massege> warningWindow_;
    TaskGroup tasks_{faults_.teller("Orvane")};
    Task<> loopTask_;
    Task<> startFault_;
};

} // namespace orvane
