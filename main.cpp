#include "archive/CopiesAnew.h"
#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "archive/FilmFile.h"
#include "archive/FolderScan.h"
#include "archive/ShownDay.h"
#include "core/Alerts.h"
#include "core/AutoStart.h"
#include "core/DailyClocks.h"
#include "core/MainLoop.h"
#include "core/Shutdown.h"
#include "core/StartUp.h"
#include "core/StatusFile.h"
#include "platform/Paths.h"
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
#include "ui/Text.h"
#include "ui/dialogs/FrmTKRTimeAuto.h"
#include "ui/dialogs/Frm_AutoStart.h"
#include "ui/dialogs/Frm_massege.h"
#include "ui/dialogs/QtOperator.h"
#include "ui/frmMain.h"
#include "ui/pictures/QtImageViews.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QSocketNotifier>
#include <QStandardPaths>

#include <memory>

namespace orvane {
namespace {

QIcon programIcon() {
    QIcon icon;
    for (const char* size : {"16", "32", "48", "256"})
        icon.addFile(QStringLiteral(":/icons/orvane-%1.png").arg(size));
    return icon;
}

std::string statusPage() {
    QFile page(":/status/status.html");
    page.open(QIODevice::ReadOnly);
    return page.readAll().toStdString();
}

std::filesystem::path programFolder() {
    return toPath(QCoreApplication::applicationDirPath());
}

Task<> tellAndExit(Operator& op, std::string text, int code) {
    Task<> telling = op.tell(std::move(text));
    co_await telling;
    QCoreApplication::exit(code);
}

/// Every object of the program, in the order in which they depend on each other; the tasks come
/// last, so that they are destroyed first.
class Program {
  public:
    Program() { module_.programFolder = programFolder(); }

    /// Opens the countdown dialog and nothing else. `unlocked`: why a second start cannot be told
    /// from the first.
    void open(const Fault& unlocked) {
        if (unlocked) log_.write("The program's lock cannot be made: " + *unlocked);
        countdown_ = std::make_unique<Frm_AutoStart>(autoStart_);
        countdown_->show();
    }

    /// A failure that escaped every handler: told, and the program goes on; but for one before the
    /// main loop runs, which would never run then.
    void tellFault(const std::exception_ptr& fault) {
        if (!startFault_.done()) return faults_.report("StartUp", fault);
        if (!loopTask_.done()) return faults_.tell("Orvane", fault);
        const std::string text = textOf(fault);
        log_.write("StartUp:" + text);
        startFault_ = tellAndExit(op_, text, 1);
        startFault_.start();
    }

    /// The operating system ends the program: nobody is asked.
    void end(const std::string& reason) {
        shutdown_.end(reason, main_ ? main_->place() : std::nullopt);
    }

