#include "platform/SerialPort.h"
#include "platform/qt/QtClock.h"
#include "simulators/sun-tracker/SunTracker.h"
#include "tests/support/Fakes.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"
#include "tracker/TimeSetting.h"
#include "tracker/TrackerOptions.h"

#include <QTest>

namespace orvane::test {
namespace {

/// The station's whole link against the simulated tracker, over a pseudo-terminal. The clock timer
/// ticks fast here, so that time-outs take some 30 ms instead of three seconds. However long the
/// system lets the tests wait, it ticks once: the tracker waits with it.
struct TrackerLink : testing::Test {
    TrackerLink() {
        EXPECT_TRUE(simulator.start()) << simulator.errorString().toStdString();
        ticking.start();
        op.patience = 0ms;
    }
    static Task<> tick(Clock& clock, Module1& module) {
        for (;; ++module.replyTicks)
            co_await clock.sleep(10ms);
    }
    std::optional<std::string> setClock() { return finish(timeSetting.setTrackerClock(false)); }
    std::string logged() const { return contentsOf(folder.path() / "ERROR.LOG"); }

    TempFolder folder;
    suntracker::SunTracker simulator{suntracker::SunTrackerOptions{}};
    QtClock clock;
    Module1 module;
    FakeStore store;
    ErrorLog log{folder.path(), clock};
    FakeOperator op{clock};
    FakeHttp browser{clock};
    Busy busy;
    OperationPanel panel;
    std::function<std::string(int)> device = [this](int) {
        return simulator.portPath().toStdString();
    };
    std::unique_ptr<SerialPort> port = makeSerialPort(device);
    FrameLink link{*port, store, log, clock, module};
    TrackerCommands commands{link};
    TimeSettingForm timeForm;
    TimeSetting timeSetting{timeForm, panel, commands, browser, log, op, clock, busy};
    OptionForm optionForm;
    TrackerOptions options{optionForm, module, commands, log, op, busy, [] {}};
    Task<> ticking = tick(clock, module);
};

TEST_F(TrackerLink, SetsTheClockAndReadsAndWritesAllOptions) {
    EXPECT_EQ(setClock(), std::nullopt);
    finish(options.activate());
    EXPECT_EQ(optionForm.txt_tz.text.get(), std::to_string(simulator.values().timeZone));
    EXPECT_NEAR(module.site.longitude, simulator.values().longitude, 1e-12);
    finish(options.Command1_Click());
    EXPECT_EQ(logged(), "");
    EXPECT_EQ(simulator.counts().commands, 9);
    EXPECT_EQ(simulator.counts().badFrames, 0);
    EXPECT_EQ(simulator.counts().naks, 0);
}

TEST_F(TrackerLink, AnUnpluggedAdapterIsToldAndComesBack) {
    ASSERT_TRUE(simulator.setFault(QString("hangup:100"), 1));
    EXPECT_NE(setClock(), std::nullopt);
    EXPECT_FALSE(port->isOpen());
    EXPECT_NE(logged(), "");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !simulator.portPath().isEmpty(); }, 3000));
    EXPECT_EQ(setClock(), std::nullopt);
}

TEST_F(TrackerLink, APortHeldByAnotherProgramIsTold) {
    const auto other = makeSerialPort(device);
    ASSERT_TRUE(other->open(1, "38400,N,8,1")) << other->fault();
    EXPECT_NE(setClock(), std::nullopt);
    EXPECT_TRUE(logged().ends_with(" initCommunication:COM Port EEROR\r\n"));
    EXPECT_EQ(op.told.front(), "Initialization of a communication port went wrong.");
    other->close();
    EXPECT_EQ(setClock(), std::nullopt);
}

} // namespace
} // namespace orvane::test
