#include "ui/frmMain.h"

#include "ui/Banner.h"
#include "ui/Desktop.h"
#include "ui/HelpMenu.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/WishBar.h"
#include "ui/day/DayMenu.h"
#include "ui/day/DayView.h"
#include "ui/dialogs/FilmDialog.h"
#include "ui/dialogs/FrmAlerts.h"
#include "ui/dialogs/FrmComPort.h"
#include "ui/dialogs/FrmSave.h"
#include "ui/dialogs/FrmStatusPage.h"
#include "ui/dialogs/FrmTKRTimeAuto.h"
#include "ui/dialogs/SpanDialog.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/dialogs/frmOption.h"
#include "ui/panel/PanelScroll.h"
#include "ui/pictures/FirstRun.h"
#include "ui/pictures/FullScreen.h"
#include "ui/pictures/ImageMenu.h"
#include "ui/pictures/PictureDrop.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QScreen>

namespace orvane {
namespace {
constexpr QSize kSize(1024, 747); // with its frame
} // namespace

frmMain::frmMain(Parts parts)
    : parts_(parts), operation_(new frmOperation(parts.operation)), area_(new PictureArea) {
    setObjectName("frmMain");
    auto* strip =
        new ThumbnailStrip(parts_.views.loader(), parts_.faults.reporter("ThumbnailStrip"));
    QHBoxLayout* above = row({new PanelScroll(*operation_), {column({{area_, 1}, strip}, 0), 1}});
    auto* day = new DayView({parts_.day, parts_.module, parts_.clock, parts_.faults});
    auto* banner = new Banner(parts_.condition);
    setCentralWidget(inWidget(column({banner, {above, 1}, day}, 0)));
    // After the layout's parts, so that it lies above them.
    new WishBar(parts_.wishes, centralWidget());
    ring_.reset(new FocusRing(*this, {operation_, area_, strip, &day->bar(), day}));

    addFileMenu();
    addToolsMenu();
    addRecordingMenu();
    QMenu& picture = addMenu("mnuImage", "Pict&ure");
    new ImageMenu(*saveAs_, picture, *area_, parts_.views);
    fullScreen_ = new FullScreen(picture, *area_);
    auto* days = new DayMenu(
        addMenu("mnuDay", "&Day"), *day, *area_,
        {parts_.day, parts_.survey, parts_.module, parts_.clock, parts_.faults, parts_.views});
    SpanDialog* film = filmDialog(parts_.film, parts_.module, parts_.clock, this);
    connect(days, &DayMenu::saveFilmWanted, film, [film](std::chrono::local_days shown) {
        film->bringFor({shown, shown});
    });
    connect(operation_, &frmOperation::dayWanted, days, &DayMenu::turnTo);
    connect(operation_, &frmOperation::folderShowWanted, this, &frmMain::showFolder);
    connect(banner, &Banner::remedyWanted, this, &frmMain::remedy);
    bindings_.follow(parts_.condition.title,
                     [this](const std::string& title) { setWindowTitle(toQString(title)); });
    bindings_.follow(parts_.condition.begun, [this](int begun) {
        // The task bar's entry blinks where the window is not in front; 0 is the value at the
        // start.
        if (begun > 0) QApplication::alert(this);
    });
    addWindowMenu();
    addHelpMenu();
    bindings_.follow(parts_.busy.mnuFileOpen, [this](bool on) { followBusy(on); });
    parts_.views.attach(area_, strip);
    new PictureDrop(*this, *findChild<QAction*>("mnuFileOpen"), parts_.views);
    connect(strip, &ThumbnailStrip::opened, this,
            [this](const std::filesystem::path& file) { parts_.views.openFiled(file); });
    connect(operation_, &frmOperation::imageWanted, this,
            [this](const std::filesystem::path& file) { parts_.views.openImage(file); });
    connect(operation_, &frmOperation::pictureWanted, this, [this] { parts_.views.wantLatest(); });
    auto* first = new FirstRun({parts_.steps, parts_.clock, parts_.faults}, *area_);
    connect(first, &FirstRun::controlWanted, operation_,
            [this](const QString& control) { operation_->bring(control); });
    MDIForm_Load();
    operation_->focusStart();
}

QMenu& frmMain::addMenu(const char* name, const QString& caption) {
    QMenu* menu = menuBar()->addMenu(caption);
    menu->setObjectName(name);
    menu->setToolTipsVisible(true);
    return *menu;
}

void frmMain::addFileMenu() {
    QMenu& file = addMenu("mnuFile", "&File");
    idleActions_ << addEntry(file, {"mnuFileOpen", "&Open...", "Opens stored pictures."},
                             {QKeySequence::Open}, this, &frmMain::mnuFileOpen_Click);
    saveAs_ = addEntry(
        file, {"mnuFileSaveAs", "Save &As...", "Saves the picture in front as a JPEG file."},
        {Qt::CTRL | Qt::Key_S}, this, [] {}); // the picture menu does it
    addEntry(file, {"mnuFileLatest", "&Latest Image", "Shows the newest picture."},
             {Qt::CTRL | Qt::Key_L}, this,
             [this] { parts_.views.openLatest(parts_.module.lastImage); });
    addEntry(file,
             {"mnuFileShowFolder", "Show in the File &Manager",
              "Shows the data folder in the desktop's file manager."},
             {Qt::CTRL | Qt::SHIFT | Qt::Key_O}, this,
             [this] { showFolder(parts_.operation.panel.Dir1[0].path); });
    file.addSeparator();
    addEntry(file, {"mnuFileSaveOptions", "&Save Options...", "Sets how pictures are saved."},
             {Qt::CTRL | Qt::Key_T}, this,
             [this] { openOnce(new FrmSave(parts_.module.image, this)); });
    addEntry(file, {"mnuFileReport", "Save &Report...", "Saves how complete some days are."},
             {Qt::CTRL | Qt::Key_E}, reportDialog(parts_.report, parts_.clock, this),
             &SpanDialog::bring);
    file.addSeparator();
    addEntry(file, {"mnuFileExit", "E&xit", "Saves the settings and ends."}, {Qt::CTRL | Qt::Key_Q},
             this, &frmMain::mnuFileExit_Click);
}

void frmMain::addToolsMenu() {
    QMenu& tools = addMenu("mnuTools", "Too&ls");
    idleActions_ << addEntry(
        tools,
        {"mnuCOMSelect", "&COM Port...", "Chooses the port that the tracker is connected to."},
        {Qt::CTRL | Qt::Key_M}, this, &frmMain::mnuCOMSelect_Click);
    idleActions_ << addEntry(
        tools, {"mnuTKRTimeSetAuto", "&Time Setting...", "Sets the clocks of camera and tracker."},
        {Qt::CTRL | Qt::Key_K}, this, [this] { timeDialog()->openManual(); });
    idleActions_ << addEntry(tools,
                             {"mnuTKROption", "Tracker &Options...",
                              "Reads and writes the tracker's site, origin and serial number."},
                             {Qt::CTRL | Qt::Key_R}, this, &frmMain::mnuTKROption_Click);
    tools.addSeparator();
    addEntry(tools,
             {"mnuCopiesAnew", "&Processed Copies Anew...",
              "Makes the processed copies of some days anew."},
             {Qt::CTRL | Qt::Key_P}, copiesDialog(parts_.copies, parts_.module, parts_.clock, this),
             &SpanDialog::bring);
    addEntry(
        tools,
        {"mnuStatusPage", "Stat&us Page...", "Shows where to look at the station from elsewhere."},
        {Qt::CTRL | Qt::Key_U}, this, &frmMain::mnuStatusPage_Click);
    addEntry(tools, {"mnuAlerts", "&Alerts...", "Sets who is told of warnings by e-mail."},
             {Qt::CTRL | Qt::SHIFT | Qt::Key_A}, new FrmAlerts(parts_.alerts, parts_.faults, this),
             &FrmAlerts::bring);
}

void frmMain::addRecordingMenu() {
    QMenu& menu = addMenu("mnuRecording", "Rec&ording");
    Recording& recording = parts_.operation.recording;
    TaskGroup& tasks = parts_.operation.tasks;
    QAction* start = addEntry(
        menu, {"mnuRecordingStart", "&Start", "Checks the schedule and records at its times."}, {},
        this, [&] { tasks.spawn(recording.Command1_Click()); });
    QAction* stop = addEntry(
        menu, {"mnuRecordingStop", "S&top", "Stops recording, also while a picture is taken."}, {},
        this, [&] { tasks.spawn(recording.mnuRecordingStop_Click()); });
    bindings_.follow(recording.mnuRecordingStart, [start](bool on) { start->setEnabled(on); });
    bindings_.follow(recording.mnuRecordingStop, [stop](bool on) { stop->setEnabled(on); });
}

void frmMain::addHelpMenu() {
    QMenu& help = addMenu("mnuHelp", "&Help");
    new HelpMenu(help, {parts_.module, parts_.op, parts_.operation.tasks});
    addEntry(help, {"mnuHelpAbout", "&About...", "Shows the program's version."}, {}, this,
             &frmMain::mnuHelpAbout_Click);
}

/// A tracker exchange must not be disturbed by a second one on the same port.
void frmMain::followBusy(bool idle) {
    for (QAction* action : idleActions_)
        action->setEnabled(idle);
    if (comPort_ != nullptr) comPort_->setPortFree(idle);
}

void frmMain::addWindowMenu() {
    QMenu& windows = addMenu("mnuWindow", "&Window");
    addEntry(windows, {"mnuWindowCascade", "&Cascade", "Lays the pictures on each other."}, {},
             area_, &QMdiArea::cascadeSubWindows);
    addEntry(windows, {"mnuWindowTile", "&Tile", "Lays the pictures side by side."}, {}, area_,
             &PictureArea::tile);
    addEntry(windows, {"mnuWindowCloseAll", "Close &All", "Closes every picture."}, {}, area_,
             &QMdiArea::closeAllSubWindows);
    for (QAction* action : windows.actions()) {
        // The area is empty, and says so only when that changes.
        action->setEnabled(false);
        connect(area_, &PictureArea::emptied, action, &QAction::setDisabled);
    }
    windows.addSeparator();
    const std::pair<const char*, const char*> pages[] = {{"mnuWindowRecording", "Page &Recording"},
                                                         {"mnuWindowCamera", "Page Ca&mera"},
                                                         {"mnuWindowFiles", "Page &Files"}};
    for (int page = 0; page < static_cast<int>(std::size(pages)); ++page)
        addEntry(windows, {pages[page].first, pages[page].second, "Leads to the panel's page."},
                 {QKeyCombination(Qt::CTRL, static_cast<Qt::Key>(Qt::Key_1 + page))}, operation_,
                 [this, page] { operation_->showPage(page); });
    windows.addSeparator();
    // Made when somebody looks: titles change with each capture.
    connect(&windows, &QMenu::aboutToShow, this, [this, &windows] { listWindows(windows); });
}

void frmMain::listWindows(QMenu& menu) {
    qDeleteAll(windowActions_);
    windowActions_.clear();
    for (QMdiSubWindow* frame : area_->subWindowList()) {
        const auto number = windowActions_.size() + 1;
        // A file's name may have an "&", which would be taken for a key.
        const QString title = frame->windowTitle().replace('&', "&&");
        QAction* action =
            menu.addAction(number < 10 ? QString("&%1 %2").arg(number).arg(title) : title);
        action->setCheckable(true);
        action->setChecked(frame == area_->activeSubWindow());
        connect(action, &QAction::triggered, frame,
                [this, frame] { area_->setActiveSubWindow(frame); });
        windowActions_ << action;
    }
}

/// The window always opens at the same place, whatever place it was closed at.
void frmMain::MDIForm_Load() {
    move(0, 0);
    resize(kSize);
}

/// The prescribed place and size first, then no more than the desktop that is there.
void frmMain::fitDesktop() {
    const QSize around = frameGeometry().size() - size();
    // Without the task bar; its left and top may be other than 0, and below it with several
    // screens.
    const QRect desktop = screen()->availableGeometry();
    QRect place({0, 0}, kSize.boundedTo(desktop.size()));
    place.moveLeft(std::max(desktop.left(), std::min(0, desktop.right() + 1 - place.width())));
    place.moveTop(std::max(desktop.top(), std::min(0, desktop.bottom() + 1 - place.height())));
    move(place.topLeft());
    resize(place.size() - around);
    // Last, so that the place before it is the one to come back to.
    if (parts_.shutdown.wasMaximised()) showMaximized();
}

void frmMain::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    // Coming back from the task bar the window stays where the operator moved it.
    if (!event->spontaneous()) placed_ = false;
}

