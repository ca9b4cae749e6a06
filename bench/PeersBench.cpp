#include "bench/SkyPicture.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Files.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <QProcess>

namespace orvane::bench {
namespace {

constexpr int kPictures = 20; ///< the start of a program is shared by as many

using Files = std::vector<std::filesystem::path>;

Files writePictures(const std::filesystem::path& folder, const std::string& jpeg) {
    Files files;
    std::filesystem::create_directory(folder);
    for (int i = 0; i < kPictures; ++i) {
        const std::string number = std::to_string(10 + i);
        files.push_back(folder / ("20250621_0930" + number + "_00.jpg"));
        if (writeToFinalName(jpeg, files.back())) return {};
    }
    return files;
}

/// Negative: it is not installed, or failed.
double runSeconds(const QString& program, const QStringList& arguments) {
    QProcess peer;
    const auto start = std::chrono::steady_clock::now();
    peer.start(program, arguments);
    const bool ended = peer.waitForFinished(120'000) && peer.exitStatus() == QProcess::NormalExit;
    return ended && peer.exitCode() == 0 ? secondsSince(start) : -1;
}

QStringList namesOf(const Files& files) {
    QStringList names;
    for (const auto& file : files)
        names.append(QString::fromStdString(file.string()));
    return names;
}

/// Mirrors, stamps and saves in place.
double imageMagickSeconds(const Files& files, int height) {
    const QString size = QString::number(height / 30);
    return runSeconds("mogrify", QStringList{"-flop", "-gravity", "SouthWest", "-pointsize", size,
                                             "-fill", "white", "-stroke", "black", "-annotate",
                                             "+16+16", "2025/06/21 09:30", "-quality", "76"} +
                                     namesOf(files));
}

/// Mirrors and saves, without a stamp; a program start for each picture.
double vipsSeconds(const Files& files) {
    double all = 0;
    for (const QString& name : namesOf(files)) {
        const double took = runSeconds("vips", {"flip", name, name + ".v.jpg[Q=76]", "horizontal"});
        if (took < 0) return took;
        all += took;
    }
    return all;
}

double ourSeconds(LibjpegImageControl& control, test::JumpingClock& clock, const Files& files) {
    const auto start = std::chrono::steady_clock::now();
    for (const auto& file : files) {
        Task<Fault> task =
            ProcessImageFile(control, file, {.Quality = 24, .LrFlg = -1, .DateFlg = -1}, true);
        task.start();
        clock.runUntil([&] { return task.done(); }, std::chrono::hours(1));
        if (task.result()) return -1;
    }
    return secondsSince(start);
}

/// Twenty pictures by `ProcessImageFile` and, taking turns with it, by ImageMagick and libvips. The
/// ratios are theirs over ours; 0: the program is not installed.
void processBesidePeers(benchmark::State& state) {
    const std::string& jpeg = cameraPicture(state);
    test::JumpingClock clock(test::at(2025, 6, 21, 9, 30));
    LibjpegImageControl control(clock);
    double ours = 0;
    double magick = 0;
    double vips = 0;
    for (auto _ : state) {
        const test::TempFolder folder;
        const Files files = writePictures(folder.path() / "20250621", jpeg);
        const double took = ourSeconds(control, clock, files);
        if (files.empty() || took < 0) state.SkipWithError("not processed");
        state.SetIterationTime(took / kPictures);
        ours += took;
        vips += vipsSeconds(files);
        magick += imageMagickSeconds(files, static_cast<int>(state.range(1)));
    }
    state.counters["imagemagick"] = std::max(magick / ours, 0.0);
    state.counters["libvips"] = std::max(vips / ours, 0.0);
}
BENCHMARK(processBesidePeers)
    ->ArgNames({"w", "h"})
    ->Args({1280, 960})
    ->Args({4000, 3000})
    ->UseManualTime()
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace orvane::bench
