#pragma once

#include "platform/Task.h"

#include <cassert>
#include <chrono>
#include <coroutine>
#include <cstdint>
#include <vector>

namespace orvane {

using namespace std::chrono_literals;

/// The PC's local wall-clock time. It decides what is due and what a file is called; it may jump.
using WallTime = std::chrono::local_time<std::chrono::milliseconds>;
/// Time since an arbitrary start; never jumps. It decides every time-out.
using Ticks = std::chrono::milliseconds;

/// Pending wake-ups in the order of their deadlines, first come first served among equals.
class WakeQueue {
  public:
    bool empty() const { return entries_.empty(); }
    std::size_t size() const { return entries_.size(); }
    Ticks earliest() const { return entries_.back().deadline; }
    /// How many have a deadline up to `time`.
    std::size_t dueCount(Ticks time) const;
    void add(Wake& wake, Ticks deadline);
    void remove(const Wake& wake) noexcept;
    Wake& takeEarliest();

  private:
    struct Entry {
        Ticks deadline;
        Wake* wake;
    };
    std::vector<Entry> entries_; ///< latest first, so that the earliest leaves from the end
};

/// Wall time, monotonic time and every wait of the program. Coroutines resume from the clock's
/// own dispatch only, never from inside the caller that woke them.
class Clock : public WakeSource {
  public:
    class Sleep {
      public:
        Sleep(Clock& clock, Ticks deadline) : clock_(clock), deadline_(deadline) {}
        bool await_ready() const noexcept { return false; }
        template <class Promise>
        void await_suspend(std::coroutine_handle<Promise> waiting) {
            waiting.promise().wake.hold(clock_, waiting);
            clock_.wakeAt(waiting.promise().wake, deadline_);
        }
        void await_resume() const noexcept {}

      private:
        Clock& clock_;
        Ticks deadline_;
    };

    virtual WallTime now() const = 0;
    virtual Ticks ticks() const = 0;
    /// Has `wake` fired when `deadline` is reached, at the next turn of the event loop if it
    /// already is.
    virtual void wakeAt(Wake& wake, Ticks deadline) = 0;

    Sleep sleep(Ticks duration) { return {*this, ticks() + duration}; }
    Sleep sleepUntil(Ticks deadline) { return {*this, deadline}; }
    /// Lets everything else that is due run first.
    Sleep yield() { return {*this, ticks()}; }

  protected:
    ~Clock() = default;
};

/// A one-shot event that one coroutine can wait for: `co_await signal`. Firing it before the wait
/// is remembered. A second one that waits is a programmer's mistake: one of them would never wake.
class Signal final : public WakeSource {
  public:
    explicit Signal(Clock& clock) : clock_(clock) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() {
        if (waiting_ != nullptr) waiting_->release();
    }

    void fire() {
        fired_ = true;
        if (waiting_ == nullptr) return;
        Wake& wake = *std::exchange(waiting_, nullptr);
        wake.moveTo(clock_);
        clock_.wakeAt(wake, clock_.ticks());
    }
    bool fired() const { return fired_; }
    void forget(Wake&) noexcept override { waiting_ = nullptr; }

    bool await_ready() const noexcept { return fired_; }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> waiting) {
        assert(waiting_ == nullptr);
        waiting_ = &waiting.promise().wake;
        waiting_->hold(*this, waiting);
    }
    void await_resume() const noexcept {}

  private:
    Clock& clock_;
    Wake* waiting_ = nullptr;
    bool fired_ = false;
};

} // namespace orvane
