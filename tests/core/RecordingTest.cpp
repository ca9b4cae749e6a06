#include "platform/Conversions.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

struct Panel : testing::Test {
    TestStation s{at(2006, 11, 15, 12, 10)};

    void SetUp() override {
        s.start(false);
        s.op.patience = 1s;
    }
    void type(std::size_t index, const std::string& text) {
        s.panel.Text1[index].text = text;
        s.recording.Text1_Change(index);
    }
    std::string lockState() const {
        std::string state;
        for (std::size_t i = 0; i < OperationPanel::kFieldCount; ++i) {
            state += s.panel.Text1[i].enabled ? 'T' : 't';
            state += s.panel.UpDown1[i].enabled ? 'U' : 'u';
        }
        for (const bool enabled : {s.panel.Command1.enabled.get(), s.panel.Command2.enabled.get(),
                                   s.panel.Command3.enabled.get(), s.panel.Dir1[0].enabled.get(),
                                   s.panel.Frame3[1].enabled.get()})
            state += enabled ? '1' : '0';
        return state;
    }
};

const std::string kReady = "TUTUTUTUTUTUTU10111";
const std::string kRecording = "tutututuTUtuTu01000";
const std::string kAfterFailedStart = "TUTUTUTUTUTUTu10111";

TEST_F(Panel, StartLocksAndStopUnlocksAllButTheSecondSpinner) {
    EXPECT_EQ(lockState(), kReady);
    s.press(&Recording::Command1_Click);
    EXPECT_EQ(lockState(), kRecording);
    EXPECT_TRUE(s.module.RecordFlg);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Recording Standby");
    EXPECT_EQ(s.module.plannedRecords, 17);
    EXPECT_EQ(s.panel.Label11.caption.get(), "0 sheet");
    EXPECT_EQ(timeText(at(2006, 1, 1) + s.module.schedule.NextRecTime), "12:30:00");
    EXPECT_EQ(s.store.values["Operation/StartHour"], "9"); // saved at every start
    s.recording.Command2_Click();
    EXPECT_EQ(lockState(), kAfterFailedStart);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
    EXPECT_EQ(s.logged(),
              (std::vector<std::string>{"Orvane Starting", "Start Recording", "Stop Recording"}));
}

TEST_F(Panel, ThePcStaysAwakeWhileRecordingIsOnAndOnlyThen) {
    std::string asked;
    s.station.keepAwake = [&](bool awake) { asked += awake ? "awake " : "may sleep "; };
    s.clock.run(2min);
    EXPECT_EQ(asked, "");
    s.press(&Recording::Command1_Click);
    s.clock.run(30min); // over a capture
    EXPECT_EQ(asked, "awake ");
    s.recording.Command2_Click();
    s.clock.run(1s);
    EXPECT_EQ(asked, "awake may sleep ");
    s.panel.Text1[0].text = std::string(); // a schedule that is refused
    s.press(&Recording::Command1_Click);
    s.clock.run(1min);
    EXPECT_EQ(asked, "awake may sleep ");
}

TEST_F(Panel, RefusesAScheduleWithItsMessage) {
    struct Case {
        std::vector<std::pair<std::size_t, std::string>> typed;
        const char* message;
    };
    const Case cases[] = {
        {{{0, "24"}}, "Please set up 'hour' of a StartTime correctly."},
        {{{0, ""}, {1, "99"}}, "Please set up 'hour' of a StartTime correctly."},
        {{{1, "-1"}}, "Please set up 'minute' of a StartTime correctly."},
        {{{2, ""}}, "Please set up 'hour' of a EndTime correctly."},
        {{{3, "60"}}, "Please set up 'minute' of a EndTime correctly."},
        {{{5, "60"}}, "Please set up 'minute' of a Recording Interval correctly."},
        {{{5, "0"}, {6, ""}}, "'00:00' cannot be set as a Recording Interval."},
        {{{5, "x"}, {6, "y"}}, "'00:00' cannot be set as a Recording Interval."},
        {{{2, "9"}}, "Start Time and End Time cannot be set to the same time."},
        {{{0, "17"}, {2, "9"}}, "You must be Start Time < End Time."},
    };
    for (const auto& [typed, message] : cases) {
        for (const auto& [index, text] :
             {std::pair{0, "9"}, {1, "0"}, {2, "17"}, {3, "0"}, {5, "30"}, {6, "00"}})
            type(static_cast<std::size_t>(index), text);
        for (const auto& [index, text] : typed)
            type(index, text);
        const int beeps = s.op.beeps;
        s.press(&Recording::Command1_Click);
        EXPECT_EQ(s.op.told.back(), message);
        EXPECT_EQ(s.logged().back(), message);
        EXPECT_EQ(s.op.beeps, beeps + 1);
        EXPECT_FALSE(s.panel.Command1.enabled); // the box is still open
        s.clock.run(2s);
        EXPECT_EQ(lockState(), kAfterFailedStart) << message;
        EXPECT_FALSE(s.module.RecordFlg);
        EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
        EXPECT_EQ(s.store.values["Operation/StartHour"], s.panel.Text1[0].text.get());
    }
}

