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
    start(at(2006, 11, 15, 7, 0)); // behind the start-up's own steps
    s->panel.Command1.enabled.observe([](bool enabled) {
        if (!enabled) throw std::runtime_error("no button");
    });
    s->start(true);
    s->clock.run(2s);
    EXPECT_EQ(s->op.told, Names{"no button"});
    EXPECT_EQ(s->exitCode, 1);
}

/// Files are looked for among today's when there are any.
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

struct Countdown : testing::Test {
    AutoStart counting() {
        return {module,
                store,
                clock,
                {[this] { trace += "closed "; }, atEnd, [this] { trace += "end"; }},
                [this](const std::exception_ptr& fault) { trace += orvane::textOf(fault); }};
    }

    JumpingClock clock{at(2006, 11, 15)};
    Module1 module;
    FakeStore store;
    std::string trace;
    std::function<void()> atEnd = [this] { trace += "loop"; };
};

TEST_F(Countdown, RunsOutAtThe99thTick) {
    AutoStart autoStart = counting();
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
    for (const auto& [click, done] : {std::pair{&AutoStart::Command1_Click, "closed loop"},
                                      {&AutoStart::Command2_Click, "closed end"}}) {
        trace.clear();
        AutoStart autoStart = counting();
        autoStart.Form_Load();
        clock.run(98 * 105ms);
        (autoStart.*click)();
        clock.run(1min);
        EXPECT_EQ(trace, done);
        EXPECT_FALSE(module.RecordFlg);
        EXPECT_TRUE(store.values.empty());
    }
}

TEST_F(Countdown, WhatNobodyForesawAtItsEndIsHandedOn) {
    atEnd = [] { throw std::runtime_error("no loop"); };
    AutoStart autoStart = counting();
    autoStart.Form_Load();
    clock.run(1min);
    EXPECT_EQ(trace, "closed no loop");
    EXPECT_EQ(clock.pending(), 0U);
}

} // namespace
} // namespace orvane::test
