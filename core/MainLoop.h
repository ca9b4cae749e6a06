#pragma once

#include "core/Capture.h"

namespace orvane {

/// The program's one polling loop: start-up, then a pass every 100 ms for the program's whole life.
/// A pass decides whether a picture is due; a capture and the pause after it run inside the pass.
/// What may wait (live view, synchronisation, missed minutes) runs beside it and stands back for
/// captures.
class MainLoop {
  public:
    explicit MainLoop(Station& station) : station_(station), reasons_(station.log, station.clock) {}

    /// Ends only when the start-up fails; then it has told the fault and ended the program with
    /// exit code 1. Everything else ends the loop by destroying its task. What nobody foresaw is
    /// reported, and the loop goes on; it pauses longer from one failed pass to the next, up to
    /// 10 s.
    Task<> run();

  private:
    Task<Fault> start();
    bool look(WallTime now);
    bool hasWork(WallTime now) const;
    Task<bool> work(WallTime now);
    Task<> capture(Captured& captured);
    Task<bool> recordNow(std::int64_t dueMinute);
    Task<bool> setClocks();
    Task<> pause(std::int64_t minute);
    void countCapture(std::int32_t fetched);
    bool isWindowOfThePast(WallTime now) const;
    void endOfWindow();
    void watchDay(WallTime now);
    void watch(WallTime now);
    void noteFolder();
    void planRecords();
    void watchFolder();
    void watchDisk();
    void watchMissed();
    bool isDue(WallTime now) const;
    bool see(WallTime now);
    bool besides();
    void startSynchronisation();
    void startLiveView();
    Task<> showLivePicture();

    Station& station_;
    RepeatedLine reasons_;          ///< why captures fail
    std::int64_t filedMinute_ = -1; ///< the latest that was captured, by being due or by its name
    std::chrono::local_days capturedDay_{}; ///< of the due minute that was captured last
    TimeOfDay plannedWindow_{};             ///< the length that the records were counted for
    std::string fetchFault_; ///< of the last capture; empty when it brought a picture
    std::string missed_;     ///< the warning of missed minutes, with its reason
    std::chrono::local_days sunDay_{};
    std::int64_t watchedRevision_ = -1; ///< of the day's watch
    std::int64_t watchedMinute_ = -1;
    std::chrono::local_seconds watchedSecond_{};
    bool due_ = false; ///< this minute is, and waits for its picture
    bool watchedRecording_ = false;
    std::filesystem::path watchedFolder_;
    std::string folderWarning_; ///< why the chosen folder is not used
    Ticks nextLive_{0};
    Task<bool> live_;
    Task<bool> synchronisation_;
};

} // namespace orvane