TEST_F(Panel, IntervalHourAndSecondAreNeverChecked) {
    type(4, "99");
    type(6, "nonsense");
    s.press(&Recording::Command1_Click);
    EXPECT_TRUE(s.module.RecordFlg);
    EXPECT_EQ(s.module.schedule.IntervalTime, 30min);
    s.recording.Command2_Click();
    type(5, "0");
    type(6, "1");
    s.press(&Recording::Command1_Click);
    EXPECT_TRUE(s.module.RecordFlg);
    EXPECT_EQ(timeText(at(2006, 1, 1) + s.module.schedule.NextRecTime), "12:10:01");
}

TEST_F(Panel, APartOfAnArchiveIsTakenAsDataFolderOnlyAfterAQuestion) {
    const auto before = s.panel.Dir1[0].path.get();
    const auto day = s.folder.path() / "20061115";
    s.tasks.spawn(s.recording.chooseDataFolder(s.folder.path()));
    EXPECT_EQ(s.panel.Dir1[0].path.get(), s.folder.path());
    EXPECT_TRUE(s.op.asked.empty());
    for (const bool yes : {false, true}) {
        s.op.answer = yes;
        s.tasks.spawn(s.recording.chooseDataFolder(day));
        EXPECT_TRUE(s.op.asked.back().starts_with("20061115 is a day of the archive. "));
        s.clock.run(2s);
        EXPECT_EQ(s.panel.Dir1[0].path.get(), yes ? day : s.folder.path());
    }
    s.tasks.spawn(s.recording.chooseDataFolder(before / "Edit"));
    s.press(&Recording::Command1_Click);
    s.clock.run(2s);
    EXPECT_EQ(s.panel.Dir1[0].path.get(), day) << "recording was started before the answer";
}

TEST_F(Panel, SettingsThatCannotBeStoredAreLoggedAndRecordingStarts) {
    s.store.readOnly = true;
    s.press(&Recording::Command1_Click);
    EXPECT_EQ(s.countLogged("writeSetup:Settings cannot be stored"), 1);
    EXPECT_TRUE(s.module.RecordFlg);
}

TEST_F(Panel, FieldsAndSpinnersFollowEachOther) {
    type(0, "7");
    EXPECT_EQ(s.panel.UpDown1[0].value.get(), 7);
    type(0, "24");
    EXPECT_EQ(s.panel.UpDown1[0].value.get(), 7);
    s.recording.Text1_LostFocus(0);
    EXPECT_EQ(s.panel.Text1[0].text.get(), "");
    type(1, "59");
    s.recording.Text1_LostFocus(1);
    EXPECT_EQ(s.panel.Text1[1].text.get(), "59");
    s.panel.UpDown1[6].value = 12;
    s.recording.UpDown1_Change(6);
    EXPECT_EQ(s.panel.Text1[6].text.get(), "12");
}

TEST_F(Panel, LockBoxCoversTenControls) {
    s.panel.chk_auto.ticked = true;
    s.recording.chk_auto_Click();
    EXPECT_EQ(lockState(), "tutututuTUtuTU10111");
    s.panel.chk_auto.ticked = false;
    s.recording.chk_auto_Click();
    EXPECT_EQ(lockState(), kReady);
}

TEST_F(Panel, ClockLabelsAndTickCounters) {
    s.clock.runUntil(at(2006, 11, 15, 12, 10, 5));
    EXPECT_EQ(s.panel.Label12.caption.get(), "2006/11/15");
    EXPECT_EQ(s.panel.Label13.caption.get(), "12:10:05");
    EXPECT_EQ(s.module.replyTicks, 5);
    s.clock.run(10h);
    EXPECT_EQ(s.module.replyTicks, 32767);
    EXPECT_EQ(s.module.searchTicks, 32767);
    EXPECT_EQ(s.module.syncTicks, 0); // not enabled at start
    s.status.Tim_sync.enable();
    s.clock.run(1799s);
    EXPECT_FALSE(s.module.syncElapsed);
    s.clock.run(1s);
    EXPECT_TRUE(s.module.syncElapsed);
}

TEST(CreateNextRecTime, FirstTimeAfterNowElseTheStart) {
    struct Case {
        TimeOfDay start, end, interval, now, next;
    };
    const Case cases[] = {
        {9h, 17h, 30min, 12h + 10min, 12h + 30min},
        {9h, 17h, 30min, 17h + 10min, 9h},
        {9h, 17h, 30min, 8h, 9h},
        {9h, 17h, 30min, 16h + 45min, 17h},
        {9h, 17h, 30min, 9h, 9h + 30min},
        {9h, 17h, 30min, 17h, 9h},
        {9h, 17h, 1s, 12h, 12h + 1s},
        {9h, 17h, 0s, 12h, 9h},
        {0h, 23h + 59min, 45min, 23h + 50min, 0h},
    };
    for (const Case& c : cases)
        EXPECT_EQ(createNextRecTime(c.start, c.end, c.interval, c.now), c.next) << c.now.count();
}

} // namespace
} // namespace orvane::test
