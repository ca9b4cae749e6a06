#pragma once

#include "station/Module1.h"
#include "station/OperationPanel.h"
#include "station/SunWindow.h"

#include <map>

namespace orvane {

/// Which schedule a day has: the typed one, the same every day, or, while "Follow the sun" is
/// ticked, the typed interval in that day's own window around the sun. A day without sunrise or
/// sunset has the typed window then.
///
/// While a site field is being typed in, the window stays as it is: half a number must not move it.
class DaySchedules {
  public:
    /// `module`, `panel` and `clock` outlive this object.
    DaySchedules(Module1& module, OperationPanel& panel, const Clock& clock, OffsetAt offsetAt)
        : module_(module), panel_(panel), clock_(clock), offsetAt_(std::move(offsetAt)) {}

    /// What the schedule of every day follows from.
    struct Rule {
        Schedule typed;
        bool followsSun = false;
        SiteValues site;
    };
    /// What is in force while recording is on, else what a start would take.
    Rule rule() const;
    /// The schedule of `day`, past or to come, as far as no ledger tells of another. `NextRecTime`
    /// means nothing.
    Schedule of(std::chrono::local_days day, const Rule& rule) const;
    Schedule of(std::chrono::local_days day) const { return of(day, rule()); }
    /// Whether a minute, as `minuteIndex` counts, is due by its own day's schedule.
    bool isDue(std::int64_t minute) const;

    /// Has today's schedule in force while the sun is followed, and shows its window on the panel.
    /// Cheap; to be called before anything of the day is judged.
    void follow();
    /// The same after the typed schedule has been taken into force.
    void begin();
    /// Grows when what a day has may have changed, but for the fields that are typed.
    std::int64_t revision() const { return revision_; }

  private:
    /// What is looked at for a change.
    struct Seen {
        std::int64_t minute = -1;
        bool followsSun = false;
        bool recording = false;
        SiteValues site;

        bool operator==(const Seen&) const = default;
    };

    const SiteValues& siteOf(std::chrono::local_days today) const;
    const std::optional<SunWindow>& windowOf(std::chrono::local_days day,
                                             const SiteValues& site) const;
    void followOffset(std::chrono::local_days today);
    void enforce(Schedule schedule, WallTime now);
    void show(std::chrono::local_days today);

    Module1& module_;
    OperationPanel& panel_;
    const Clock& clock_;
    OffsetAt offsetAt_;
    Seen seen_;
    std::chrono::local_days today_{};
    std::chrono::minutes offset_{}; ///< of today
    std::int64_t revision_ = 0;
    /// By day; each costs a fraction of a millisecond.
    mutable std::map<std::chrono::local_days, std::optional<SunWindow>> windows_;
    mutable SiteValues windowsSite_;
};

} // namespace orvane
