#pragma once

#include "platform/Clock.h"
#include "platform/Fault.h"

#include <stdexcept>

namespace orvane::test {

/// A clock that jumps from deadline to deadline: a day passes as fast as its work is done. Both
/// times start at a given wall time; `jumpWall` moves the wall time alone, as a user who sets the
/// PC's clock does.
class JumpingClock final : public Clock {
  public:
    explicit JumpingClock(WallTime start) : offset_(start.time_since_epoch()) {}
    ~JumpingClock() = default;

    WallTime now() const override { return WallTime(offset_ + ticks_); }
    Ticks ticks() const override { return ticks_; }
    void wakeAt(Wake& wake, Ticks deadline) override { queue_.add(wake, deadline); }
    void forget(Wake& wake) noexcept override { queue_.remove(wake); }

    void jumpWall(std::chrono::milliseconds by) { offset_ += by; }
    /// Pending wake-ups, to see that nothing is left behind.
    std::size_t pending() const { return queue_.size(); }

    /// Runs everything that is due up to `duration` from now, and ends there.
    void run(std::chrono::milliseconds duration) {
        const Ticks end = ticks_ + duration;
        while (!queue_.empty() && queue_.earliest() <= end)
            step();
        ticks_ = end;
    }
    void runUntil(WallTime wall) { run(wall - now()); }
    /// Runs until `condition` holds or `limit` has passed; tells whether it holds.
    template <class Condition>
    bool runUntil(Condition condition, std::chrono::milliseconds limit) {
        const Ticks end = ticks_ + limit;
        while (!condition()) {
            if (queue_.empty() || queue_.earliest() > end) return false;
            step();
        }
        return true;
    }

  private:
    void step() {
        ticks_ = std::max(ticks_, queue_.earliest());
        queue_.takeEarliest().fire();
    }

    std::chrono::milliseconds offset_;
    Ticks ticks_{0};
    WakeQueue queue_;
};

/// The result of a task that is not started yet, and must end within `limit`.
template <class T>
T finish(JumpingClock& clock, Task<T> task, Ticks limit = 1h) {
    task.start();
    if (!clock.runUntil([&] { return task.done(); }, limit))
        throw std::runtime_error("a task does not end");
    return task.result();
}

/// Starts what `make` makes again and again and destroys it, one wait later each time, until it
/// ends, which must be without a fault; answers at how many waits.
template <class Make>
int destroyAtEveryWait(JumpingClock& clock, Make make) {
    for (int waits = 1;; ++waits) {
        Task<Fault> task = make();
        task.start();
        int left = waits;
        clock.runUntil([&] { return task.done() || --left == 0; }, 1h);
        if (task.done() && task.result()) throw std::runtime_error(*task.result());
        if (task.done()) return waits;
        task.reset();
        if (clock.pending() != 0) throw std::runtime_error("a wake-up is left behind");
    }
}

/// Wall time from its parts.
inline WallTime at(int year, unsigned month, unsigned day, int hour = 0, int minute = 0,
                   int second = 0) {
    using namespace std::chrono;
    const auto date = std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day);
    return WallTime(local_days(date)) + hours(hour) + minutes(minute) + seconds(second);
}

} // namespace orvane::test
