#pragma once

#include "archive/DayWatch.h"
#include "archive/SpanWork.h"

#include <map>

namespace orvane {

/// How complete some days of the archive are, for a calendar. They are looked at one after the
/// other and in slices, by the names and sizes of their files: whether each picture is whole is
/// looked at for the day in view alone.
class DaySurvey {
  public:
    /// What it works with; all of it outlives this.
    struct Parts {
        DayWatch& days;              ///< for today and the schedules
        const OperationPanel& panel; ///< for the data folder
        Clock& clock;
        Faults& faults;
    };
    struct Result {
        /// Of the due minutes that are over and in which recording was not switched off, those that
        /// have a picture: 0 to 1. Nothing when there are none.
        std::optional<double> share;
        bool isRecorded = false; ///< somebody recorded, or there is a picture
        std::string text;        ///< "taken 12 of 17, 3 missed"
    };

    explicit DaySurvey(Parts parts) : parts_(parts) {}

    /// Begins to look at the days of `span` from the archive's first to today; ends what was begun.
    void start(DaySpan span);
    void stop() { task_.reset(); }

    Value<int> found; ///< how many days of the span have a result so far
    const std::map<std::chrono::local_days, Result>& results() const { return results_; }

  private:
    Task<> run(DaySpan span);
    Task<> look(DaySpan span);
    Task<> pause();
    static Result resultOf(const DayPlan& plan);

    Parts parts_;
    std::map<std::chrono::local_days, Result> results_;
    Task<> task_; ///< last: it uses everything above
};

} // namespace orvane
