#include "core/MainLoop.h"

#include "core/StartTest.h"
#include "core/StartUp.h"
#include "platform/Paths.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane {

namespace {

constexpr Ticks kPass = 100ms;
constexpr Ticks kLongestPause = 10s;
constexpr Ticks kPauseStep = 980ms;
constexpr int kPauseSteps = 60;
constexpr Ticks kLiveInterval = 5s;
/// A clock that is set back by less repeats minutes whose pictures are there; set back by more, as
/// at the end of summer time, it must not stop the recording for so long.
constexpr std::int64_t kRepeatedMinutes = 10;
constexpr const char* kWhere = "MainLoop";

/// The label's count stays where it is when it would leave its 32 bits.
void addCount(std::int32_t& count, std::int32_t by) {
    const std::int64_t sum = std::int64_t{count} + by;
    if (sum <= std::numeric_limits<std::int32_t>::max()) count = static_cast<std::int32_t>(sum);
}

std::string attemptFault(const Captured& captured) {
    if (captured.filed) return {};
    return captured.notFiled.empty() ? "something unforeseen, see ERROR.LOG" : captured.notFiled;
}

} // namespace

Task<> MainLoop::run() {
    std::string failure;
    try {
        Task<Fault> starting = start();
        failure = (co_await starting).value_or("");
    } catch (const std::exception& fault) {
        failure = fault.what();
    }
    if (!failure.empty()) {
        station_.log.write("StartUp:" + failure);
        Task<> telling = station_.op.tell(std::move(failure));
        co_await telling;
        station_.endProgram(1);
        co_return;
    }
    Ticks rest = kPass;
    while (true) {
        const WallTime now = station_.clock.now();
        if (hasNews(now)) {
            bool worked = false;
            try {
                worked = look(now);
                if (!station_.wishes.standing()) {
                    if (hasWork(now)) {
                        Task<bool> working = work(now);
                        worked = co_await working && worked;
                        worked = see(station_.clock.now()) && worked;
                    }
                    worked = besides() && worked;
                }
            } catch (...) {
                station_.faults.report(kWhere, std::current_exception());
                worked = false;
            }
            rest = worked ? kPass : std::min(2 * rest, kLongestPause);
        }
        co_await station_.clock.sleep(rest);
    }
}

/// Whether a pass has something to look at: another second, a switch, an attempt to be made again,
/// the live view, whose time does not come with the seconds. Nine passes in ten have nothing, so it
/// takes no division.
bool MainLoop::hasNews(WallTime now) {
    const Switches switches{station_.module.RecordFlg, station_.busy.active(),
                            station_.panel.chkLive.ticked, station_.recording.starts()};
    const bool isSame = now >= second_ && now < second_ + 1s && switches == switches_;
    if (isSame && !due_ && !switches.live) return false;
    second_ = std::chrono::floor<std::chrono::seconds>(now);
    switches_ = switches;
    return true;
}

/// Everything up to the first pass. Answers why the program cannot go on, or nothing.
Task<Fault> MainLoop::start() {
    if (Fault fault = StartUp(station_)) co_return fault;
    sunDay_ = std::chrono::floor<std::chrono::days>(station_.clock.now());
    station_.panel.chkLive.ticked = false;
    loadTodaysThumbnails(station_);
    if (station_.atWork) station_.atWork();
    if (station_.module.RecordFlg) {
        Task<> starting = station_.recording.Command1_Click();
        co_await starting;
    }
    station_.status.showCount();
    co_return std::nullopt;
}

/// What a pass does without waiting. False: a part of it failed in a way nobody foresaw, which has
/// been reported. The other parts are done all the same, above all the recording.
bool MainLoop::look(WallTime now) {
    const Module1& module = station_.module;
    const bool worked = station_.faults.attempt(kWhere, [&] { watch(now); });
    due_ = isDue(now);
    if (station_.wishes.standing()) return worked; // what they wait for must come to its end
    if (isWindowOfThePast(now)) endOfWindow();
    if (station_.startTest != nullptr) station_.startTest->follow(due_);
    if (!module.RecordFlg) {
        station_.panel.Label11.caption = std::string();
    } else if (!due_ && module.RecDoneFlg && timeOfDay(now) >= module.schedule.EndTime + 1min) {
        endOfWindow();
    }
    return worked;
}

