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
    mutable std::chrono::seconds offset_{0};          ///< of the local time
    mutable std::chrono::sys_seconds offsetSecond_{}; ///< when that was asked for
};

} // namespace orvane
