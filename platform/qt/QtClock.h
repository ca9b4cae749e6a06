#pragma once

#include "platform/Clock.h"

#include <QTimer>

namespace orvane {

/// The PC's clock, dispatched from the Qt event loop by one timer.
class QtClock final : public Clock {
  public:
    QtClock();

    WallTime now() const override;
    /// Of the local time from universal time, now.
    std::chrono::minutes utcOffset() const;
    /// At a moment of the past or the future, as far as the system knows the rules of its zone.
    static std::chrono::minutes utcOffsetAt(std::chrono::sys_seconds moment);
    Ticks ticks() const override;
    void wakeAt(Wake& wake, Ticks deadline) override;
    void forget(Wake& wake) noexcept override { queue_.remove(wake); }

  private:
    void arm();
    void dispatch();

    QTimer timer_;
    WakeQueue queue_;
    Ticks armed_{0};                         ///< when the timer fires, while it is active
    mutable std::chrono::seconds offset_{0}; ///< of the local time
    mutable std::int64_t offsetSpan_ = 0;    ///< the ten seconds in which that was asked for
};

} // namespace orvane
