#include "Program.h"

#include "core/StartUp.h"
#include "ui/Text.h"
#include "ui/dialogs/FrmTKRTimeAuto.h"

#include <QFile>
#include <QStandardPaths>

namespace orvane {

std::filesystem::path programFolder() {
    return toPath(QCoreApplication::applicationDirPath());
}

Task<> tellAndExit(Operator& op, std::string text, int code) {
    Task<> telling = op.tell(std::move(text));
    co_await telling;
    QCoreApplication::exit(code);
}

Program::Program() {
    module_.programFolder = programFolder();
}

void Program::open(const Fault& unlocked) {
    if (unlocked) log_.write("The program's lock cannot be made: " + *unlocked);
    countdown_ = std::make_unique<Frm_AutoStart>(autoStart_);
    countdown_->show();
}

void Program::tellFault(const std::exception_ptr& fault) {
    if (!startFault_.done()) return faults_.report("StartUp", fault);
    if (!loopTask_.done()) return faults_.tell("Orvane", fault);
    const std::string text = textOf(fault);
    log_.write("StartUp:" + text);
    startFault_ = tellAndExit(op_, text, 1);
    startFault_.start();
}

void Program::end(const std::string& reason) {
    shutdown_.end(reason, main_ ? main_->place() : std::nullopt);
}

std::filesystem::path Program::defaultDataFolder() {
    return toPath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)) / "Orvane";
}

std::string Program::statusPage() {
    QFile page(":/status/status.html");
    page.open(QIODevice::ReadOnly);
    return page.readAll().toStdString();
}

void Program::showMainWindow() {
    main_ = std::make_unique<frmMain>(
        frmMain::Parts{{panel_, recording_, settings_, camera_, imageStore_, folderScan_, tasks_},
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
                       *systemInfo_,
                       condition_,
                       steps_});
    op_.setParentWindow(main_.get());
    main_->show();
    warningWindow_ = std::make_unique<Frm_massege>(warnings_, main_.get());
}

std::string Program::devicePath(int port) const {
    const std::string number = std::to_string(port);
    return store_.GetSetting("Communication", "Device" + number,
                             "/dev/ttyS" + std::to_string(port - 1));
}

void Program::showTimeDialog(bool open) {
    if (open) {
        main_->timeDialog()->openAutomatic();
    } else {
        main_->timeDialog()->unload();
    }
}

void Program::takeSite() {
    settings_.showSite();
    followSite(station_);
}

void Program::beginWork() {
    statusFile_.begin();
    condition_.begin();
}

void Program::endProgram() {
    ledger_.end();
    faults_.attempt("StatusFile", [this] { statusFile_.end(); });
    QCoreApplication::exit(0);
}

void Program::enterMainLoop() {
    alerts_.start();
    loopTask_ = loop_.run();
    loopTask_.start();
}

} // namespace orvane
