#include "tests/support/TestStation.h"

#include <benchmark/benchmark.h>

namespace {

using namespace orvane;
using namespace orvane::test;

/// Virtual days of the main loop. "captures" are those of a day.
void runDays(benchmark::State& state, TestStation& station) {
    station.start(true);
    for ([[maybe_unused]] auto _ : state)
        station.clock.run(24h);
    state.counters["captures"] = benchmark::Counter(static_cast<double>(station.http.requests),
                                                    benchmark::Counter::kAvgIterations);
}

/// With the default schedule: 16 captures.
void recordingDay(benchmark::State& state) {
    TestStation station(at(2006, 11, 15));
    runDays(state, station);
}
BENCHMARK(recordingDay)->Unit(benchmark::kMillisecond);

/// Every minute around the clock.
void everyMinuteDay(benchmark::State& state) {
    TestStation station(at(2006, 11, 15));
    station.setSchedule("0", "23", "1", "59");
    runDays(state, station);
}
BENCHMARK(everyMinuteDay)->Unit(benchmark::kMillisecond);

/// What 1,439 captures must do with files: full.jpg
/// written anew, the picture and its processed copy by write and rename, a line of the ledger.
void everyMinuteFiles(benchmark::State& state) {
    const TempFolder folder(TempFolder::inMemory());
    const auto full = folder.path() / "full.jpg";
    std::filesystem::create_directories(folder.path() / "day");
    std::filesystem::create_directories(folder.path() / "Edit");
    const std::string bytes = FakeHttp::picture("1").body;
    int names = 0;
    for ([[maybe_unused]] auto _ : state) {
        for (int capture = 0; capture < 1439; ++capture) {
            std::filesystem::remove(full);
            writeFile(full, bytes);
            const std::string name = std::to_string(++names);
            std::string read;
            if (writeToFinalName(bytes, folder.path() / "day" / name) ||
                readWholeFile(folder.path() / "day" / name, read) ||
                writeToFinalName(read, folder.path() / "Edit" / name) ||
                appendToFile("11:07,+09:00,taken,20061115_110700_00.jpg\r\n",
                             folder.path() / "ledger"))
                state.SkipWithError("the files cannot be written");
        }
    }
}
BENCHMARK(everyMinuteFiles)->Unit(benchmark::kMillisecond);

/// The default schedule with folders below the current one, which must lie on a disk for this to
/// mean anything; `forced` or not is what forcing its 16 pictures to the disk costs. In real time,
/// since a disk is waited for.
void recordingDayOnDisk(benchmark::State& state) {
    const auto force = state.range(0) != 0 ? FileWriter::Force::Yes : FileWriter::Force::No;
    TestStation station(at(2006, 11, 15), force, std::filesystem::current_path());
    runDays(state, station);
}
BENCHMARK(recordingDayOnDisk)
    ->ArgName("forced")
    ->Arg(0)
    ->Arg(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

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
