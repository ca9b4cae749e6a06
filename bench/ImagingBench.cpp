#include "archive/Keograms.h"
#include "bench/SkyPicture.h"
#include "imaging/JpegMarkers.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Files.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace orvane {
namespace {

using namespace bench;

constexpr int kQuality = 76; ///< compression factor 24

bool process(LibjpegImageControl& control, test::JumpingClock& clock,
             const std::filesystem::path& image, const ImageOptions& options) {
    Task<Fault> task = ProcessImageFile(control, image, options, true);
    task.start();
    clock.runUntil([&] { return task.done(); }, std::chrono::hours(1));
    return !task.result();
}

/// `ProcessImageFile` (read, decode, mirror, stamp, encode, write) and, taking turns with it in the
/// same loop, a bare decode and encode in memory with the same settings. "ratio" is the one over
/// the other; the time shown is that of `ProcessImageFile` alone. As in the station each copy is a
/// new file: some file systems force out the data of a file that takes the place of another.
void processImageFile(benchmark::State& state) {
    const test::TempFolder folder;
    const auto image = folder.path() / "20250621" / "20250621_093000_00.jpg";
    std::filesystem::create_directory(image.parent_path());
    const std::string& jpeg = cameraPicture(state);
    if (writeToFinalName(jpeg, image)) state.SkipWithError("no space for the test picture");
    test::JumpingClock clock(test::at(2025, 6, 21, 9, 30));
    LibjpegImageControl control(clock);
    const auto format = static_cast<std::int16_t>(state.range(2));
    const ImageOptions options{
        .Quality = 100 - kQuality, .LrFlg = -1, .DateFlg = -1, .JpegTyp = format};

    double processing = 0;
    double floor = 0;
    for (auto _ : state) {
        std::filesystem::remove(editPathOf(image));
        auto start = std::chrono::steady_clock::now();
        if (!process(control, clock, image, options)) state.SkipWithError("processing failed");
        const double seconds = secondsSince(start);
        state.SetIterationTime(seconds);
        processing += seconds;
        start = std::chrono::steady_clock::now();
        Rgb picture;
        decode(jpeg, picture);
        benchmark::DoNotOptimize(encode(picture, kQuality, format == 10 ? 2 : 1));
        floor += secondsSince(start);
    }
    state.counters["ratio"] = processing / floor;
    state.counters["floor_ms"] = 1000 * floor / static_cast<double>(state.iterations());
}
BENCHMARK(processImageFile)
    ->ArgNames({"w", "h", "format"})
    ->Args({1280, 960, 10})
    ->Args({1280, 960, 98})
    ->Args({4000, 3000, 10})
    ->Args({4000, 3000, 98})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// The longest time between two yields, in which the window stands still.
void longestSlice(benchmark::State& state) {
    const test::TempFolder folder;
    const auto image = folder.path() / "20250621" / "20250621_093000_00.jpg";
    std::filesystem::create_directory(image.parent_path());
    if (writeToFinalName(cameraPicture(state), image)) state.SkipWithError("no space");
    test::JumpingClock clock(test::at(2025, 6, 21, 9, 30));
    LibjpegImageControl control(clock);
    double longest = 0;
    for (auto _ : state) {
        Task<Fault> task = ProcessImageFile(control, image, {.LrFlg = -1, .DateFlg = -1}, true);
        auto start = std::chrono::steady_clock::now();
        task.start();
        const auto sliceEnded = [&] {
            longest = std::max(longest, secondsSince(start));
            start = std::chrono::steady_clock::now();
            return task.done();
        };
        clock.runUntil(sliceEnded, std::chrono::hours(1));
    }
    state.counters["longest_ms"] = 1000 * longest;
}
BENCHMARK(longestSlice)
    ->ArgNames({"w", "h"})
    ->Args({1280, 960})
    ->Args({4000, 3000})
    ->Unit(benchmark::kMillisecond);

/// The soundness check and, taking turns with it in the same loop, the full decoding of the same
/// bytes. "ratio" is the one over the other; the time shown is that of the check alone.
void soundnessCheck(benchmark::State& state) {
    const std::string& jpeg = cameraPicture(state);
    test::JumpingClock clock(test::at(2025, 6, 21, 9, 30));
    LibjpegImageControl control(clock);
    const auto seconds = [&](Task<Fault> task) {
        const auto start = std::chrono::steady_clock::now();
        task.start();
        clock.runUntil([&] { return task.done(); }, std::chrono::hours(1));
        if (task.result()) state.SkipWithError("the picture is refused");
        return secondsSince(start);
    };
    double checking = 0;
    double decoding = 0;
    for (auto _ : state) {
        const double taken = seconds(control.check(jpeg));
        state.SetIterationTime(taken);
        checking += taken;
        decoding += seconds(control.decode(jpeg));
    }
    state.counters["ratio"] = checking / decoding;
    state.counters["decode_ms"] = 1000 * decoding / static_cast<double>(state.iterations());
}
BENCHMARK(soundnessCheck)
    ->ArgNames({"w", "h"})
    ->Args({1280, 960})
    ->Args({4000, 3000})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// The keogram of a day with a picture every minute and, taking turns with it hour by hour, reading
/// the same files and decoding them in the same part of their size. "ratio" is the one over the
/// other; the time shown is that of the keogram alone.
void keogram(benchmark::State& state) {
    const test::TempFolder folder;
    const auto picture = folder.path() / "picture.jpg";
    if (writeToFinalName(cameraPicture(state), picture)) state.SkipWithError("no space");
    const std::filesystem::path day = folder.path() / "20250621";
    std::filesystem::create_directory(day);
    std::vector<FiledPicture> pictures;
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        const ImageName name =
            ImageName::ofCapture(test::at(2025, 6, 21) + std::chrono::minutes(minute));
        pictures.push_back({name, day / name.text()});
        std::filesystem::create_hard_link(picture, pictures.back().file);
    }
    test::JumpingClock clock(test::at(2025, 6, 22));
    LibjpegImageControl control(clock);
    const Module1 module;
    const Busy busy;
    double reading = 0;
    double floor = 0;
    for (auto _ : state) {
        Keograms keograms({control, module, busy, clock});
        double seconds = 0;
        for (auto hour = pictures.begin(); hour != pictures.end(); hour += 60) {
            auto start = std::chrono::steady_clock::now();
            Task<> task = keograms.read({hour, hour + 60});
            task.start();
            clock.runUntil([&] { return task.done(); }, std::chrono::hours(1));
            seconds += secondsSince(start);
            start = std::chrono::steady_clock::now();
            for (auto each = hour; each != hour + 60; ++each) {
                std::string jpeg;
                if (readWholeFile(each->file, jpeg)) state.SkipWithError("not read");
                Rgb reduced;
                decode(jpeg, reduced, 2);
                benchmark::DoNotOptimize(reduced.bytes.data());
            }
            floor += secondsSince(start);
        }
        auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(keograms.draw(pictures[0].name.day(), pictures, {}).data.data());
        state.counters["draw_ms"] = 1000 * secondsSince(start);
        state.SetIterationTime(seconds);
        reading += seconds;
    }
    state.counters["ratio"] = reading / floor;
    state.counters["floor_ms"] = 1000 * floor / static_cast<double>(state.iterations());
}
BENCHMARK(keogram)
    ->ArgNames({"w", "h"})
    ->Args({1280, 960})
    ->UseManualTime()
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

void wholeJpegCheck(benchmark::State& state) {
    const std::string& jpeg = cameraPicture(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(isWholeJpeg(jpeg));
    state.SetBytesProcessed(static_cast<std::int64_t>(jpeg.size()) * state.iterations());
}
BENCHMARK(wholeJpegCheck)->Args({4000, 3000})->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace orvane