bool frmMain::event(QEvent* event) {
    // The frame's width is known only once the window manager has drawn it.
    if (event->type() == QEvent::WindowActivate && !placed_ && !isMaximized()) {
        placed_ = true;
        fitDesktop();
    }
    return QMainWindow::event(event);
}

void frmMain::mnuFileOpen_Click() {
    const QString start =
        openFolder_.isEmpty() ? toQString(parts_.operation.panel.Dir1[0].path.get()) : openFolder_;
    auto* dialog =
        new QFileDialog(this, "Open", start, "JPEG pictures (*.jpg *.jpeg *.JPG *.JPEG)");
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
        if (files.isEmpty()) return;
        openFolder_ = QFileInfo(files.first()).absolutePath();
        std::vector<std::filesystem::path> paths;
        for (const QString& file : files)
            paths.push_back(toPath(file));
        parts_.views.openImages(paths);
    });
    openOnce(dialog);
}

void frmMain::mnuFileExit_Click() {
    parts_.shutdown.mnuFileExit_Click();
    // `closeEvent` runs within `close`, and passes on who asked.
    const Scope exiting(exiting_);
    close();
}

void frmMain::mnuCOMSelect_Click() {
    if (comPort_ == nullptr)
        comPort_ = new FrmComPort(parts_.tracker.ports, parts_.operation.tasks, this);
    comPort_->open();
}

