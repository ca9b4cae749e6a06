#pragma once

#include "archive/FolderScan.h"
#include "core/Alerts.h"
#include "core/AutoStart.h"
#include "core/Condition.h"
#include "core/FirstSteps.h"
#include "core/MainLoop.h"
#include "core/Shutdown.h"
#include "core/StartTest.h"
#include "core/Station.h"
#include "core/StatusFile.h"
#include "platform/Paths.h"
#include "station/TaskGroup.h"
#include "tests/support/FakeTracker.h"
#include "tests/support/Fakes.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"
#include "tracker/PortSelection.h"
#include "tracker/TrackerOptions.h"

namespace orvane::test {

/// A mail server that takes every mail after `latency`, or fails with what `answer` gives.
class FakeMail final : public MailTransfer {
  public:
    explicit FakeMail(Clock& clock) : clock_(clock) {}

    Task<MailOutcome> send(MailServer server, Mail mail) override {
        ++tries;
        lastServer = server;
        triedAt.push_back(clock_.now());
        co_await clock_.sleep(latency);
        MailOutcome outcome = answer ? answer(mail) : MailOutcome{};
        if (!outcome.fault) sent.push_back(std::move(mail));
        co_return outcome;
    }

    std::function<MailOutcome(const Mail&)> answer;
    std::chrono::milliseconds latency{2000};
    int tries = 0;
    MailServer lastServer;
    std::vector<WallTime> triedAt;
    std::vector<Mail> sent;

  private:
    Clock& clock_;
};

/// The whole station but its windows, on a jumping clock, with a camera that answers every request
/// with a fresh picture. Its folders are real and temporary.
class TestStation {
  public:
    /// Pictures are forced to the disk only where that is looked at: it costs time.
    explicit TestStation(WallTime start, FileWriter::Force force = FileWriter::Force::No,
                         const std::filesystem::path& root = TempFolder::inMemory());
    ~TestStation();

    std::filesystem::path dataFolder() const { return folder.path() / "data"; }

    /// Runs the main loop from its start; `automatic` as after the countdown.
    void start(bool automatic) {
        module.RecordFlg = automatic;
        loopTask = loop.run();
        loopTask.start();
    }
    /// Sets the window and the interval as an operator types them.
    void setSchedule(const std::string& startHour, const std::string& endHour,
                     const std::string& intervalMinute, const std::string& endMinute = "0") {
        store.values["Operation/StartHour"] = startHour;
        store.values["Operation/EndHour"] = endHour;
        store.values["Operation/EndMinute"] = endMinute;
        store.values["Operation/IntervalMinute"] = intervalMinute;
    }
    /// The names of the images in a day's folder, sorted; `below` is "" or "Edit".
    std::vector<std::string> imagesOf(const std::string& day, const std::string& below = "") const {
        return listing(dataFolder() / below / day);
    }
    /// The messages of ERROR.LOG without their stamps.
    std::vector<std::string> logged() const;
    int countLogged(const std::string& message) const {
        return static_cast<int>(std::ranges::count(logged(), message));
    }
    void press(Task<> (Recording::*click)()) { tasks.spawn((recording.*click)()); }

