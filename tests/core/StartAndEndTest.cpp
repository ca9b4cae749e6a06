#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

struct StartUpTest : StationDay {
    StartUpTest() { start(at(2006, 11, 15, 7, 0)); }
};

TEST_F(StartUpTest, SettingsThatCannotBeReadAreToldAndKept) {
    start(at(2006, 11, 15, 9, 29));
    s->store.fault = "/etc/Orvane.ini: Permission denied";
    recordUntil(9, 31);
    const std::string told = "The settings cannot be read: /etc/Orvane.ini: Permission denied. "
                             "Their defaults are in force, and nothing is stored.";
    EXPECT_EQ(s->countLogged(told), 1);
    EXPECT_EQ(s->warnings.text.get(), told);
    EXPECT_EQ(s->http.urls.front(), "http://192.168.0.10:80/Images/full.jpg") << "it records";
    EXPECT_FALSE(s->settings.writeSetup()) << "as the operator hears when closing";
}

TEST_F(StartUpTest, WhatNobodyForesawIsToldAndEndsTheProgram) {
    s->station.showMainWindow = [] { throw std::runtime_error("no window"); };
    s->start(true);
    EXPECT_EQ(s->op.told, Names{"no window"});
    EXPECT_EQ(s->exitCode, -1) << "the box is still open";
    s->clock.run(2s);
    EXPECT_EQ(s->exitCode, 1);
    EXPECT_EQ(s->logged(), Names{"StartUp:no window"});
    start(s->clock.now()); // behind the start-up's own steps
    s->panel.Command1.enabled.observe([](bool enabled) {
        if (!enabled) throw std::runtime_error("no button");
    });
    s->start(true);
    s->clock.run(2s);
    EXPECT_EQ(s->op.told, Names{"no button"});
    EXPECT_EQ(s->exitCode, 1);
}

TEST_F(StartUpTest, TodaysNewestImagesAreShown) {
    s->start(false);
    EXPECT_EQ(s->windowsShown, 1);
    EXPECT_EQ(s->panel.Dir1[1].path.get(), s->dataFolder());
    start(at(2006, 11, 15, 12, 0));
    const auto today = s->dataFolder() / "20061115";
    for (int hour = 0; hour < 12; ++hour) {
        const std::string name = "20061115_" + twoDigits(hour) + "0000_00.jpg";
        writeFile(today / name, jpegLike(name));
    }
    writeFile(today / "20061115_113000_00.jpg", "");
    writeFile(today / "99999999_notes.txt", "x");
    s->start(false);
    EXPECT_EQ(s->module.thumbnails[0], today / "20061115_110000_00.jpg");
    EXPECT_EQ(s->module.thumbnails[9], today / "20061115_020000_00.jpg");
    EXPECT_EQ(s->views.newest, s->module.thumbnails[0]);
    EXPECT_EQ(s->panel.Dir1[1].path.get(), today);
    EXPECT_EQ(s->panel.Dir1[0].path.get(), s->dataFolder());
    s->panel.Dir1[0].path = s->folder.path() / "other";
    s->clock.run(1s);
    EXPECT_EQ(s->logged(), (Names{"Orvane Starting",
                                  "Data folder: " + utf8FromPath(s->folder.path() / "other")}));
}

TEST_F(StartUpTest, AnUnusableStoredScheduleIsToldAndTheStationStaysReady) {
    s->setSchedule("17", "9", "30");
    s->station.startTest = &s->startTest;
    s->start(true);
    s->clock.run(24h);
    EXPECT_EQ(s->op.told, Names{"You must be Start Time < End Time."});
    EXPECT_EQ(looks(), "Ready, start");
    EXPECT_EQ(s->http.requests, 0);
}