  private:
    std::filesystem::path defaultDataFolder() const {
        return toPath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)) /
               "Orvane";
    }
    void showMainWindow() {
        main_ = std::make_unique<frmMain>(frmMain::Parts{
            {panel_, recording_, settings_, camera_, imageStore_, folderScan_, tasks_},
            module_,
            busy_,
            shutdown_,
            wishes_,
            views_,
            shownDay_,
            survey_,
            {portSelection_, timeForm_, timeSetting_, optionForm_, options_},
            copies_,
            report_,
            film_,
            alerts_,
            clock_,
            faults_,
            op_,
            *systemInfo_});
        op_.setParentWindow(main_.get());
        main_->show();
        warningWindow_ = std::make_unique<Frm_massege>(warnings_, main_.get());
    }
    /// The device that stands for a COM port where ports have no such names.
    std::string devicePath(int port) const {
        const std::string number = std::to_string(port);
        return store_.GetSetting("Communication", "Device" + number,
                                 "/dev/ttyS" + std::to_string(port - 1));
    }
    void showTimeDialog(bool open) {
        if (open) {
            main_->timeDialog()->openAutomatic();
        } else {
            main_->timeDialog()->unload();
        }
    }
    /// The tracker has told or taken another site than the panel shows.
    void takeSite() {
        settings_.showSite();
        computeSunTimes(station_);
    }
    void endProgram() {
        ledger_.end();
        faults_.attempt("StatusFile", [this] { statusFile_.end(); });
        QCoreApplication::exit(0);
    }
    void enterMainLoop() {
        alerts_.start();
        loopTask_ = loop_.run();
        loopTask_.start();
    }

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
    DayWatch days_{module_, panel_, clock_};
    LedgerKeeper ledger_{
        {days_, module_, panel_, clock_, log_, [this] { return clock_.utcOffset(); }}};
    DiskWatch disk_;
    QtImageViews views_{clock_, faults_, op_, module_, days_, viewsControl_};
    PanelSettings settings_{module_, panel_, store_, defaultDataFolder()};
    PanelStatus status_{module_, panel_, clock_, faults_};
    CameraPanel camera_{module_, panel_, inetFileGet_, WebBrowserTst_, views_, busy_, op_, clock_};
    FileWriter files_{FileWriter::Force::Yes};
    PictureArchive archive_{
        {module_, days_, disk_, files_, imageControl_, views_, warnings_, log_, clock_}};
    ImageStore imageStore_{{module_, panel_, archive_, inetFileGet_, WbBrowser1_, WbBrowser2_, log_,
                            faults_, op_, clock_, busy_}};
    GapFilling gaps_{
        {module_, panel_, days_, archive_, gapPages_, gapTransfer_, log_, faults_, clock_, busy_}};
    Wishes wishes_{{module_, busy_, inetFileGet_, imageStore_, clock_}};
    Recording recording_{module_, panel_, settings_, status_, log_, op_, wishes_, clock_};
    FolderScan folderScan_{module_, panel_};
    Keograms keograms_{{keogramsControl_, module_, busy_, clock_}};
    ShownDay shownDay_{{days_, panel_, keograms_, clock_, faults_}};
    DaySurvey survey_{{days_, panel_, clock_, faults_}};
    CopiesAnew copies_{{panel_, busy_, log_, faults_, clock_}, copiesControl_};
    DayReport report_{{panel_, busy_, log_, faults_, clock_}, module_};
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
    DailyClocks dailyClocks_{module_, timeSetting_, warnings_,
                             busy_,   clock_,       [this](bool open) { showTimeDialog(open); }};
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
                     [this] { statusFile_.begin(); }};
    MainLoop loop_{station_};
    AutoStart autoStart_{module_,
                         store_,
                         clock_,
                         {[this] { countdown_->closeDialog(); }, [this] { enterMainLoop(); },
                          [] { QCoreApplication::exit(0); }},
                         [this](const std::exception_ptr& fault) { tellFault(fault); }};

    std::unique_ptr<Frm_AutoStart> countdown_;
    std::unique_ptr<frmMain> main_;
    std::unique_ptr<Frm_massege> warningWindow_;
    TaskGroup tasks_{faults_.teller("Orvane")};
    Task<> loopTask_;
    Task<> startFault_;
};

/// Keeps a failing event handler from ending the program.
class Application : public QApplication {
  public:
    using QApplication::QApplication;

    void setProgram(Program* program) { program_ = program; }
    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (...) {
            if (program_ != nullptr) program_->tellFault(std::current_exception());
            return true;
        }
    }

  private:
    Program* program_ = nullptr;
};

/// Has the system's requests to end the program handed to `end`.
class EndRequests {
  public:
    EndRequests(std::optional<int> requests, std::function<void(const std::string&)> end) {
        if (!requests) return;
        notifier_.emplace(*requests, QSocketNotifier::Read);
        QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_,
                         [end = std::move(end)] { end(endRequest()); });
    }

  private:
    std::optional<QSocketNotifier> notifier_;
};

int run(Application& application, const Fault& unlocked, std::optional<int> requests) {
    Program program;
    const EndRequests ending(requests, [&](const std::string& request) { program.end(request); });
    const Scope known([&](bool on) { application.setProgram(on ? &program : nullptr); });
    QObject context;
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &context,
                     [&] { program.end("the session ends"); });
    program.open(unlocked);
    return QApplication::exec();
}

/// Tells why there is no program.
int runBox(const std::string& text, int code, std::optional<int> requests) {
    QtClock clock;
    QtOperator op(clock);
    const EndRequests ending(requests, [code](const auto&) { QCoreApplication::exit(code); });
    Task<> telling = tellAndExit(op, text, code);
    telling.start();
    return QApplication::exec();
}

} // namespace
} // namespace orvane

int main(int argc, char** argv) {
    using namespace orvane;
    Application application(argc, argv);
    QCoreApplication::setApplicationName("Orvane");
    QCoreApplication::setApplicationVersion(ORVANE_VERSION);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(programIcon());

    const std::optional<int> requests = keepEndRequests();
    FileLock lock;
    const FileLock::Outcome locked = lock.take(programFolder() / "orvane.lock");
    if (locked.isOthers) return runBox("Orvane is running already.", 3, requests);
    try {
        return run(application, locked.fault, requests);
    } catch (...) {
        const std::string text = textOf(std::current_exception());
        QtClock clock;
        ErrorLog(programFolder(), clock).write("Orvane:" + text);
        return runBox(text, 1, requests);
    }
}
