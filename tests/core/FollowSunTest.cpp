#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

std::chrono::local_days november(unsigned day) {
    return std::chrono::floor<std::chrono::days>(at(2006, 11, day));
}

/// A station in Japan whose window follows the sun; typed are 9:00 to 17:00.
struct FollowSun : StationDay {
    FollowSun() { begin(at(2006, 11, 15, 4, 0), "5"); }
    void begin(WallTime time, const std::string& interval) {
        start(time);
        s->store.values["Operation/IntervalMinute"] = interval;
        s->store.values["Station/FollowSun"] = "1";
    }
    void beginAt69North(WallTime time, const std::string& interval) {
        begin(time, interval);
        s->store.values["Operation/Latitude"] = "69.6";
        s->store.values["Operation/Longitude"] = "19";
        s->store.values["Operation/Tz"] = "60";
        s->utcOffset = 1h;
    }
    void follow(bool sun) {
        s->panel.chk_sun.ticked = sun;
        s->recording.chk_sun_Click();
    }
    /// "05:19 to 17:33", from what the panel shows of that day.
    std::string panelsWindow(std::chrono::local_days day) const {
        SunTimes times;
        EXPECT_FALSE(ComputeSunriseSunset(s->module.site, std::chrono::year_month_day(day), times));
        const auto hourAndMinute = [](const std::string& time) { // of "5:19:00"
            return (time.size() < 8 ? "0" : "") + time.substr(0, time.size() - 3);
        };
        return hourAndMinute(times.SunriseText) + " to " + hourAndMinute(times.SunsetText);
    }
    std::string inForce() const { return scheduleText(s->module.schedule); }
    static Schedule every5Minutes(const std::string& window) {
        return parseSchedule(window + " every 05 min").value();
    }
    static int due(const std::string& window, int interval = 5) {
        Schedule schedule = every5Minutes(window);
        schedule.IntervalTime = std::chrono::minutes(interval);
        return dueMinutesPerDay(schedule);
    }
};

