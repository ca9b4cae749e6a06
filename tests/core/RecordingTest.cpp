#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

struct Panel : StationDay {
    Panel() {
        start(at(2006, 11, 15, 12, 10));
        s->start(false);
    }
    void type(std::size_t index, const std::string& text) {
        s->panel.Text1[index].text = text;
        s->recording.Text1_Change(index);
    }
    void press() { s->press(&Recording::Command1_Click); }
    std::string lockState() const {
        std::string state;
        for (std::size_t i = 0; i < OperationPanel::kFieldCount; ++i) {
            state += s->panel.Text1[i].enabled ? 'T' : 't';
            state += s->panel.UpDown1[i].enabled ? 'U' : 'u';
        }
        const OperationPanel& p = s->panel;
        for (const auto* enabled : {&p.Command1.enabled, &p.Command2.enabled, &p.Command3.enabled,
                                    &p.Dir1[0].enabled, &p.Frame3[1].enabled})
            state += *enabled ? '1' : '0';
        return state;
    }
};

const std::string kAfterFailedStart = "TUTUTUTUTUTUTu10111";

TEST_F(Panel, StartLocksAndStopUnlocksAllButTheSecondSpinner) {
    std::string awake;
    s->station.keepAwake = [&](bool on) { awake += on ? "awake " : "may sleep "; };
    for (const auto& [locked, state] :
         {std::pair{true, "tutututuTUtuTU10111"}, {false, "TUTUTUTUTUTUTU10111"}}) {
        s->panel.chk_auto.ticked = locked;
        s->recording.chk_auto_Click();
        EXPECT_EQ(lockState(), state);
    }
    type(4, "99"); // nobody checks these
    type(6, "nonsense");
    s->clock.run(1min);
    EXPECT_EQ(s->panel.Label12.caption.get() + " " + s->panel.Label13.caption.get(),
              "2006/11/15 12:11:00");
    EXPECT_EQ(s->module.replyTicks, 60);
    EXPECT_EQ(s->module.syncTicks, 0); // not enabled at start
    EXPECT_EQ(awake, "");
    press();
    EXPECT_EQ(lockState(), "tutututuTUtuTu01000");
    EXPECT_TRUE(s->module.RecordFlg);
    EXPECT_EQ(looks(), "Recording Standby, stop");
    EXPECT_EQ(s->module.plannedRecords, 17);
    EXPECT_EQ(s->panel.Label11.caption.get(), "0 sheet");
    EXPECT_EQ(s->module.schedule.NextRecTime, 12h + 30min);
    EXPECT_EQ(s->store.values["Operation/StartHour"], "9"); // saved at every start
    runUntil(12, 30, 1);
    EXPECT_EQ(looks(), "Recording Now...");
    runUntil(12, 30, 10); // the pause can be stopped
    EXPECT_EQ(looks(), "Recording Now..., stop");
    s->recording.Command2_Click();
    EXPECT_EQ(lockState(), kAfterFailedStart);
    s->clock.run(2s);
    EXPECT_EQ(looks(), "Ready, start");
    EXPECT_EQ(s->panel.Label11.caption.get(), "");
    EXPECT_EQ(awake, "awake may sleep ");
    s->store.readOnly = true;
    press();
    EXPECT_TRUE(s->module.RecordFlg);
    EXPECT_EQ(s->logged(), (std::vector<std::string>{"Orvane Starting", "Start Recording",
                                                     "Stop Recording", "Start Recording",
                                                     "writeSetup:Settings cannot be stored"}));
    s->recording.Command2_Click();
    s->clock.run(10h);
    EXPECT_EQ(s->module.replyTicks, 32767);
    EXPECT_EQ(s->module.searchTicks, 32767);
}

TEST_F(Panel, RefusesAScheduleWithItsMessage) {
    using Typed = std::vector<std::pair<std::size_t, std::string>>;
    const Typed usual{{0, "9"}, {1, "0"}, {2, "17"}, {3, "0"}, {5, "30"}, {6, "00"}};
    const std::tuple<Typed, const char*, std::size_t> cases[] = {
        {{{0, "24"}}, "Please set up 'hour' of a StartTime correctly.", 0},
        {{{0, ""}, {1, "99"}}, "Please set up 'hour' of a StartTime correctly.", 0},
        {{{1, "-1"}}, "Please set up 'minute' of a StartTime correctly.", 1},
        {{{2, ""}}, "Please set up 'hour' of a EndTime correctly.", 2},
        {{{3, "60"}}, "Please set up 'minute' of a EndTime correctly.", 3},
        {{{5, "60"}}, "Please set up 'minute' of a Recording Interval correctly.", 5},
        {{{5, "0"}, {6, ""}}, "'00:00' cannot be set as a Recording Interval.", 5},
        {{{5, "x"}, {6, "y"}}, "'00:00' cannot be set as a Recording Interval.", 5},
        {{{2, "9"}}, "Start Time and End Time cannot be set to the same time.", 2},
        {{{0, "17"}, {2, "9"}}, "You must be Start Time < End Time.", 2},
    };
    for (const auto& [typed, message, field] : cases) {
        SCOPED_TRACE(message);
        for (const Typed* texts : {&usual, &typed})
            for (const auto& [index, text] : *texts)
                type(index, text);
        const Schedule before = s->module.schedule;
        const auto fault = s->recording.scheduleFault();
        ASSERT_TRUE(fault);
        EXPECT_EQ(fault->message, message);
        EXPECT_EQ(fault->field, field);
        EXPECT_EQ(s->module.schedule, before) << "looking changes nothing";
        const int beeps = s->op.beeps;
        press();
        EXPECT_EQ(s->op.told.back(), message);
        EXPECT_EQ(s->logged().back(), message);
        EXPECT_EQ(s->op.beeps, beeps + 1);
        EXPECT_FALSE(s->panel.Command1.enabled); // the box is still open
        s->clock.run(2s);
        EXPECT_EQ(lockState(), kAfterFailedStart);
        EXPECT_EQ(s->recording.faultyField.get(), field);
        EXPECT_EQ(looks(), "Ready, start");
        EXPECT_EQ(s->store.values["Operation/StartHour"], s->panel.Text1[0].text.get());
    }
}

