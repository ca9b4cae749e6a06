#include "platform/SerialPort.h"
#include "platform/qt/QtClock.h"
#include "simulators/sun-tracker/SunTracker.h"
#include "tests/support/Fakes.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"
#include "tracker/TimeSetting.h"
#include "tracker/TrackerOptions.h"

#include <gtest/gtest.h>

#include <QTest>

namespace orvane::test {
namespace {

using Messages = std::vector<std::string>;

/// The station's whole link against the simulated tracker, over a pseudo-terminal. The clock timer
/// ticks fast here, so that time-outs take some 30 ms instead of three seconds. However long the
/// system lets the tests wait, it ticks once: the tracker waits with it.
struct TrackerLink : testing::Test {
    TrackerLink() {
        EXPECT_TRUE(simulator.start()) << simulator.errorString().toStdString();
        ticking.start();
        module.programFolder = folder.path();
    }
    static Task<> tick(Clock& clock, Module1& module) {
        for (;; ++module.replyTicks)
            co_await clock.sleep(10ms);
    }
    template <class T>
    T finish(Task<T> task) {
        task.start();
        return test::finish(task);
    }
    Messages logged() const {
        std::string text;
        readWholeFile(folder.path() / "ERROR.LOG", text);
        Messages messages;
        for (std::size_t at = 0; at < text.size(); at = text.find("\r\n", at) + 2)
            messages.push_back(text.substr(at + 20, text.find("\r\n", at) - at - 20));
        return messages;
    }
    void clearLog() { std::filesystem::remove(folder.path() / "ERROR.LOG"); }

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
    std::unique_ptr<SerialPort> port =
        makeSerialPort([this](int) { return simulator.portPath().toStdString(); });
    FrameLink link{*port, store, log, clock, module};
    TrackerCommands commands{link};
    TimeSettingForm timeForm;
    TimeSetting timeSetting{timeForm, panel, commands, browser, log, op, clock, busy};
    OptionForm optionForm;
    TrackerOptions options{optionForm, module, commands, log, op, busy, [] {}};
    Task<> ticking = tick(clock, module);
};

TEST_F(TrackerLink, SetsTheClockAndReadsAndWritesAllOptions) {
    op.patience = 0ms;
    EXPECT_EQ(finish(timeSetting.setTrackerClock(false)), std::nullopt);
    finish(options.activate());
    EXPECT_EQ(logged(), Messages{});
    EXPECT_EQ(optionForm.txt_tz.text.get(), std::to_string(simulator.values().timeZone));
    EXPECT_NEAR(module.site.longitude, simulator.values().longitude, 1e-12);
    finish(options.Command1_Click());
    EXPECT_EQ(logged(), Messages{});
    EXPECT_EQ(op.told, Messages{});
    EXPECT_EQ(simulator.counts().commands, 9);
    EXPECT_EQ(simulator.counts().badFrames, 0);
    EXPECT_EQ(simulator.counts().naks, 0);
}

/// Every fault of the tracker against every procedure: bounded, logged, the port closed, and the
/// next exchange works.
TEST_F(TrackerLink, FaultMatrix) {
    struct Case {
        const char* fault;
        const char* clockLog; ///< what the clock command is logged as; null: the clock is set
        const char* readLog;  ///< among what a reading is logged as; null: it succeeds
    };
    const Case cases[] = {
        {"silence", "CLOCK SET:Racive Error", "OptionSetup Serial:Receive ERROR"},
        {"silence-after:1", "CLOCK SET:Except[ACK]", "recMessage:STX/Receive ERROR"},
        {"silence-after:3", "CLOCK SET:Except[ACK]", "recMessage:CMD/Receive ERROR"},
        {"silence-after:6", nullptr, "recMessage:DATA/Receive ERROR 2"},
        {"nak", "CLOCK SET:Except[ACK]", "OptionSetup Serial:Except[ACK]"},
        {"wrong-echo", "CLOCK SET:Except[ACK]", nullptr},
        {"wrong-sum", nullptr, "recMessage:SUM ERROR"},
        {"wrong-end", nullptr, "recMessage:Except[ETX]"},
        {"wrong-reply", nullptr, "OptionSetup Serial:Except[ACK]"},
        {"garbage", "CLOCK SET:Except[ACK]", "OptionSetup Serial:Except[ACK]"},
        {"garbage-frame", "CLOCK SET:Except[ACK]", "recMessage:Except[STX]"},
        {"slow:5", nullptr, nullptr},
        {"twice", nullptr, nullptr},
        {"long", nullptr, "recMessage:Except[ETX]"},
    };
    op.patience = 0ms;
    for (const auto& [fault, clockLog, readLog] : cases) {
        const int rest = std::string(fault).starts_with("slow") ? 100 : 20; // of an answer
        clearLog();
        ASSERT_TRUE(simulator.setFault(QString(fault)));
        EXPECT_EQ(finish(timeSetting.setTrackerClock(false)).has_value(), clockLog != nullptr)
            << fault;
        const Messages clockMessages = logged();
        const auto has = [](const Messages& messages, const std::string& start) {
            return std::ranges::any_of(messages,
                                       [&](const auto& text) { return text.starts_with(start); });
        };
        EXPECT_TRUE(clockLog == nullptr || has(clockMessages, clockLog))
            << fault << ": " << testing::PrintToString(clockMessages);
        EXPECT_FALSE(port->isOpen()) << fault;

        QTest::qWait(rest);
        clearLog();
        finish(options.activate());
        const Messages readMessages = logged();
        EXPECT_EQ(readMessages.empty(), readLog == nullptr)
            << fault << ": " << testing::PrintToString(readMessages);
        EXPECT_TRUE(readLog == nullptr || has(readMessages, readLog))
            << fault << ": " << testing::PrintToString(readMessages);
        EXPECT_FALSE(port->isOpen()) << fault;
        EXPECT_FALSE(busy.active()) << fault;

        ASSERT_TRUE(simulator.setFault(QString("none")));
        QTest::qWait(rest);
        EXPECT_EQ(finish(timeSetting.setTrackerClock(false)), std::nullopt) << "after " << fault;
    }
}

TEST_F(TrackerLink, AnUnpluggedAdapterIsToldAndComesBack) {
    op.patience = 0ms;
    ASSERT_TRUE(simulator.setFault(QString("hangup:100"), 1));
    EXPECT_NE(finish(timeSetting.setTrackerClock(false)), std::nullopt);
    EXPECT_FALSE(port->isOpen());
    EXPECT_FALSE(logged().empty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !simulator.portPath().isEmpty(); }, 3000));
    EXPECT_EQ(finish(timeSetting.setTrackerClock(false)), std::nullopt);
}

TEST_F(TrackerLink, APortHeldByAnotherProgramIsTold) {
    op.patience = 0ms;
    const auto other = makeSerialPort([this](int) { return simulator.portPath().toStdString(); });
    ASSERT_TRUE(other->open(1, "38400,N,8,1")) << other->fault();
    EXPECT_NE(finish(timeSetting.setTrackerClock(false)), std::nullopt);
    EXPECT_EQ(logged(), Messages{"initCommunication:COM Port EEROR"});
    EXPECT_EQ(op.told, Messages{"Initialization of a communication port went wrong."});
    other->close();
    EXPECT_EQ(finish(timeSetting.setTrackerClock(false)), std::nullopt);
}

} // namespace
} // namespace orvane::test
