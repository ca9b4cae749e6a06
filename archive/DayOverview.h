#pragma once

#include "archive/DayPlan.h"
#include "imaging/SunDay.h"
#include "station/OperationPanel.h"

#include <functional>

namespace orvane {

/// Today's plan and sun, kept up to date for whoever shows them. `refresh` may be called every
/// second: it reads the dated folder only when the folder's time of change has moved, and works the
/// plan out only when something it depends on has changed.
class DayOverview {
  public:
    using Reader =
        std::function<DayPictures(const std::filesystem::path&, std::chrono::local_days)>;

    /// `module`, `panel` and `clock` outlive this object.
    DayOverview(const Module1& module, const OperationPanel& panel, const Clock& clock,
                Reader reader = picturesOfDay)
        : module_(module), panel_(panel), clock_(clock), reader_(std::move(reader)) {}

    /// Whether anything that is shown has changed since the last call.
    bool refresh();

    const DayPlan& plan() const { return plan_; }
    /// Nothing when the site's sun cannot be computed.
    const std::optional<SunDay>& sun() const { return sun_; }
    int minuteOfDay() const { return static_cast<int>(seen_.minute % kDayMinutes); }

  private:
    /// What the plan depends on, but for the pictures.
    struct Seen {
        std::int64_t minute = -1;
        bool recording = false;
        Schedule schedule;
        std::int16_t delay = 0;

        bool operator==(const Seen&) const = default;
    };

    bool readPictures(std::chrono::local_days day);
    bool computeSun(std::chrono::local_days day);

    const Module1& module_;
    const OperationPanel& panel_;
    const Clock& clock_;
    Reader reader_;

    Seen seen_;
    DayPictures pictures_{};
    std::filesystem::path folder_;
    std::filesystem::file_time_type changed_;
    bool readAgain_ = false; ///< a change might hide behind the same time of change
    std::chrono::local_days sunDay_{};
    std::optional<SiteValues> site_;
    DayPlan plan_;
    std::optional<SunDay> sun_;
};

} // namespace orvane