/// Mostly there is nothing to wait for, and no coroutine is made for it.
bool MainLoop::hasWork(WallTime now) const {
    return (due_ && station_.module.RecordFlg) || station_.dailyClocks.isDue(now, false);
}

/// False: it failed in a way nobody foresaw.
Task<bool> MainLoop::work(WallTime now) {
    bool worked = true;
    if (due_ && station_.module.RecordFlg) {
        Task<bool> recording = recordNow(minuteIndex(now));
        worked = co_await recording;
    }
    if (station_.dailyClocks.isDue(now, false)) {
        Task<bool> clocks = setClocks();
        worked = co_await clocks && worked;
    }
    co_return worked;
}

Task<bool> MainLoop::setClocks() {
    return station_.faults.run("DailyClocks", station_.dailyClocks.run());
}

/// Whether this minute is due and waits for its picture. One that comes again because the clock was
/// set back a little is due only when it has none.
bool MainLoop::isDue(WallTime now) const {
    const std::int64_t minute = minuteIndex(now);
    const auto ofDay = static_cast<std::size_t>(minute % kDayMinutes);
    return minute != filedMinute_ &&
           isDueMinute(station_.module.schedule, static_cast<int>(ofDay)) &&
           (minute > filedMinute_ || station_.days.plan().states[ofDay] != DayState::Taken);
}

Task<> MainLoop::capture(Captured& captured) {
    const Scope capturing(station_.module.capturing);
    Task<Captured> capturingImage = captureImage(station_, reasons_);
    captured = co_await capturingImage;
}

/// False: the capture failed in a way nobody foresaw.
Task<bool> MainLoop::recordNow(std::int64_t dueMinute) {
    Captured captured;
    watchFolder();
    live_.reset(); // a capture never waits for the live view
    station_.gaps.standBack();
    if (station_.startTest != nullptr) station_.startTest->standBack();
    Task<bool> capturing = station_.faults.run(kWhere, capture(captured));
    const bool worked = co_await capturing;
    station_.panel.Command2.enabled = station_.module.RecordFlg;
    if (captured.cutShort) {
        station_.panel.Label7.caption = "Recording Standby";
        co_return worked;
    }
    if (station_.startTest != nullptr) station_.startTest->note(captured);
    fetchFault_ = captured.fault;
    station_.module.lastAttempt =
        CaptureAttempt{station_.clock.now(), attemptFault(captured), momentOf(dueMinute)};
    if (!captured.filed) station_.ledger.noteFailure(dueMinute, captured.notFiled);
    const std::int32_t fetched = station_.module.filesFetched; // a run in the pause resets it
    if (captured.filed) {
        watchMissed(); // what had been missed is over, not only when the pause is
        filedMinute_ = std::max({filedMinute_, dueMinute, minuteIndex(captured.copyTime)});
        const bool mayBegin = !station_.wishes.standing();
        if (mayBegin && station_.dailyClocks.isDue(station_.clock.now(), true)) {
            Task<bool> clocks = setClocks();
            co_await clocks;
        }
        Task<> pausing = pause(minuteIndex(captured.copyTime));
        co_await pausing;
    }
    countCapture(fetched);
    capturedDay_ = std::chrono::floor<std::chrono::days>(momentOf(dueMinute));
    co_return worked;
}

/// Keeps the minute of the image's name from being captured twice; the next minute may be due.
Task<> MainLoop::pause(std::int64_t minute) {
    for (int step = 0; step < kPauseSteps; ++step) {
        co_await station_.clock.sleep(kPauseStep);
        const WallTime now = station_.clock.now();
        if (!station_.module.RecordFlg || minuteIndex(now) != minute) co_return;
        if (see(now)) besides();
    }
}

