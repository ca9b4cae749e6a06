#pragma once

#include "archive/DayWatch.h"
#include "archive/Keograms.h"
#include "station/Faults.h"

namespace orvane {

/// The day of the archive that the operator looks at: today, as `DayWatch` knows it, or another
/// one, whose folder is read in slices when it is turned to. Of the rest of the archive nothing is
/// read. A past day stays in view over midnight; today becomes the next day.
class ShownDay {
  public:
    /// What it works with; all of it outlives this.
    struct Parts {
        DayWatch& days;
        const OperationPanel& panel; ///< for the data folder
        Keograms& keograms;
        Clock& clock;
        Faults& faults;
    };

    explicit ShownDay(Parts parts) : parts_(parts) {}

    /// A day that has not come yet, or came before the archive's first, gives the nearest that has.
    void turnTo(std::chrono::local_days day);
    /// Takes note of what has changed. To be called about once a second.
    void refresh();
    /// Grows with every change.
    std::int64_t revision() const {
        return changes_ + parts_.days.revision() + parts_.keograms.revision();
    }

    std::chrono::local_days day() const { return shown().folder.day(); }
    bool isToday() const { return !past_; }
    /// Its folder is being looked through: of what is there nothing is known yet.
    bool isReading() const { return isReading_; }
    /// The archive's first day; today while it is empty.
    std::chrono::local_days firstDay() const { return std::min(first_, day()); }

    const DayPlan& plan();
    /// The minute under way; nothing on a day that is over.
    std::optional<int> now() const;
    /// The file that a minute is judged by; empty when there is none.
    std::filesystem::path pictureOf(int minute);
    /// The name of that file, or why the minute was missed; else empty.
    std::string detailOf(int minute);
    /// Whole pictures in the order of their names.
    const std::vector<FiledPicture>& pictures() const;

    /// Whether the keogram of the day in view is read; it grows with each `refresh`.
    void wantKeogram(bool wanted) { keogramWanted_ = wanted; }
    /// As far as it has been read; a pixel for each minute.
    Pixels keogram();

  private:
    std::chrono::local_days today() const { return parts_.days.folder().day(); }
    const ArchiveDay& shown() const { return past_ ? *past_ : parts_.days.today(); }
    Task<> read();
    Task<> pause();
    void findFirst();
    void followKeogram();
    Task<> readKeogram();

    Parts parts_;
    std::optional<ArchiveDay> past_;
    std::filesystem::path dataFolder_;        ///< as of the last turning
    std::filesystem::file_time_type changed_; ///< of the data folder, when it was looked through
    bool lookAgain_ = true; ///< a change might hide behind the same time of change
    std::chrono::local_days first_{};
    bool isReading_ = false;
    std::int64_t changes_ = 0;
    std::int64_t planned_ = -1; ///< the revision that `plan_` belongs to
    DayPlan plan_;              ///< of `past_`
    bool keogramWanted_ = false;
    Task<> reading_; ///< last: the tasks use everything above
    Task<> keogram_;
};

} // namespace orvane
