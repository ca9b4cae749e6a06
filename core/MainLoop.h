#pragma once

#include "core/Capture.h"

namespace orvane {

/// The program's one polling loop: start-up, then a pass every 100 ms for the program's whole life.
/// The first pass of a second, and one after a switch, decides whether a picture is due; a capture
/// and the pause after it run inside the pass. What may wait (live view, synchronisation, missed
/// minutes) runs beside it and stands back for captures.
class MainLoop {
  public:
    explicit MainLoop(Station& station) : station_(station), reasons_(station.log, station.clock) {}

    /// Ends only when the start-up fails; then it has told the fault and ended the program with
    /// exit code 1. Everything else ends the loop by destroying its task. What nobody foresaw is
    /// reported, and the loop goes on; it pauses longer from one failed pass to the next, up to
    /// 10 s.
    Task<> run();

  private:
    /// What makes a pass look at everything when it has changed.
    struct Switches {
        bool recording = false;
        bool busy = false;
        bool live = false;
        int starts = 0; ///< of the recording

        bool operator==(const Switches&) const = default;
    };

    Task<Fault> start();
    bool hasNews(WallTime now);
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
    WallTime second_{}; ///< of the last look
    Switches switches_;
    bool due_ = false; ///< this minute is, and waits for its picture
    bool watchedRecording_ = false;
    std::filesystem::path watchedFolder_;
    std::string folderWarning_; ///< why the chosen folder is not used
    Ticks nextLive_{0};
    Task<bool> live_;
    Task<bool> synchronisation_;
};

} // namespace orvane
