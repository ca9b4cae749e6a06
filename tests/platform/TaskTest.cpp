#include "station/RepeatingTimer.h"
#include "station/Scope.h"
#include "station/TaskGroup.h"
#include "tests/support/Fakes.h"
#include "tests/support/JumpingClock.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace orvane::test {
namespace {

Task<int> later(Clock& clock, Ticks wait, int value) {
    if (wait > 0ms) co_await clock.sleep(wait);
    co_return value;
}

Task<int> sumOf(Clock& clock, int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i) {
        Task<int> next = later(clock, i % 1000 == 0 ? 10ms : 0ms, 1);
        sum += co_await next;
    }
    co_return sum;
}

Task<int> startedEarlier(Clock& clock, Ticks wait) {
    Task<int> waited = later(clock, 10ms, 7);
    waited.start();
    co_await clock.sleep(wait);
    const int value = co_await waited;
    co_return value;
}

Task<> failing(Clock& clock) {
    co_await clock.sleep(5ms);
    throw std::runtime_error("fault");
}

Task<> waitFor(Signal& signal, std::string& trace) {
    co_await signal;
    trace += "woken";
}

/// The name when the wait is over, "~" when the frame is destroyed.
Task<> record(Clock& clock, std::string& trace, char name, Ticks wait) {
    const Scope held([&trace](bool on) { trace += on ? "" : "~"; });
    co_await clock.sleep(wait);
    trace += name;
}

Task<> outer(Clock& clock, std::string& trace) {
    Task<> inner = record(clock, trace, 'i', 1h);
    co_await inner;
}

struct Tasks : testing::Test {
    JumpingClock clock{at(2006, 11, 15)};
    std::string trace;
    std::string faults;
    std::function<void(const std::exception_ptr&)> note = [this](const std::exception_ptr& fault) {
        faults += textOf(fault) + " ";
    };
};

/// While it still waits, and when it is done already.
TEST_F(Tasks, AStartedOneCanBeAwaited) {
    for (const Ticks wait : {Ticks(1ms), Ticks(1s)}) {
        Task<int> task = startedEarlier(clock, wait);
        task.start();
        clock.run(2s);
        ASSERT_TRUE(task.done());
        EXPECT_EQ(task.result(), 7);
    }
}

TEST_F(Tasks, ManyThatEndAtOnceDoNotGrowTheStack) {
    Task<int> task = sumOf(clock, 300'000);
    task.start();
    clock.run(10s);
    ASSERT_TRUE(task.done());
    EXPECT_EQ(task.result(), 300'000);
}

TEST_F(Tasks, DestroyingTheOwnerTakesTheWakeUpAlong) {
    Task<> task = outer(clock, trace);
    task.start();
    EXPECT_EQ(clock.pending(), 1U);
    task.reset();
    EXPECT_EQ(trace, "~");
    EXPECT_EQ(clock.pending(), 0U);
    clock.run(2h);
    EXPECT_EQ(trace, "~");
}

TEST_F(Tasks, WakeInTheOrderOfDeadlinesAndOfComing) {
    TaskGroup tasks(noFault);
    tasks.spawn(record(clock, trace, 'c', 30ms));
    tasks.spawn(record(clock, trace, 'a', 10ms));
    tasks.spawn(record(clock, trace, 'b', 10ms));
    clock.run(20ms);
    EXPECT_EQ(trace, "a~b~");
    clock.run(10ms);
    EXPECT_EQ(trace, "a~b~c~");
    EXPECT_EQ(tasks.running(), 0U);
}

TEST_F(Tasks, AGroupReportsAFaultOnceAndGoesOn) {
    TaskGroup tasks(note);
    tasks.spawn(failing(clock));
    tasks.spawn(record(clock, trace, 'a', 10ms));
    clock.run(10ms);
    EXPECT_EQ(faults, "fault ");
    EXPECT_EQ(trace, "a~");
    EXPECT_EQ(tasks.running(), 0U);
}

TEST_F(Tasks, ASignalWakesFromTheClockAndRemembersAnEarlyFire) {
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

    Signal taken(clock);
    Task<> first = waitFor(taken, trace);
    first.start();
    Task<> second = waitFor(taken, trace);
    EXPECT_DEBUG_DEATH(second.start(), "waiting_ == nullptr");
}

TEST_F(Tasks, ATimerTicksWithoutDriftUntilDisabled) {
    int ticks = 0;
    const auto tick = [&](RepeatingTimer& timer) {
        if (++ticks == 5) timer.disable();
    };
    RepeatingTimer timer(
        clock, 1000ms, [&] { tick(timer); }, noFault);
    timer.enable();
    clock.run(500ms);
    timer.enable(); // it is already, and goes on
    clock.run(3499ms);
    EXPECT_EQ(ticks, 3);
    clock.run(10s);
    EXPECT_EQ(ticks, 5);
    timer.enable();
    timer.disable();
    timer.enable();
    clock.run(2s);
    EXPECT_EQ(ticks, 7);
}

TEST_F(Tasks, ATickThatFailsIsReportedAndTheNextOneComes) {
    int ticks = 0;
    const auto tick = [&ticks] {
        if (++ticks < 3) throw std::runtime_error("tick " + std::to_string(ticks));
    };
    RepeatingTimer timer(clock, 1000ms, tick, note);
    timer.enable();
    clock.run(4s);
    EXPECT_EQ(ticks, 4);
    EXPECT_EQ(faults, "tick 1 tick 2 ");
}

} // namespace
} // namespace orvane::test
