#pragma once

#include "station/Faults.h"

namespace orvane {

/// Calls a handler at a fixed interval while it is enabled, without drift. A tick that fails goes
/// to `onFault`, and the next one comes. Timers of whole seconds tick at the same moments, so that
/// all of them wake the PC once; the first tick comes up to a second earlier for that.
class RepeatingTimer {
  public:
    RepeatingTimer(Clock& clock, Ticks interval, std::function<void()> tick, FaultHandler onFault)
        : clock_(clock), interval_(interval), tick_(std::move(tick)), onFault_(std::move(onFault)) {
    }

    bool enabled() const { return enabled_; }
    /// May not be called from the handler itself.
    void enable();
    /// May be called from the handler itself.
    void disable() { enabled_ = false; }

  private:
    Task<> run();

    Clock& clock_;
    Ticks interval_;
    std::function<void()> tick_;
    FaultHandler onFault_;
    bool enabled_ = false;
    Task<> task_;
};

} // namespace orvane
