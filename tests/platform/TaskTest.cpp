#include "station/RepeatingTimer.h"
#include "station/TaskGroup.h"
#include "tests/support/Fakes.h"
#include "tests/support/JumpingClock.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace orvane::test {
namespace {

const WallTime kStart = at(2006, 11, 15);

Task<int> immediate(int value) {
    co_return value;
}

Task<int> later(Clock& clock, Ticks wait, int value) {
    co_await clock.sleep(wait);
    co_return value;
}

Task<int> sumOf(Clock& clock, int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        Task<int> next = i % 1000 == 0 ? later(clock, 10ms, 1) : immediate(1);
        sum += co_await next;
    }
    co_return sum;
}

Task<> failing(Clock& clock) {
    co_await clock.sleep(5ms);
    throw std::runtime_error("fault");
}

Task<> waitFor(Signal& signal, std::string& trace) {
    co_await signal;
    trace += "woken";
}

Task<> record(Clock& clock, std::string& trace, char name, Ticks wait) {
    co_await clock.sleep(wait);
    trace += name;
}

/// Sets a flag when its frame is destroyed.
struct Guard {
    explicit Guard(bool& gone) : gone_(gone) {}
    ~Guard() { gone_ = true; }
    bool& gone_;
};

Task<> guarded(Clock& clock, bool& gone) {
    const Guard guard(gone);
    co_await clock.sleep(1h);
}

Task<> outer(Clock& clock, bool& gone) {
    Task<> inner = guarded(clock, gone);
    co_await inner;
}

Task<int> startedEarlier(Clock& clock, Ticks wait) {
    Task<int> waited = later(clock, 10ms, 7);
    waited.start();
    co_await clock.sleep(wait);
    const int value = co_await waited;
    co_return value;
}

/// While it still waits, and when it is done already.
TEST(Task, AStartedOneCanBeAwaited) {
    for (const Ticks wait : {Ticks(1ms), Ticks(1s)}) {
        JumpingClock clock(kStart);
        Task<int> task = startedEarlier(clock, wait);
        task.start();
        clock.run(2s);
        ASSERT_TRUE(task.done());
        EXPECT_EQ(task.result(), 7);
    }
}

TEST(Task, ManyTasksThatEndAtOnceDoNotGrowTheStack) {
    JumpingClock clock(kStart);
    Task<int> task = sumOf(clock, 300'000);
    task.start();
    clock.run(10s);
    ASSERT_TRUE(task.done());
    EXPECT_EQ(task.result(), 300'000);
}

TEST(Task, DestroyingTheOwnerTakesTheWakeUpAlong) {
    JumpingClock clock(kStart);
    bool gone = false;
    {
        Task<> task = outer(clock, gone);
        task.start();
        EXPECT_EQ(clock.pending(), 1U);
    }
    EXPECT_TRUE(gone);
    EXPECT_EQ(clock.pending(), 0U);
    clock.run(2h);
}

TEST(Task, WakesInTheOrderOfDeadlinesAndOfComing) {
    JumpingClock clock(kStart);
    std::string trace;
    TaskGroup tasks(noFault);
    tasks.spawn(record(clock, trace, 'c', 30ms));
    tasks.spawn(record(clock, trace, 'a', 10ms));
    tasks.spawn(record(clock, trace, 'b', 10ms));
    clock.run(20ms);
    EXPECT_EQ(trace, "ab");
    clock.run(10ms);
    EXPECT_EQ(trace, "abc");
    EXPECT_EQ(tasks.running(), 0U);
}

TEST(Task, AGroupReportsAFaultOnceAndGoesOn) {
    JumpingClock clock(kStart);
    std::string faults;
    TaskGroup tasks([&](const std::exception_ptr& fault) { faults += textOf(fault); });
    tasks.spawn(failing(clock));
    clock.run(10ms);
    EXPECT_EQ(faults, "fault");
    EXPECT_EQ(tasks.running(), 0U);
}

TEST(Signal, WakesFromTheClockAndRemembersAnEarlyFire) {
    JumpingClock clock(kStart);
    std::string trace;
    Signal signal(clock);
    Task<> waiting = waitFor(signal, trace);
    waiting.start();
    signal.fire();
    EXPECT_EQ(trace, ""); // never from inside the caller
    clock.run(0ms);
    EXPECT_EQ(trace, "woken");
    Task<> late = waitFor(signal, trace);
    late.start();
    EXPECT_EQ(trace, "wokenwoken");

    Signal unfired(clock);
    Task<> dropped = waitFor(unfired, trace);
    dropped.start();
    dropped.reset();
    unfired.fire();
    clock.run(1s);
    EXPECT_EQ(trace, "wokenwoken");
}

TEST(RepeatingTimer, TicksWithoutDriftUntilDisabled) {
    JumpingClock clock(kStart);
    int ticks = 0;
    const auto tick = [&](RepeatingTimer& timer) {
        if (++ticks == 5) timer.disable();
    };
    RepeatingTimer timer(
        clock, 1000ms, [&] { tick(timer); }, noFault);
    timer.enable();
    timer.enable(); // once is enough
    clock.run(3999ms);
    EXPECT_EQ(ticks, 3);
    clock.run(10s);
    EXPECT_EQ(ticks, 5);
    timer.enable();
    timer.disable();
    timer.enable();
    clock.run(2s);
    EXPECT_EQ(ticks, 7);
}

TEST(RepeatingTimer, ATickThatFailsIsReportedAndTheNextOneComes) {
    JumpingClock clock(kStart);
    int ticks = 0;
    std::string faults;
    RepeatingTimer timer(
        clock, 1000ms,
        [&] {
            if (++ticks < 3) throw std::runtime_error("tick " + std::to_string(ticks));
        },
        [&](const std::exception_ptr& fault) { faults += textOf(fault) + " "; });
    timer.enable();
    clock.run(4s);
    EXPECT_EQ(ticks, 4);
    EXPECT_EQ(faults, "tick 1 tick 2 ");
}

TEST(Signal, ASecondOneThatWaitsIsRefused) {
    JumpingClock clock(kStart);
    std::string trace;
    Signal signal(clock);
    Task<> first = waitFor(signal, trace);
    first.start();
    Task<> second = waitFor(signal, trace);
    EXPECT_DEBUG_DEATH(second.start(), "waiting_ == nullptr");
}

} // namespace
} // namespace orvane::test
