#include "platform/Conversions.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

struct Closing : testing::Test {
    TestStation s{at(2006, 11, 15, 9, 29)};
    int ended = 0;
    Shutdown shutdown{{s.settings, s.store, s.busy, s.wishes, s.op, s.log, [this] { ++ended; }}};

    bool query(UnloadMode mode) {
        Task<bool> task = shutdown.MDIForm_QueryUnload(mode);
        task.start();
        s.clock.run(2s);
        EXPECT_TRUE(task.done());
        return task.result();
    }
};

TEST_F(Closing, SavesThenAsks) {
    s.start(false);
    s.panel.txtIp.text = "10.0.0.7";
    s.op.answer = false;
    EXPECT_FALSE(query(UnloadMode::User));
    EXPECT_EQ(s.op.asked, std::vector<std::string>{"Program End ? "});
    EXPECT_EQ(s.store.values["Settings/IP"], "10.0.0.7");
    s.op.answer = true;
    EXPECT_TRUE(query(UnloadMode::Other));
}

/// A close box that is refused is kept as a wish; what comes from elsewhere goes ahead.
TEST_F(Closing, ABusyStationRefusesItsCloseBoxOnly) {
    s.start(true);
    const Busy::Hold busy(s.busy);
    Task<bool> refused = shutdown.MDIForm_QueryUnload(UnloadMode::User);
    refused.start();
    s.clock.run(20s);
    EXPECT_EQ(s.op.beeps, 1);
    EXPECT_FALSE(refused.done());
    EXPECT_EQ(s.wishes.text.get(), "Orvane closes after the work in progress.");
    EXPECT_FALSE(query(UnloadMode::User)) << "one wish is enough";
    EXPECT_TRUE(query(UnloadMode::Other));
    EXPECT_TRUE(s.op.asked.empty());
    s.wishes.drop();
    s.clock.run(1s);
    EXPECT_FALSE(refused.result());
    EXPECT_TRUE(s.op.asked.empty());
    EXPECT_EQ(s.wishes.text.get(), "");
}

TEST_F(Closing, SettingsThatCannotBeStoredAreNotLostWithoutAWord) {
    s.start(false);
    s.store.readOnly = true;
    EXPECT_TRUE(query(UnloadMode::User));
    ASSERT_EQ(s.op.asked.size(), 2U);
    EXPECT_NE(s.op.asked[1].find("cannot be stored"), std::string::npos);
    EXPECT_EQ(s.countLogged("writeSetup:Settings cannot be stored"), 1);
    s.store.readOnly = false;
    EXPECT_TRUE(query(UnloadMode::User));
    EXPECT_EQ(s.op.asked.size(), 3U);
}

TEST_F(Closing, TheSystemEndsTheProgramWithoutAQuestion) {
    s.start(true);
    s.panel.txtIp.text = "10.0.0.7";
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 1)); // in a capture
    shutdown.end("SIGTERM", WindowPlace{1, 0, 1024, 747});
    shutdown.end("SIGHUP", std::nullopt);
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(s.op.asked.empty());
    EXPECT_EQ(s.store.values["Settings/IP"], "10.0.0.7");
    EXPECT_EQ(s.store.values["Settings/MainLeft"], "15");
    EXPECT_EQ(s.logged().back(), "Orvane Ending (SIGTERM)");
}

TEST_F(Closing, OneQuestionAtATime) {
    s.start(false);
    Task<bool> first = shutdown.MDIForm_QueryUnload(UnloadMode::User);
    first.start();
    Task<bool> second = shutdown.MDIForm_QueryUnload(UnloadMode::User);
    second.start();
    EXPECT_TRUE(second.done());
    EXPECT_FALSE(second.result());
    s.clock.run(2s);
    EXPECT_TRUE(first.result());
}

/// A question that goes with its task does not keep the next one from being asked.
TEST_F(Closing, AnAbandonedQuestionIsNoQuestion) {
    s.start(false);
    {
        Task<bool> abandoned = shutdown.MDIForm_QueryUnload(UnloadMode::User);
        abandoned.start();
        EXPECT_FALSE(abandoned.done());
    }
    EXPECT_TRUE(query(UnloadMode::User));
    EXPECT_EQ(s.op.asked.size(), 2U);
}

TEST_F(Closing, StoresThePlaceInTwipsUnlessMinimised) {
    s.start(false);
    shutdown.MDIForm_Unload(std::nullopt);
    EXPECT_FALSE(s.store.values.contains("Settings/MainLeft"));
    EXPECT_EQ(s.logged().back(), "Orvane Ending");
    Shutdown other{{s.settings, s.store, s.busy, s.wishes, s.op, s.log, [this] { ++ended; }}};
    other.MDIForm_Unload(WindowPlace{-4, 10, 1024, 747});
    EXPECT_EQ(s.store.values["Settings/MainLeft"], "-60");
    EXPECT_EQ(s.store.values["Settings/MainTop"], "150");
    EXPECT_EQ(s.store.values["Settings/MainWidth"], "15360");
    EXPECT_EQ(s.store.values["Settings/MainHeight"], "11205");
    EXPECT_EQ(ended, 2);
}

/// The station destroyed in every state of a capture leaves nothing waiting and no part of a file.
TEST_F(Closing, EndsCleanlyAtAnyMoment) {
    for (int step = 0; step < 60; ++step) {
        TestStation station(at(2006, 11, 15, 9, 29, 59));
        station.http.latency = 1500ms;
        station.start(true);
        station.clock.run(step * 100ms);
        station.loopTask.reset();
        station.status.Timer1.disable();
        station.status.runSync(false);
        station.clock.run(12s);
        EXPECT_EQ(station.clock.pending(), 1U) << "the look at how the station is doing";
        EXPECT_TRUE(station.busy.mnuFileOpen);
        for (const std::string& name : station.imagesOf("20061115"))
            EXPECT_EQ(name, "20061115_093000_00.jpg");
    }
}