    TempFolder folder;
    JumpingClock clock;
    Module1 module;
    OperationPanel panel;
    FakeStore store;
    FakeHttp http{clock};
    FakePages browser1{clock}, browser2{clock}, gapBrowser{clock};
    FakeHttp switches{clock};
    FakeHttp gapHttp{clock};
    FakeOperator op{clock};
    FakeImageControl imageControl;
    FakeViews views;
    Warnings warnings{clock};
    Busy busy;
    PanelSettings settings{module, panel, store, folder.path() / "pictures" / "Orvane"};
    ErrorLog log{folder.path() / "program",
                 clock,
                 {[this] { return panel.Label7.caption.get(); },
                  [this](const std::string& text) { panel.Label7.caption = text; }}};
    Faults faults{log, clock, op};
    PanelStatus status{module, panel, clock, faults};
    CameraPanel camera{module, panel, http, switches, views, busy, op, clock, imageControl};
    bool unlistable = false; ///< dated folders can be written but not listed
    int listings = 0;
    std::chrono::minutes utcOffset{540};
    OffsetAt offsetAt = [this](auto) { return utcOffset; };
    DaySchedules schedules{module, panel, clock, [this](auto moment) { return offsetAt(moment); }};
    DayWatch days{module, panel, schedules, clock, [this](const std::filesystem::path& dated) {
                      ++listings;
                      return unlistable ? DayListing{{}, "Permission denied"} : listDay(dated);
                  }};
    LedgerKeeper ledger{{days, module, panel, clock, log, [this] { return utcOffset; }}};
    DiskWatch disk;
    FailingFileWriter files;
    PictureArchive archive{{module, days, disk, files, imageControl, views, warnings, log, clock}};
    ImageStore imageStore{
        {module, panel, archive, http, browser1, browser2, log, faults, op, clock, busy}};
    GapFilling gaps{{module, panel, days, archive, gapBrowser, gapHttp, log, faults, clock, busy}};
    Wishes wishes{{module, busy, http, imageStore, clock}};
    Recording recording{module, panel, schedules, settings, status, log, op, wishes, clock};
    /// Its requests come among those that are counted, so it works only where it is looked at.
    StartTest startTest{{module, panel, recording, camera, imageStore, http, faults, clock}};
    FirstSteps steps{{module, panel, camera, recording, schedules, days, clock}};
    FolderScan folderScan{module, panel};
    FakeTracker port{clock};
    FakeHttp wbSystemTm{clock};
    FrameLink link{port, store, log, clock, module};
    TrackerCommands commands{link};
    TimeSettingForm timeForm;
    TimeSetting timeSetting{timeForm, panel, commands, wbSystemTm, log, op, clock, busy};
    std::string timeDialog; ///< a trace of the dialog's openings
    DailyClocks dailyClocks{
        module, schedules, timeSetting, warnings, busy, clock, [this](bool open) {
            timeDialog += open ? "open " : "unloaded ";
        }};
    FailingFileWriter statusFiles;
    StatusFile statusFile{{{module, panel, days, disk, warnings, dailyClocks, clock, "0.1.0",
                            [this] { return utcOffset; }},
                           warnings,
                           statusFiles,
                           log,
                           clock,
                           "<!DOCTYPE html><title>Page</title>"},
                          faults};
    /// Its files are many, so they are written only where they are looked at.
    bool tellsStatus = false;
    OptionForm optionForm;
    int siteChanges = 0;
    TrackerOptions options{optionForm, module, commands, log, op, busy, [this] { ++siteChanges; }};
    PortSelection portSelection{store, link, log, op};
    Condition condition{{module, panel, warnings, days, clock}, faults};
    int exitCode = -1;
    int windowsShown = 0;
    const std::function<void()> showWindows = [this] { ++windowsShown; };
    const std::function<void(int)> quit = [this](int code) { exitCode = code; };
    const std::function<void()> begin = [this] {
        condition.begin();
        if (tellsStatus) statusFile.begin();
    };
    Station station{module,      panel,       settings, status,  recording, camera, imageStore,
                    http,        days,        ledger,   disk,    archive,   gaps,   wishes,
                    log,         faults,      clock,    op,      warnings,  busy,   views,
                    dailyClocks, showWindows, quit,     nullptr, begin};
    MainLoop loop{station};
    FakeMail mail{clock};
    FakeImageControl alertPictures;
    FakeImageControl alertKeogramControl;
    Keograms alertKeograms{{alertKeogramControl, module, busy, clock}};
    Alerts alerts{{module, panel, warnings, days, store, log, faults, clock, alertPictures,
                   alertKeograms, mail, [this] { return utcOffset; }}};
    Task<> loopTask;
    TaskGroup tasks{faults.teller("Orvane")};
};

} // namespace orvane::test