FrmTKRTimeAuto* frmMain::timeDialog() {
    const Tracker& tracker = parts_.tracker;
    if (timeDialog_ == nullptr)
        timeDialog_ =
            new FrmTKRTimeAuto(tracker.timeForm, tracker.timeSetting, parts_.operation.tasks, this);
    return timeDialog_;
}

void frmMain::mnuTKROption_Click() {
    const Tracker& tracker = parts_.tracker;
    if (option_ == nullptr)
        option_ = new frmOption(tracker.optionForm, tracker.options, parts_.operation.tasks, this);
    option_->open();
}

void frmMain::mnuStatusPage_Click() {
    openOnce(new FrmStatusPage(parts_.module, parts_.operation.settings, this));
}

void frmMain::mnuHelpAbout_Click() {
    openOnce(new frmAbout({parts_.systemInfo, parts_.op, parts_.operation.tasks}, this));
}

void frmMain::showFolder(const std::filesystem::path& folder) {
    std::error_code error;
    const std::string name = QDir::toNativeSeparators(toQString(folder)).toStdString();
    std::string fault;
    if (!std::filesystem::is_directory(folder, error)) {
        fault = "The folder " + name +
                " is not there. The default one is made with the first picture; else connect its "
                "disk, or choose another data folder.";
    } else if (!openOnDesktop(folder)) {
        fault = "No file manager could be started. Please open " + name + " in one.";
    }
    // A box that nobody waits for.
    if (!fault.empty()) parts_.operation.tasks.spawn(parts_.op.tell(std::move(fault)));
}