struct Countdown : testing::Test {
    JumpingClock clock{at(2006, 11, 15)};
    Module1 module;
    FakeStore store;
    std::string trace;
    AutoStart autoStart{
        module,
        store,
        clock,
        {[this] { trace += "closed "; }, [this] { trace += "loop"; }, [this] { trace += "end"; }},
        noFault};
};

TEST_F(Countdown, RunsOutAtThe99thTick) {
    autoStart.Form_Load();
    clock.run(98 * 105ms);
    EXPECT_EQ(autoStart.PBar1.get(), 2);
    EXPECT_EQ(trace, "");
    clock.run(105ms);
    EXPECT_EQ(trace, "closed loop");
    EXPECT_TRUE(module.RecordFlg);
    EXPECT_EQ(store.values["Operation/Mode Auto"], "True");
    EXPECT_EQ(store.values["Operation/Mode Man"], "False");
    clock.run(1min);
    autoStart.Command1_Click();
    autoStart.Command2_Click();
    EXPECT_EQ(trace, "closed loop");
}

TEST_F(Countdown, CancelStartsWithoutRecordingAndEndEnds) {
    autoStart.Form_Load();
    clock.run(98 * 105ms);
    autoStart.Command1_Click();
    clock.run(1min);
    EXPECT_EQ(trace, "closed loop");
    EXPECT_FALSE(module.RecordFlg);
    EXPECT_TRUE(store.values.empty());

    trace.clear();
    AutoStart other{
        module,
        store,
        clock,
        {[this] { trace += "closed "; }, [this] { trace += "loop"; }, [this] { trace += "end"; }},
        noFault};
    other.Form_Load();
    other.Command2_Click();
    clock.run(1min);
    EXPECT_EQ(trace, "closed end");
}

TEST_F(Countdown, WhatNobodyForesawAtItsEndIsHandedOn) {
    std::string told;
    AutoStart failing{module,
                      store,
                      clock,
                      {[] {}, [] { throw std::runtime_error("no loop"); }, [] {}},
                      [&](const std::exception_ptr& fault) { told += textOf(fault); }};
    failing.Form_Load();
    clock.run(1min);
    EXPECT_EQ(told, "no loop");
    EXPECT_EQ(clock.pending(), 0U);
}

TEST(ErrorLog, AppendsStampedLines) {
    TempFolder folder;
    JumpingClock clock(at(2006, 7, 15, 14, 3, 27));
    ErrorLog log(folder.path(), clock);
    EXPECT_TRUE(log.write("recMessage:SUM ERROR"));
    EXPECT_TRUE(log.write(""));
    std::string text;
    readWholeFile(folder.path() / "ERROR.LOG", text);
    EXPECT_EQ(text, "2006/07/15 14:03:27 recMessage:SUM ERROR\r\n2006/07/15 14:03:27 \r\n");
}

TEST(ErrorLog, FlashesOnTheStatusLabel) {
    TestStation s(at(2006, 11, 15));
    s.panel.Label7.caption = "Ready";
    s.log.write("hidden");
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
    s.log.write("first", true);
    EXPECT_EQ(s.panel.Label7.caption.get(), "first");
    s.log.write("second", true);
    EXPECT_EQ(s.panel.Label7.caption.get(), "second");
    s.clock.run(10ms);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
    s.log.write("third", true);
    s.panel.Label7.caption = "Recording Now..."; // newer than the flash: it stays
    s.clock.run(10ms);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Recording Now...");
}

TEST(ErrorLog, AFailureIsAResultAndAWarningAndStopsNothing) {
    TestStation s(at(2006, 11, 15, 9, 29));
    std::filesystem::create_directory(s.module.programFolder / "ERROR.LOG");
    EXPECT_FALSE(s.log.write("x"));
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_EQ(s.imagesOf("20061115").size(), 1U);
    EXPECT_EQ(s.warnings.text.get(), "ERROR.LOG in the program's folder cannot be written.");
    // a station that has nothing to log finds out as well
    std::filesystem::remove(s.module.programFolder / "ERROR.LOG");
    s.clock.run(1min);
    EXPECT_TRUE(s.warnings.text.get().empty());
    EXPECT_EQ(s.logged(), std::vector<std::string>{"ErrorLog:3 lines could not be written"});
    s.clock.run(1min);
    EXPECT_EQ(s.logged().size(), 1U);
}

TEST(DiskWatch, TellsDaysAtTodaysRate) {
    const Schedule schedule{9h, 17h, 30min, {}}; // 16 captures a day
    DiskWatch disk;
    EXPECT_EQ(disk.report(123'400'000'000, schedule).caption, "123.4 GB free");
    const auto day = dayOf(at(2006, 11, 15));
    disk.addCapture(30'000'000, day);
    disk.addCapture(10'000'000, day);
    EXPECT_EQ(disk.report(123'400'000'000, schedule).caption, "123.4 GB free, about 386 days");
    EXPECT_TRUE(disk.report(2'300'000'000, schedule).warning.empty());
    EXPECT_FALSE(disk.report(2'200'000'000, schedule).warning.empty()); // 6.9 days
    EXPECT_FALSE(DiskWatch().report(999'000'000, schedule).warning.empty());
    disk.addCapture(1'000'000, dayOf(at(2006, 11, 16))); // a new day, a new rate
    EXPECT_EQ(disk.report(16'000'000'000, schedule).caption, "16.0 GB free, about 1000 days");
}

} // namespace
} // namespace orvane::test