/// What nobody foresaw in the main loop's start is handed on, to the timer's teller or the click.
TEST(Countdown, EndsInTheMainLoopOrTheEnd) {
    JumpingClock clock(at(2006, 11, 15));
    const std::tuple<const char*, std::function<void(AutoStart&)>, bool> cases[] = {
        {"closed loop, told: no loop", [&](auto&) { clock.run(105ms); }, true},
        {"closed loop", [](auto& c) { EXPECT_THROW(c.Command1_Click(), std::runtime_error); },
         false},
        {"closed end", [](auto& counting) { counting.Command2_Click(); }, false}};
    for (const auto& [done, act, records] : cases) {
        Module1 module;
        FakeStore store;
        std::string trace;
        const auto failingLoop = [&] {
            trace += "loop";
            throw std::runtime_error("no loop");
        };
        AutoStart counting(
            module, store, clock,
            {[&] { trace += "closed "; }, failingLoop, [&] { trace += "end"; }},
            [&](const std::exception_ptr& what) { trace += ", told: " + orvane::textOf(what); });
        counting.Form_Load();
        clock.run(98 * 105ms);
        EXPECT_EQ(counting.PBar1.get(), 2);
        EXPECT_EQ(trace, "");
        act(counting);
        EXPECT_EQ(trace, done);
        EXPECT_EQ(module.RecordFlg, records);
        EXPECT_EQ(store.GetSetting("Operation", "Mode Auto", ""), records ? "True" : "");
        EXPECT_EQ(store.GetSetting("Operation", "Mode Man", ""), records ? "False" : "");
        clock.run(1min);
        counting.Command1_Click();
        counting.Command2_Click();
        EXPECT_EQ(trace, done);
        EXPECT_EQ(clock.pending(), 0U);
    }
}

struct Closing : StationDay {
    Closing() { start(at(2006, 11, 15, 9, 29)); }
    Task<bool> begin(UnloadMode mode) {
        Task<bool> task = shutdown().MDIForm_QueryUnload(mode);
        task.start();
        return task;
    }
    bool query(UnloadMode mode) {
        Task<bool> task = begin(mode);
        s->clock.run(2s);
        EXPECT_TRUE(task.done());
        return task.result();
    }
    Shutdown& shutdown() {
        if (!made)
            made.emplace(Shutdown::Parts{s->settings, s->store, s->busy, s->wishes, s->op, s->log,
                                         [this] { ++ended; }});
        return *made;
    }
    std::string wish() const { return s->wishes.text; }

    int ended = 0;
    std::optional<Shutdown> made;
};

TEST_F(Closing, SavesThenAsksAndLosesNoSettingsWithoutAWord) {
    s->start(false);
    s->panel.txtIp.text = "10.0.0.7";
    EXPECT_FALSE(begin(UnloadMode::User).done()); // its question goes with the task
    s->op.answer = false;
    Task<bool> first = begin(UnloadMode::User);
    EXPECT_FALSE(query(UnloadMode::User)) << "one question at a time";
    EXPECT_FALSE(first.result());
    EXPECT_EQ(s->op.asked, std::vector<std::string>(2, "Program End ? "));
    EXPECT_EQ(s->store.values["Settings/IP"], "10.0.0.7");
    s->op.answer = true;
    s->store.readOnly = true;
    EXPECT_TRUE(query(UnloadMode::User));
    ASSERT_EQ(s->op.asked.size(), 4U);
    EXPECT_TRUE(has(s->op.asked[3], "cannot be stored"));
    EXPECT_EQ(s->countLogged("writeSetup:Settings cannot be stored"), 1);
    s->store.readOnly = false;
    EXPECT_TRUE(query(UnloadMode::Other));
    EXPECT_EQ(s->op.asked.size(), 5U);
}

/// A close box that is refused is kept as a wish; what comes from elsewhere goes ahead.
TEST_F(Closing, ABusyStationRefusesItsCloseBoxOnly) {
    s->start(true);
    const Busy::Hold busy(s->busy);
    Task<bool> refused = begin(UnloadMode::User);
    s->clock.run(20s);
    EXPECT_EQ(s->op.beeps, 1);
    EXPECT_FALSE(refused.done());
    EXPECT_EQ(wish(), "Orvane closes after the work in progress.");
    EXPECT_FALSE(query(UnloadMode::User)) << "one wish is enough";
    EXPECT_TRUE(query(UnloadMode::Other));
    EXPECT_TRUE(s->op.asked.empty());
    s->wishes.drop();
    s->clock.run(1s);
    EXPECT_FALSE(refused.result());
    EXPECT_TRUE(s->op.asked.empty());
    EXPECT_EQ(wish(), "");
}

