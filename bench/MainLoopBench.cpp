#include "tests/support/TestStation.h"

#include <benchmark/benchmark.h>

namespace {

using namespace orvane;
using namespace orvane::test;

/// One virtual day of the main loop with the default schedule: 16 captures.
void recordingDay(benchmark::State& state) {
    TestStation station(at(2006, 11, 15));
    station.start(true);
    for ([[maybe_unused]] auto _ : state)
        station.clock.run(24h);
    state.counters["captures"] = benchmark::Counter(static_cast<double>(station.http.requests),
                                                    benchmark::Counter::kAvgIterations);
}
BENCHMARK(recordingDay)->Unit(benchmark::kMillisecond);

/// The floor: a loop that only sleeps 100 ms, for a day.
Task<> bareLoop(Clock& clock) {
    while (true)
        co_await clock.sleep(100ms);
}
void bareDay(benchmark::State& state) {
    JumpingClock clock(at(2006, 11, 15));
    Task<> loop = bareLoop(clock);
    loop.start();
    for ([[maybe_unused]] auto _ : state)
        clock.run(24h);
}
BENCHMARK(bareDay)->Unit(benchmark::kMillisecond);

} // namespace
