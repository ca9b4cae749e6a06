#include "imaging/SunTimes.h"

#include <benchmark/benchmark.h>

namespace orvane {
namespace {

/// A whole day's table and its scan; 1,440 elevations.
void sunTimes(benchmark::State& state) {
    const std::chrono::year_month_day date{std::chrono::year(2025), std::chrono::June,
                                           std::chrono::day(21)};
    const SiteValues site;
    SunTimes times;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ComputeSunriseSunset(site, date, times));
        benchmark::DoNotOptimize(times);
    }
}
BENCHMARK(sunTimes)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace orvane