TEST_F(Panel, APartOfAnArchiveIsTakenAsDataFolderOnlyAfterAQuestion) {
    const auto& chosen = s->panel.Dir1[0].path.get();
    const auto above = s->folder.path();
    const auto day = above / "20061115";
    const auto choose = [&](const std::filesystem::path& folder) {
        s->tasks.spawn(s->recording.chooseDataFolder(folder));
    };
    choose(above);
    EXPECT_EQ(chosen, above) << "no question";
    for (const bool yes : {false, true}) {
        s->op.answer = yes;
        choose(day);
        EXPECT_TRUE(s->op.asked.back().starts_with("20061115 is a day of the archive. "));
        s->clock.run(2s);
        EXPECT_EQ(chosen, yes ? day : above);
    }
    choose(s->dataFolder() / "Edit");
    press();
    s->clock.run(2s);
    EXPECT_EQ(chosen, day) << "recording was started before the answer";
}

TEST(CreateNextRecTime, FirstTimeAfterNowElseTheStart) {
    const struct {
        TimeOfDay start, end, interval, now, next;
    } cases[] = {{9h, 17h, 30min, 8h, 9h},
                 {9h, 17h, 30min, 16h + 45min, 17h},
                 {9h, 17h, 30min, 9h, 9h + 30min},
                 {9h, 17h, 30min, 17h, 9h},
                 {9h, 17h, 1s, 12h, 12h + 1s},
                 {9h, 17h, 0s, 12h, 9h},
                 {0h, 23h + 59min, 45min, 23h + 50min, 0h}};
    for (const auto& c : cases)
        EXPECT_EQ(createNextRecTime(c.start, c.end, c.interval, c.now), c.next) << c.now.count();
}

TEST(DiskWatch, TellsDaysAtTodaysRate) {
    const Schedule schedule{9h, 17h, 30min, {}}; // 16 captures a day
    DiskWatch disk;
    const auto caption = [&](std::uint64_t free) { return disk.report(free, schedule).caption; };
    EXPECT_EQ(caption(123'400'000'000), "123.4 GB free");
    const auto day = dayOf(at(2006, 11, 15));
    disk.addCapture(30'000'000, day);
    disk.addCapture(10'000'000, day);
    EXPECT_EQ(caption(123'400'000'000), "123.4 GB free, about 386 days");
    EXPECT_TRUE(disk.report(2'300'000'000, schedule).warning.empty());
    EXPECT_FALSE(disk.report(2'200'000'000, schedule).warning.empty()); // 6.9 days
    EXPECT_FALSE(DiskWatch().report(999'000'000, schedule).warning.empty());
    disk.addCapture(1'000'000, dayOf(at(2006, 11, 16))); // a new day, a new rate
    EXPECT_EQ(caption(16'000'000'000), "16.0 GB free, about 1000 days");
}

TEST(Conversions, NumbersFromText) {
    EXPECT_EQ(toInt16("2.5"), 2);
    EXPECT_EQ(toInt16("3.5"), 4);
    EXPECT_EQ(toInt16("-32768"), -32768);
    EXPECT_EQ(toInt16("+15"), 15);
    for (const char* text : {"", "-", "+-1", "1 2", "nan", "1e999", "0x10", "."})
        EXPECT_FALSE(toDouble(text)) << text;
    const std::pair<const char*, double> cases[] = {
        {"12abc", 12.0}, {" 7", 7}, {"abc", 0}, {"", 0}, {"-3", -3}, {".5", 0.5}, {"--1", 0}};
    for (const auto& [text, value] : cases)
        EXPECT_DOUBLE_EQ(leadingNumber(text), value) << text;
    EXPECT_EQ(toText(139.315), "139.315");
}

} // namespace
} // namespace orvane::test
