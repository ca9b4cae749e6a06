#pragma once

#include "archive/ArchiveDay.h"
#include "station/DaySchedules.h"

#include <utility>

namespace orvane {

/// Today and yesterday in the data folder: what is due, what became of it, and what follows from
/// that. Everything is worked out from the schedule, the files and the days' ledgers, but for two
/// things that none of them tells: since when recording has been on into this data folder, and
/// which minutes never were because the clock was put forward over them. Those are not due.
class DayWatch {
  public:
    /// `module`, `panel`, `schedules` and `clock` outlive this object.
    DayWatch(const Module1& module, const OperationPanel& panel, DaySchedules& schedules,
             const Clock& clock, const DayFolder::Reader& reader = listDay);

    /// Has today's schedule in force; takes note of the time, the schedule and the settings. Cheap;
    /// to be called often, at least once a minute.
    void follow();
    /// `follow`, and reads today's folder when it has changed.
    void refresh();
    /// Grows with every change, also of the minute.
    std::int64_t revision() const { return revision_; }

    /// Of today, as far as is known.
    const DayPlan& plan();
    /// Of yesterday, as it ended.
    DayPlan yesterdaysPlan();
    int minuteOfDay() const { return static_cast<int>(seen_.minute % kDayMinutes); }
    const ArchiveDay& today() const { return today_; }
    /// What today's folder holds.
    const DayFolder& folder() const { return today_.folder; }
    int delay() const { return seen_.delay; } ///< whole minutes of a capture's delay
    /// The schedule of a day, as far as no ledger tells of another.
    Schedule scheduleOn(std::chrono::local_days day) const { return schedules_.of(day); }

    /// What today is judged otherwise than its ledger tells, without offsets and reasons; each
    /// judgement is told once.
    std::vector<LedgerLine> newLines();
    /// The same of yesterday, as it ended.
    std::vector<LedgerLine> yesterdaysNewLines();
    /// Takes note of a line of today's ledger; it is not written here.
    void note(const LedgerLine& line);
    /// A whole picture was filed.
    void add(const std::filesystem::path& file);

    /// "No image at 09:30 and 10:00. Please check the camera." when, since recording was switched
    /// on, the last two due minutes that are over or more brought no capture; else empty.
    std::string missedWarning();
    /// Due minutes without a capture, one after the other; each as `minuteIndex` counts.
    struct Missed {
        int count = 0;
        std::int64_t first = 0;
        std::int64_t second = 0;
        std::optional<std::int64_t> taken{}; ///< the due minute before them that has its capture
    };
    /// Those that are over after the newest capture, also from before a restart today, as far as
    /// the ledger tells that they were recorded.
    Missed outage() const { return outageBefore(seen_.minute + 1); }
    /// The same as if `end` were the next minute to come.
    Missed outageBefore(std::int64_t end) const;
    /// Whether two due minutes or more are over without a capture since the picture of `taken`.
    bool isOverdue(WallTime taken) const;

  private:
    /// What is looked at for a change.
    struct Seen {
        std::int64_t minute = 0; ///< as `minuteIndex` counts
        bool recording = false;
        Schedule schedule;
        int delay = 0;              ///< whole minutes
        std::int64_t schedules = 0; ///< their revision

        bool operator==(const Seen&) const = default;
    };
    struct Day : ArchiveDay {
        explicit Day(const DayFolder::Reader& reader) : ArchiveDay(reader) {}
        DueMinutes isDue{};
    };

    bool isOnlyLater(const Seen& seen) const;
    void noteJump(WallTime now);
    void turn(std::chrono::local_days today);
    void findDue();
    void forgetMissed();
    void findDue(Day& day, const Schedule& schedule) const;
    const Day* dayOf(std::int64_t minute) const;
    bool isDue(std::int64_t minute) const;
    bool isTaken(std::int64_t minute) const;
    std::vector<LedgerLine> newLines(const Day& day, const DayPlan& plan) const;
    bool wasRecorded(std::int64_t minute) const;
    bool isOver(std::int64_t minute) const { return minute + seen_.delay < seen_.minute; }
    Watch watchOf(std::int64_t minute) const;
    Missed missedBetween(std::int64_t begin, std::int64_t end) const;
    Missed missedInARow() const { return missedBetween(since_, seen_.minute + 1); }

    const Module1& module_;
    const OperationPanel& panel_;
    DaySchedules& schedules_;
    const Clock& clock_;
    Day today_;
    Day yesterday_;
    Seen seen_;
    std::filesystem::path dataFolder_; ///< looked at for a change as well
    /// The minute in which recording was switched on, the clock set back, or another data folder
    /// taken into use.
    std::int64_t since_ = 0;
    std::vector<std::pair<std::int64_t, std::int64_t>> neverWere_; ///< first and last minutes
    WallTime lastTime_{};
    Ticks lastTicks_{0};
    std::int64_t revision_ = 0;
    std::int64_t planned_ = -1; ///< the revision that `plan_` belongs to
    std::int64_t plans_ = 0;    ///< how many were made
    std::int64_t told_ = 0;     ///< the one that `newLines` told of
    std::int64_t unmissed_ = 0; ///< the last that gave `missedWarning` nothing to tell
    DayPlan plan_;
};

} // namespace orvane