/// By way of the controls that the operator would use, so that it is the same, locks included.
void frmMain::remedy(Remedy remedy) {
    switch (remedy) {
    case Remedy::TestFetch:
        return operation_->press("Command8");
    case Remedy::SelectFolder:
        return operation_->press("Command3");
    case Remedy::ShowDataFolder:
        return showFolder(parts_.operation.panel.Dir1[0].path);
    case Remedy::ShowProgramFolder:
        return showFolder(parts_.module.programFolder);
    case Remedy::SetClocks:
        return findChild<QAction*>("mnuTKRTimeSetAuto")->trigger();
    case Remedy::CorrectSite:
        operation_->bring("txt_lat");
        return;
    case Remedy::SeeAlerts:
        return findChild<QAction*>("mnuAlerts")->trigger();
    case Remedy::None:
        return;
    }
}

/// Refused until the station has been asked: its question may stay open for days.
void frmMain::closeEvent(QCloseEvent* event) {
    event->setAccepted(unloaded_);
    if (unloaded_) return;
    parts_.operation.tasks.spawn(unload(this, exiting_ ? UnloadMode::Other : UnloadMode::User));
}

Task<> frmMain::unload(QPointer<frmMain> window, UnloadMode mode) {
    Task<bool> query = window->parts_.shutdown.MDIForm_QueryUnload(mode);
    const bool mayClose = co_await query;
    // The window may have gone while it was asked.
    if (!mayClose || window == nullptr) co_return;
    // From here on nothing may hold the window back: ending the program closes every window.
    window->unloaded_ = true;
    Shutdown& shutdown = window->parts_.shutdown;
    // Before it closes: a hidden window has no frame.
    const std::optional<WindowPlace> place = window->place();
    window->close();
    shutdown.MDIForm_Unload(place);
}

/// In the full screen's place the frame that it will have again.
std::optional<WindowPlace> frmMain::place() const {
    if (isMinimized()) return std::nullopt;
    const QRect frame = fullScreen_->frameBefore().value_or(frameGeometry());
    return WindowPlace{frame.left(), frame.top(), frame.width(), frame.height(), isMaximized()};
}

} // namespace orvane
