#include "archive/FolderScan.h"
#include "core/AutoStart.h"
#include "core/DailyClocks.h"
#include "core/MainLoop.h"
#include "core/Shutdown.h"
#include "core/StartUp.h"
#include "platform/Paths.h"
#include "platform/SerialPort.h"
#include "platform/SystemCalls.h"
#include "platform/qt/LibjpegImageControl.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtHttpTransfer.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/qt/QtWebBrowser.h"
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
#include <QIcon>
#include <QStandardPaths>

#include <memory>

namespace orvane {
namespace {

constexpr Ticks kLook = 200ms; ///< for what the system asks of the program

QIcon programIcon() {
    QIcon icon;
    for (const char* size : {"16", "32", "48", "256"})
        icon.addFile(QStringLiteral(":/icons/orvane-%1.png").arg(size));
    return icon;
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
    Program() {
        prepareManager(manager_);
        module_.programFolder = programFolder();
    }

    /// Opens the countdown dialog and nothing else. `unlocked`: why a second start cannot be told
    /// from the first.
    void open(const Fault& unlocked) {
        if (unlocked) log_.write("The program's lock cannot be made: " + *unlocked);
        endRequests_.enable();
        countdown_ = std::make_unique<Frm_AutoStart>(autoStart_);
        countdown_->show();
    }

    /// A failure that escaped every handler: told, and the program goes on; but for one before the
    /// main loop runs, which would never run then.
    void tellFault(const std::exception_ptr& fault) {
        const std::string text = textOf(fault);
        log_.write("Orvane:" + text);
        if (loopTask_.done()) return faults_.spawn(tellAndExit(op_, text, 1));
        faults_.spawn(op_.tell("A fault occurred: " + text + "\nThe program goes on."));
    }

    /// The operating system ends the program: nobody is asked.
    void end(const std::string& reason) {
        shutdown_.end(reason, main_ ? main_->place() : std::nullopt);
    }

  private:
    std::unique_ptr<QtWebBrowser> browser() {
        return std::make_unique<QtWebBrowser>(std::make_unique<QtHttpTransfer>(manager_, clock_),
                                              clock_);
    }
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
            days_,
            {portSelection_, timeForm_, timeSetting_, optionForm_, options_},
            clock_,
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
    void lookForEndRequest() {
        const std::string request = endRequest();
        if (!request.empty()) end(request);
    }
    void enterMainLoop() {
        loopTask_ = loop_.run();
        loopTask_.start();
    }

    QtClock clock_;
    QtSettingsStore store_;
    QNetworkAccessManager manager_;
    QtHttpTransfer http_{manager_, clock_};
    std::unique_ptr<QtWebBrowser> webBrowserTst_ = browser();
    std::unique_ptr<QtWebBrowser> wbBrowser1_ = browser();
    std::unique_ptr<QtWebBrowser> wbBrowser2_ = browser();
    std::unique_ptr<QtWebBrowser> wbSystemTm_ = browser();
    std::unique_ptr<QtWebBrowser> gapBrowser_ = browser();
    QtHttpTransfer gapTransfer_{manager_, clock_};
    std::unique_ptr<SerialPort> MSComm1_ =
        makeSerialPort([this](int port) { return devicePath(port); });
    LibjpegImageControl imageControl_{clock_};
    LibjpegImageControl viewsControl_{clock_}; ///< holds what the windows decode, over waits
    std::unique_ptr<SystemInfo> systemInfo_ = makeSystemInfo();
    QtOperator op_{clock_};

    Module1 module_;
    OperationPanel panel_;
    Warnings warnings_;
    Busy busy_;
    DayWatch days_{module_, panel_, clock_};
    DiskWatch disk_;
    QtImageViews views_{clock_, op_, module_, days_, viewsControl_};
    ErrorLog log_{programFolder(),
                  clock_,
                  {[this] { return panel_.Label7.caption.get(); },
                   [this](const std::string& caption) { panel_.Label7.caption = caption; }}};
    PanelSettings settings_{module_, panel_, store_, defaultDataFolder()};
    PanelStatus status_{module_, panel_, clock_};
    CameraPanel camera_{module_, panel_, http_, *webBrowserTst_, views_, busy_, op_};
    FileWriter files_{FileWriter::Force::Yes};
    PictureArchive archive_{
        {module_, days_, disk_, files_, imageControl_, views_, warnings_, log_, clock_}};
    ImageStore imageStore_{
        {module_, panel_, archive_, http_, *wbBrowser1_, *wbBrowser2_, log_, op_, clock_, busy_}};
    GapFilling gaps_{
        {module_, panel_, days_, archive_, *gapBrowser_, gapTransfer_, log_, clock_, busy_}};
    Wishes wishes_{{module_, busy_, http_, imageStore_, clock_}};
    Recording recording_{module_, panel_, settings_, status_, log_, op_, wishes_, clock_};
    FolderScan folderScan_{module_, panel_};
    FrameLink link_{*MSComm1_, store_, log_, clock_, module_};
    TrackerCommands commands_{link_};
    PortSelection portSelection_{store_, *MSComm1_, log_, op_};
    TimeSettingForm timeForm_;
    TimeSetting timeSetting_{timeForm_, panel_, commands_, *wbSystemTm_, log_, op_, clock_, busy_};
    OptionForm optionForm_;
    TrackerOptions options_{optionForm_,           module_, commands_, log_, op_, busy_,
                            [this] { takeSite(); }};
    DailyClocks dailyClocks_{module_, timeSetting_, warnings_,
                             busy_,   clock_,       [this](bool open) { showTimeDialog(open); }};
    Shutdown shutdown_{
        {settings_, store_, busy_, wishes_, op_, log_, [] { QCoreApplication::exit(0); }}};
    RepeatingTimer endRequests_{clock_, kLook, [this] { lookForEndRequest(); }};
    Station station_{module_,
                     panel_,
                     settings_,
                     status_,
                     recording_,
                     camera_,
                     imageStore_,
                     http_,
                     {wbBrowser2_.get(), wbBrowser1_.get(), webBrowserTst_.get()},
                     days_,
                     disk_,
                     archive_,
                     gaps_,
                     wishes_,
                     log_,
                     clock_,
                     op_,
                     warnings_,
                     busy_,
                     views_,
                     dailyClocks_,
                     [this] { showMainWindow(); },
                     [](int code) { QCoreApplication::exit(code); },
                     keepAwake};
    MainLoop loop_{station_};
    AutoStart autoStart_{module_,
                         store_,
                         clock_,
                         {[this] { countdown_->closeDialog(); }, [this] { enterMainLoop(); },
                          [] { QCoreApplication::exit(0); },
                          [this](const std::exception_ptr& fault) { tellFault(fault); }}};

    std::unique_ptr<Frm_AutoStart> countdown_;
    std::unique_ptr<frmMain> main_;
    std::unique_ptr<Frm_massege> warningWindow_;
    TaskGroup faults_;
    TaskGroup tasks_{[this](const std::exception_ptr& fault) { tellFault(fault); }};
    Task<> loopTask_;
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

int run(Application& application, const Fault& unlocked) {
    Program program;
    const Scope known([&](bool on) { application.setProgram(on ? &program : nullptr); });
    QObject context;
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &context,
                     [&] { program.end("the session ends"); });
    program.open(unlocked);
    return QApplication::exec();
}

/// Tells why there is no program.
int runBox(const std::string& text, int code) {
    QtClock clock;
    QtOperator op(clock);
    RepeatingTimer endRequests(clock, kLook, [code] {
        if (!endRequest().empty()) QCoreApplication::exit(code);
    });
    endRequests.enable();
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

    keepEndRequests();
    FileLock lock;
    const FileLock::Outcome locked = lock.take(programFolder() / "orvane.lock");
    if (locked.isOthers) return runBox("Orvane is running already.", 3);
    try {
        return run(application, locked.fault);
    } catch (...) {
        const std::string text = textOf(std::current_exception());
        QtClock clock;
        ErrorLog(programFolder(), clock).write("Orvane:" + text);
        return runBox(text, 1);
    }
}