TEST_F(Closing, TheSystemEndsTheProgramWithoutAQuestion) {
    s->start(true);
    s->panel.txtIp.text = "10.0.0.7";
    runUntil(9, 30, 1); // in a capture
    shutdown().end("SIGTERM", WindowPlace{-4, 10, 1024, 747});
    shutdown().end("SIGHUP", std::nullopt);
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(s->op.asked.empty());
    EXPECT_EQ(s->store.values["Settings/IP"], "10.0.0.7");
    EXPECT_EQ(s->logged().back(), "Orvane Ending (SIGTERM)");
    for (const auto& [key, twips] :
         {std::pair{"Left", "-60"}, {"Top", "150"}, {"Width", "15360"}, {"Height", "11205"}})
        EXPECT_EQ(s->store.values[std::string("Settings/Main") + key], twips);
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

/// A camera that does not answer, and every minute due.
struct DeadCamera : Closing {
    DeadCamera() {
        start(at(2006, 11, 15, 9, 29, 59));
        s->setSchedule("9", "17", "1");
        s->store.values["Settings/Delay"] = "15";
        s->http.latency = 60s;
        s->http.answer = failing("no answer from the camera");
        s->start(true);
    }
};

/// In the first second, in the delay, in the fetch: whatever the capture waits for.
TEST_F(DeadCamera, AStopWishCutsTheCaptureShort) {
    for (const Ticks moment : {Ticks(500ms), Ticks(9s), Ticks(40s)}) {
        s->clock.runUntil(at(2006, 11, 15, 9, 30) + moment);
        ASSERT_EQ(looks(), "Recording Now...");
        ASSERT_TRUE(s->recording.mnuRecordingStop);
        for (int impatient = 0; impatient < 2; ++impatient)
            s->tasks.spawn(s->recording.mnuRecordingStop_Click());
        EXPECT_EQ(wish(), "Recording stops after this picture.");
        EXPECT_EQ(looks(), "Recording Now...");
        s->clock.run(2s);
        EXPECT_EQ(wish(), "");
        EXPECT_EQ(looks(), "Ready, start");
        EXPECT_FALSE(s->recording.mnuRecordingStop);
        EXPECT_FALSE(s->busy.active());
        EXPECT_FALSE(s->module.RecDoneFlg) << "as if it had not been tried";
        EXPECT_EQ(s->warnings.text.get(), "");
        EXPECT_EQ(s->logged().back(), "Stop Recording");
        EXPECT_EQ(s->countLogged("DownLoad Error"), 0);
        s->press(&Recording::Command1_Click);
    }
    EXPECT_EQ(s->countLogged("Stop Recording"), 3);
}

TEST_F(DeadCamera, ACloseWishIsAskedAndACancelledQuestionGoesOn) {
    s->op.answer = false;
    runUntil(9, 30, 30);
    Task<bool> closing = begin(UnloadMode::User);
    EXPECT_EQ(wish(), "Orvane closes after this picture.");
    EXPECT_TRUE(s->op.asked.empty());
    s->clock.run(1s);
    EXPECT_EQ(s->op.asked, std::vector<std::string>{"Program End ? "});
    s->clock.run(2s);
    EXPECT_FALSE(closing.result());
    EXPECT_TRUE(s->module.RecordFlg);
    EXPECT_EQ(looks(), "Recording Now...") << "the minute is not over";
    EXPECT_EQ(s->countLogged("DownLoad Error"), 0);
    s->http.latency = 50ms;
    s->http.answer = [](const std::string&) { return FakeHttp::picture("new"); };
    runUntil(9, 31);
    EXPECT_EQ(count(), 1);
}

TEST_F(Closing, APictureThatHasArrivedIsFiledBeforeAStop) {
    s->start(true);
    ASSERT_TRUE(s->clock.runUntil([&] { return s->module.lastImage != ""; }, 2min));
    EXPECT_TRUE(s->module.capturing);
    s->tasks.spawn(s->recording.mnuRecordingStop_Click());
    s->clock.run(2s);
    EXPECT_FALSE(s->module.RecordFlg);
    EXPECT_EQ(s->imagesOf("20061115", "Edit").size(), 1U);
    EXPECT_EQ(looks(), "Ready, start");
}

TEST_F(Closing, ACloseWishEndsARun) {
    s->start(false);
    s->browser1.answer = [](const std::string&) { return "1,2,record/20061115_090007_00.jpg,"; };
    s->http.latency = 60s;
    s->tasks.spawn(s->imageStore.Test_DL());
    s->clock.run(1s);
    ASSERT_TRUE(s->imageStore.running());
    EXPECT_TRUE(query(UnloadMode::User));
    EXPECT_FALSE(s->busy.active());
    shutdown().MDIForm_Unload(std::nullopt);
    EXPECT_EQ(s->logged().back(), "Orvane Ending");
}

} // namespace
} // namespace orvane::test
