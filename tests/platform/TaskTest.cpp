#include "station/RepeatingTimer.h"
#include "station/TaskGroup.h"
#include "tests/support/Fakes.h"
#include "tests/support/JumpingClock.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

Task<> addTo(int& sum) {
    ++sum;
    co_return;
}

Task<> addMany(Clock& clock, int& sum, int count) {
    co_await clock.yield();
    for (int i = 0; i < count; ++i) {
        Task<> next = addTo(sum);
        co_await next;
    }
}

Task<> waitFor(Signal& signal, std::string& trace) {
    co_await signal;
    trace += "woken ";
}

Task<> record(Clock& clock, std::string& trace, const char* name, Ticks wait) {
    co_await clock.sleep(wait);
    trace += name;
}

struct Tasks : testing::Test {
    JumpingClock clock{at(2006, 11, 15)};
    std::string trace;
};

TEST_F(Tasks, ManyThatEndAtOnceDoNotGrowTheStack) {
    int sum = 0;
    Task<> task = addMany(clock, sum, 300'000);
    task.start();
    clock.run(0ms);
    EXPECT_EQ(sum, 300'000);
}

TEST_F(Tasks, WakeInTheOrderOfDeadlinesAndOfComing) {
    TaskGroup tasks(noFault);
    tasks.spawn(record(clock, trace, "c", 30ms));
    tasks.spawn(record(clock, trace, "a", 10ms));
    tasks.spawn(record(clock, trace, "b", 10ms));
    clock.run(20ms);
    EXPECT_EQ(trace, "ab");
    clock.run(10ms);
    EXPECT_EQ(trace, "abc");
    EXPECT_EQ(tasks.running(), 0U);
}

TEST_F(Tasks, ASignalWakesFromTheClockAndRemembersAnEarlyFire) {
    Signal signal(clock);
    Task<> waiting = waitFor(signal, trace);
    waiting.start();
    signal.fire();
    EXPECT_EQ(trace, ""); // never from inside the caller
    clock.run(0ms);
    EXPECT_EQ(trace, "woken ");
    Task<> late = waitFor(signal, trace);
    late.start();
    EXPECT_EQ(trace, "woken woken ");

    Signal taken(clock);
    Task<> first = waitFor(taken, trace);
    first.start();
    EXPECT_DEBUG_DEATH(waitFor(taken, trace).start(), "waiting_ == nullptr");
}

/// The third tick fails; the fifth disables the timer.
TEST_F(Tasks, ATimerTicksWithoutDriftUntilDisabled) {
    int ticks = 0;
    RepeatingTimer* itself = nullptr;
    const auto tick = [&] {
        if (++ticks == 5) itself->disable();
        if (ticks == 3) throw std::runtime_error("third");
    };
    RepeatingTimer timer(clock, 1000ms, tick,
                         [this](const std::exception_ptr& fault) { trace += textOf(fault); });
    itself = &timer;
    timer.enable();
    clock.run(500ms);
    timer.enable(); // it is already, and goes on
    clock.run(2600ms);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(trace, "third");
    clock.run(10s);
    EXPECT_EQ(ticks, 5);
    timer.enable();
    timer.disable();
    timer.enable();
    clock.run(2s);
    EXPECT_EQ(ticks, 7);
}

} // namespace
} // namespace orvane::test