/// Nothing of this is shown when recording was stopped during the pause.
void MainLoop::countCapture(std::int32_t fetched) {
    Module1& module = station_.module;
    module.RecDoneFlg = true;
    if (!module.RecordFlg) return;
    // the count of fetched files goes on between runs against the store: it grows by 1, 2, 3 ...
    addCount(module.RecCount, fetched);
    station_.status.showCount();
    station_.panel.Command2.enabled = true;
    station_.panel.Label7.caption = "Recording Standby";
}

/// A window that follows the sun up to midnight is over when the next day's begins. A typed one has
/// its end, or none.
bool MainLoop::isWindowOfThePast(WallTime now) const {
    return station_.module.RecordFlg && station_.module.RecDoneFlg &&
           station_.panel.chk_sun.ticked &&
           capturedDay_ < std::chrono::floor<std::chrono::days>(now);
}

void MainLoop::endOfWindow() {
    Module1& module = station_.module;
    Schedule& schedule = module.schedule;
    module.RecDoneFlg = false;
    station_.log.write("End Time");
    const WallTime now = station_.clock.now();
    schedule.NextRecTime =
        createNextRecTime(schedule.StartTime, schedule.EndTime, schedule.IntervalTime,
                          std::chrono::floor<std::chrono::seconds>(timeOfDay(now)));
    const auto tomorrow = std::chrono::floor<std::chrono::days>(now) + std::chrono::days(1);
    if (timeOfDay(now) > schedule.EndTime)
        schedule.NextRecTime = station_.days.scheduleOn(tomorrow).StartTime;
    module.RecCount = 0;
    module.filesFetched = 0;
}

/// The sun times belong to a day.
void MainLoop::watchDay(WallTime now) {
    const auto day = std::chrono::floor<std::chrono::days>(now);
    if (std::exchange(sunDay_, day) != day) computeSunTimes(station_);
}

/// Whether the day has changed; once a minute, when recording is switched and when another data
/// folder is chosen: is there something to be told?
void MainLoop::watch(WallTime now) {
    station_.days.follow();
    // mostly nothing has changed; the revision grows with all that is looked at here
    const std::int64_t revision = station_.days.revision();
    if (std::exchange(watchedRevision_, revision) == revision) return;
    watchDay(now);
    const std::int64_t minute = minuteIndex(now);
    const bool recording = station_.module.RecordFlg;
    if (recording && station_.panel.chk_sun.ticked) planRecords();
    if (minute != watchedMinute_) watchFolder();
    const std::filesystem::path& folder = station_.panel.Dir1[0].path;
    const bool moved = folder.native() != watchedFolder_.native();
    if (minute == watchedMinute_ && recording == watchedRecording_ && !moved) return;
    if (minute <= watchedMinute_ - kRepeatedMinutes) filedMinute_ = -1;
    watchedMinute_ = minute;
    if (recording != watchedRecording_ && station_.keepAwake) station_.keepAwake(recording);
    watchedRecording_ = recording;
    if (!recording) filedMinute_ = -1;
    if (moved) noteFolder();
    station_.ledger.follow();
    watchDisk();
    station_.warnings.set(
        Warnings::Cause::ErrorLog,
        station_.log.probe() ? "" : "ERROR.LOG in the program's folder cannot be written.");
    watchMissed();
}

/// Each day has its own window; only what is new is counted, since the count is shown with it.
void MainLoop::planRecords() {
    const Schedule& schedule = station_.module.schedule;
    const auto window = schedule.EndTime - schedule.StartTime;
    if (std::exchange(plannedWindow_, window) != window) station_.status.NumberOfRec();
}

void MainLoop::noteFolder() {
    const std::filesystem::path& folder = station_.panel.Dir1[0].path;
    if (!watchedFolder_.empty()) station_.log.write("Data folder: " + utf8FromPath(folder));
    watchedFolder_ = folder;
    station_.warnings.clear(Warnings::Cause::DataFolder);
}

