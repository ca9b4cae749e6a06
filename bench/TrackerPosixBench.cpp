#include "platform/SerialPort.h"
#include "platform/qt/QtClock.h"
#include "simulators/sun-tracker/SunTracker.h"
#include "station/RepeatingTimer.h"
#include "tests/support/Fakes.h"
#include "tracker/TrackerOptions.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

namespace {

using namespace orvane;
using namespace orvane::test;

/// Bytes of all three readings, both ways, on the line: request, acknowledgement, reply of 16, 18
/// and 8 data bytes, acknowledgement.
constexpr double kBytesOnTheLine = 3 * (6 + 1 + 5 + 1) + 16 + 18 + 8;
constexpr double kLineTime = kBytesOnTheLine * 10 / 38400 * 1000; // ms, ten bits a byte

Task<> readAndQuit(TrackerOptions& options) {
    Task<> reading = options.activate();
    co_await reading;
    QCoreApplication::quit();
}

/// Reading all options from a tracker that answers at once, over a pseudo-terminal.
void readAllOptions(benchmark::State& state) {
    suntracker::SunTracker simulator{suntracker::SunTrackerOptions{}};
    if (!simulator.start()) {
        state.SkipWithError("no pseudo-terminal");
        return;
    }
    QtClock clock;
    Module1 module;
    FakeStore store;
    ErrorLog log{"/nonexistent", clock};
    FakeOperator op{clock};
    Busy busy;
    const auto port = makeSerialPort([&](int) { return simulator.portPath().toStdString(); });
    FrameLink link{*port, store, log, clock, module};
    TrackerCommands commands{link};
    OptionForm form;
    TrackerOptions options{form, module, commands, log, op, busy, [] {}};
    RepeatingTimer timer{clock, 1000ms, [&] { ++module.replyTicks; }, noFault};
    timer.enable();
    for ([[maybe_unused]] auto _ : state) {
        Task<> reading = readAndQuit(options);
        reading.start();
        QCoreApplication::exec();
    }
    if (form.status.caption.get() != "Read from the tracker.") state.SkipWithError("not read");
    state.counters["line_ms"] = kLineTime;
    state.counters["limit_ms"] = 3 * kLineTime + 100;
}
BENCHMARK(readAllOptions)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