TEST_F(FollowSun, EveryDayHasItsOwnWindow) {
    begin(at(2006, 11, 15, 4, 0), "1");
    s->start(true);
    s->clock.run(1s);
    const std::string first = panelsWindow(november(15));
    const std::string second = panelsWindow(november(16));
    ASSERT_NE(first.substr(0, 5), second.substr(0, 5));
    EXPECT_EQ(inForce(), first + " every 01 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "today " + first);
    EXPECT_EQ(s->panel.Text1[0].text.get(), "9");
    EXPECT_EQ(s->module.plannedRecords, due(first, 1) + 1);
    runUntil(17, 45); // past the window
    EXPECT_EQ(count(), due(first, 1));
    EXPECT_EQ(s->countLogged("End Time"), 1);
    const std::string start = second.substr(0, 5);
    EXPECT_EQ(timeText(WallTime(november(15)) + s->module.schedule.NextRecTime), start + ":00");
    EXPECT_TRUE(has(s->days.plan().text, ", next tomorrow at " + start));
    EXPECT_EQ(s->warnings.text.get(), "");
    s->http.answer = failing("refused");
    s->http.latency = 50s;
    s->clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_EQ(inForce(), second + " every 01 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "today " + second);
    EXPECT_EQ(s->module.plannedRecords, due(second, 1) + 1);
    EXPECT_EQ(s->days.plan().text,
              "taken 0 of " + std::to_string(due(second, 1)) + ", next at " + start);
    EXPECT_TRUE(has(ledger("20061116"), "00:00,+09:00,schedule,," + second +
                                            " every 01 min\r\n00:00,+09:00,recording on,,\r\n"));
    EXPECT_EQ(s->countLogged("End Time"), 1);
    s->clock.runUntil(at(2006, 11, 17, 0, 5));
    EXPECT_EQ(s->days.yesterdaysPlan().due, due(second, 1));
    EXPECT_EQ(s->days.yesterdaysPlan().missed, due(second, 1));
}

/// Through a stop with another schedule, too, and a clock that is put forward over midnight.
TEST_F(FollowSun, GoesOnAfterARestartASwitchAndAJump) {
    s->start(true);
    runUntil(10, 2);
    const std::string first = panelsWindow(november(15));
    const std::string ofToday = " of " + std::to_string(due(first));
    begin(at(2006, 11, 15, 10, 4), "5");
    s->start(true);
    runUntil(12, 1);
    EXPECT_EQ(inForce(), first + " every 05 min");
    EXPECT_TRUE(has(s->days.plan().text, "taken 80" + ofToday)) << "5:25 to 12:00";
    s->recording.Command2_Click();
    follow(false);
    s->press(&Recording::Command1_Click);
    runUntil(13, 1);
    EXPECT_EQ(inForce(), "09:00 to 17:00 every 05 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "");
    EXPECT_EQ(s->store.values["Station/FollowSun"], "0");
    s->recording.Command2_Click();
    follow(true);
    s->press(&Recording::Command1_Click);
    EXPECT_EQ(s->store.values["Station/FollowSun"], "1");
    runUntil(14, 1);
    EXPECT_EQ(inForce(), first + " every 05 min");
    EXPECT_TRUE(has(s->days.plan().text, "taken 104" + ofToday));
    s->clock.jumpWall(16h);
    s->clock.run(2s);
    const std::string second = panelsWindow(november(16));
    EXPECT_EQ(inForce(), second + " every 05 min");
    EXPECT_TRUE(has(ledger("20061116"), "schedule,," + second));
    EXPECT_EQ(s->countLogged("End Time"), 1) << "of the window that was jumped over";
    s->clock.run(4min);
    EXPECT_EQ(count("20061116"), 1) << "at 6:05";
    EXPECT_EQ(s->warnings.text.get(), "");
}

/// Near midnight sun the window is cut to the day, and ends with it once, every day; in polar night
/// the typed one holds.
TEST_F(FollowSun, At69NorthThereIsAWindowEveryDay) {
    beginAt69North(at(2007, 7, 24, 20, 0), "30");
    s->start(true);
    s->clock.run(1s);
    EXPECT_EQ(inForce(), "00:00 to 23:59 every 30 min");
    s->clock.runUntil(at(2007, 7, 25, 0, 0, 30));
    EXPECT_EQ(s->countLogged("End Time"), 1);
    EXPECT_EQ(count("20070725"), 1) << "due at once";
    s->clock.runUntil(at(2007, 7, 26, 0, 2));
    EXPECT_EQ(s->countLogged("End Time"), 2);
    EXPECT_EQ(count("20070725"), 48);
    EXPECT_EQ(s->warnings.text.get(), "");
    beginAt69North(at(2007, 12, 20, 8, 50), "5");
    s->start(true);
    s->clock.runUntil(at(2007, 12, 20, 9, 7));
    EXPECT_EQ(inForce(), "09:00 to 17:00 every 05 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "no sunrise today: 09:00 to 17:00");
    EXPECT_EQ(count("20071220"), 2);
    s->recording.Command2_Click();
    s->panel.Text1[3].text = "70"; // nobody can record by it on such a day
    s->press(&Recording::Command1_Click);
    EXPECT_EQ(s->op.told.back(), "Please set up 'minute' of a EndTime correctly.");
}

/// Half a number must not move the window; what is left in a field does. The PC's clock counts,
/// which here is half an hour ahead of the site's zone.
TEST_F(FollowSun, TheWindowWaitsForASiteThatIsBeingTyped) {
    s->utcOffset = 570min;
    s->start(true);
    runUntil(10, 1);
    const std::string before = inForce();
    EXPECT_EQ(parseSchedule(before)->StartTime,
              every5Minutes(panelsWindow(november(15))).StartTime + 30min);
    s->panel.txt_long.text = "12"; // on the way to 124
    EXPECT_TRUE(s->settings.txt_long_Change());
    s->clock.run(2min);
    EXPECT_EQ(inForce(), before);
    EXPECT_EQ(s->countLogged("End Time"), 0);
    s->panel.txt_long.text = "124.315"; // fifteen degrees are an hour
    EXPECT_TRUE(s->settings.txt_long_Change());
    s->settings.showSite();
    EXPECT_NEAR(wholeMinutes(parseSchedule(inForce())->StartTime),
                wholeMinutes(parseSchedule(before)->StartTime) + 60, 1);
    s->clock.run(2min);
    EXPECT_TRUE(has(ledger(), "schedule,," + inForce()));
}

TEST_F(FollowSun, LocksTheTypedTimesAndIsLockedWhileRecording) {
    s->start(false);
    const auto locks = [&] {
        std::string text;
        for (std::size_t i = 0; i < OperationPanel::kFieldCount; ++i) {
            EXPECT_EQ(s->panel.Text1[i].enabled.get(), s->panel.UpDown1[i].enabled || i == 6);
            text += s->panel.Text1[i].enabled ? 'T' : 't';
        }
        return text + (s->panel.chk_sun.enabled ? 'S' : 's');
    };
    const auto lock = [&](bool on) {
        s->panel.chk_auto.ticked = on;
        s->recording.chk_auto_Click();
        return locks();
    };
    EXPECT_EQ(locks(), "ttttTTTS");
    s->press(&Recording::Command1_Click);
    EXPECT_EQ(locks(), "ttttTtTs");
    lock(true);
    EXPECT_EQ(lock(false), "ttttTTTs");
    s->recording.Command2_Click();
    EXPECT_EQ(locks(), "ttttTTTS");
    EXPECT_EQ(lock(true), "ttttTtTs");
    lock(false);
    follow(false);
    EXPECT_EQ(locks(), "TTTTTTTS");
}

/// Of a day without a ledger its own sun tells what was due; of one that has a ledger, that.
TEST_F(FollowSun, PastDaysAreJudgedByTheirOwnWindow) {
    s->start(true);
    runUntil(4, 10);
    for (const char* day : {"20060621", "20061001"})
        std::filesystem::create_directory(s->dataFolder() / day);
    const auto june = november(15) - std::chrono::days(147);
    const auto october = november(15) - std::chrono::days(45);
    writeFile(
        s->dataFolder() / "Ledger" / "20061001.csv",
        "time,offset,event,file,detail\r\n00:00,+09:00,schedule,,10:00 to 12:00 every 30 min\r\n"
        "00:00,+09:00,recording on,,\r\n23:59,+09:00,program ended,,\r\n");
    const std::string junes = panelsWindow(june);
    EXPECT_GT(due(junes), due(panelsWindow(november(15))) + 40) << "long days";
    DaySurvey survey{{s->days, s->panel, s->clock, s->faults}};
    DayReport report{{s->panel, s->busy, s->log, s->faults, s->clock}, s->module, s->schedules};
    const auto file = s->folder.path() / "report.csv";
    survey.start({june, november(15)});
    report.start({june, october}, file);
    s->clock.run(1min);
    for (const auto& [day, date, dueThen] :
         {std::tuple{june, "2006/06/21,", due(junes)}, {october, "2006/10/01,", 4}}) {
        SCOPED_TRACE(date);
        const std::string missed = std::to_string(dueThen);
        const std::string text = "taken 0 of " + missed + ", " + missed + " missed";
        EXPECT_EQ(survey.results().at(day).text, text);
        EXPECT_TRUE(has(contentsOf(file), date + missed + ",0,0," + missed));
    }
}

} // namespace
} // namespace orvane::test
