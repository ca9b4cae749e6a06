#pragma once

#include "station/Faults.h"

namespace orvane {

/// Calls a handler at a fixed interval while it is enabled, without drift. A tick that fails goes
/// to `onFault`, and the next one comes.
class RepeatingTimer {
  public:
    RepeatingTimer(Clock& clock, Ticks interval, std::function<void()> tick, FaultHandler onFault)
        : clock_(clock), interval_(interval), tick_(std::move(tick)), onFault_(std::move(onFault)) {
    }

    bool enabled() const { return enabled_; }
    /// May not be called from the handler itself.
    void enable() { enableAt(clock_.ticks() + interval_); }
    /// With its ticks at the same moments as those of `other`, which is enabled and has the same
    /// interval: the two wake the PC only once.
    void enableInStepWith(const RepeatingTimer& other) { enableAt(other.due_); }
    /// May be called from the handler itself.
    void disable() { enabled_ = false; }

  private:
    void enableAt(Ticks due);
    Task<> run();

    Clock& clock_;
    Ticks interval_;
    std::function<void()> tick_;
    FaultHandler onFault_;
    Ticks due_{0}; ///< the next tick
    bool enabled_ = false;
    Task<> task_;
};

} // namespace orvane
