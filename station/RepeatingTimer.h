#pragma once

#include "platform/Clock.h"

#include <functional>

namespace orvane {

/// Calls a handler at a fixed interval while it is enabled, without drift.
class RepeatingTimer {
  public:
    RepeatingTimer(Clock& clock, Ticks interval, std::function<void()> tick)
        : clock_(clock), interval_(interval), tick_(std::move(tick)) {}

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
    bool enabled_ = false;
    Task<> task_;
};

} // namespace orvane