/// Told and logged once each time that it goes or comes.
void MainLoop::watchFolder() {
    const std::string warning = station_.settings.followDataFolder().value_or("");
    if (warning == folderWarning_) return;
    folderWarning_ = warning;
    if (!warning.empty()) station_.log.write(warning);
    station_.warnings.set(Warnings::Cause::ChosenFolder, warning);
}

/// The reason is that of the moment when the warning came up: a changed text would open it again.
void MainLoop::watchMissed() {
    const std::string warning = station_.days.missedWarning();
    if (warning.empty()) {
        missed_.clear();
    } else if (missed_.empty()) {
        missed_ = warning + (fetchFault_.empty() ? "" : "\n(" + fetchFault_ + ")");
    }
    station_.warnings.set(Warnings::Cause::NoImage, missed_);
    if (station_.days.folder().fault()) station_.days.refresh(); // it may have gone
    const Fault& unreadable = station_.days.folder().fault();
    station_.warnings.set(Warnings::Cause::Unreadable,
                          unreadable ? "Today's folder of pictures cannot be read: " + *unreadable +
                                           ". Missed minutes are not fetched."
                                     : "");
}

void MainLoop::watchDisk() {
    const auto freeBytes = freeBytesOf(station_.panel.Dir1[0].path);
    if (!freeBytes) {
        station_.panel.lbl_free.caption = std::string();
        return;
    }
    const DiskWatch::Report report = station_.disk.report(*freeBytes, station_.module.schedule);
    station_.panel.lbl_free.caption = report.caption;
    station_.warnings.set(Warnings::Cause::DiskSpace, report.warning);
}

/// A capture takes the loop into another minute, or past midnight. False: it failed in a way nobody
/// foresaw.
bool MainLoop::see(WallTime now) {
    return station_.faults.attempt(kWhere, [&] {
        station_.days.follow();
        due_ = isDue(now);
    });
}

/// What may wait, while no due minute waits for its picture. False: it failed in a way nobody
/// foresaw.
bool MainLoop::besides() {
    return station_.faults.attempt(kWhere, [&] {
        if (station_.wishes.standing()) return;
        startLiveView();
        if (!station_.module.RecordFlg || due_) return;
        startSynchronisation();
        // what lies in a folder that is not there is not missing
        if (!station_.warnings.stands(Warnings::Cause::ChosenFolder)) station_.gaps.step();
    });
}

void MainLoop::startSynchronisation() {
    Module1& module = station_.module;
    if (!module.syncElapsed || station_.busy.active() || station_.gaps.filling()) return;
    module.syncPending = true;
    module.syncTicks = 0;
    module.syncElapsed = false;
    synchronisation_ = station_.faults.run("Synchronisation", station_.store.Download_proc());
    synchronisation_.start();
}

void MainLoop::startLiveView() {
    if (!station_.panel.chkLive.ticked) return station_.camera.endLive();
    const bool mayFetch = !station_.busy.active() && !station_.http.running();
    if (!mayFetch || !live_.done() || station_.clock.ticks() < nextLive_) return;
    nextLive_ = station_.clock.ticks() + kLiveInterval;
    live_ = station_.faults.run("LiveView", showLivePicture());
    live_.start();
}

Task<> MainLoop::showLivePicture() {
    CameraRequest asked = station_.camera.request();
    std::string url = asked.camera + kLatestImagePath;
    Task<HttpReply> get = station_.http.get(std::move(url));
    const HttpReply reply = co_await get;
    if (reply.ok && station_.panel.chkLive.ticked) station_.views.showLive(reply.body);
    Task<CameraAnswer> judging = station_.camera.judge(reply, std::move(asked));
    const CameraAnswer answer = co_await judging;
    if (station_.panel.chkLive.ticked) station_.camera.tellLive(answer);
}

} // namespace orvane
