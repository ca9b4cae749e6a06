#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "archive/ShownDay.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

std::chrono::local_days november(unsigned day) {
    return std::chrono::floor<std::chrono::days>(at(2006, 11, day));
}

/// A station in Japan whose window follows the sun; typed are 9:00 to 17:00.
class FollowSun : public testing::Test {
  protected:
    FollowSun() { start(at(2006, 11, 15, 4, 0)); }
    /// Another start of the program, with the settings and the data folder of the one before.
    void start(WallTime time, const std::string& interval = "5") {
        auto next = std::make_unique<TestStation>(time);
        if (s) next->store.values = s->store.values;
        if (s) stations_.push_back(std::move(s));
        s = std::move(next);
        s->store.values["Operation/IntervalMinute"] = interval;
        s->store.values["Station/FollowSun"] = "1";
        s->store.values["Settings/FillGaps"] = "0";
    }
    void at69North() {
        s->store.values["Operation/Latitude"] = "69.6";
        s->store.values["Operation/Longitude"] = "19";
        s->store.values["Operation/Tz"] = "60";
        s->utcOffset = 1h;
    }
    /// "05:19 to 17:33", from what the panel shows of that day.
    std::string panelsWindow(std::chrono::local_days day) const {
        SunTimes times;
        EXPECT_FALSE(ComputeSunriseSunset(s->module.site, std::chrono::year_month_day(day), times));
        std::string text;
        for (const std::string& time : {times.SunriseText, times.SunsetText}) {
            int hour = -1;
            int minute = -1;
            EXPECT_EQ(std::sscanf(time.c_str(), "%d:%d:00", &hour, &minute), 2) << time;
            text += (text.empty() ? "" : " to ") + minuteText(hour * 60 + minute);
        }
        return text;
    }
    std::string inForce() const { return scheduleText(s->module.schedule); }
    std::string ledger(const std::string& day) const {
        std::string text;
        readWholeFile(data() / "Ledger" / (day + ".csv"), text);
        return text;
    }
    std::filesystem::path data() const {
        return pathFromUtf8(s->store.values.at("DataPath/PathDataFile"));
    }
    std::size_t countOf(const std::string& day) const {
        if (!std::filesystem::exists(data() / day)) return 0;
        using Entries = std::filesystem::directory_iterator;
        return static_cast<std::size_t>(std::distance(Entries(data() / day), Entries()));
    }
    static int due(const std::string& window, int interval) {
        const auto schedule = parseSchedule(window + " every " + twoDigits(interval) + " min");
        EXPECT_TRUE(schedule) << window;
        return dueMinutesPerDay(schedule.value_or(Schedule()));
    }

    std::unique_ptr<TestStation> s;

  private:
    std::vector<std::unique_ptr<TestStation>> stations_;
};

TEST_F(FollowSun, EveryDayHasItsOwnWindow) {
    start(at(2006, 11, 15, 4, 0), "1");
    s->start(true);
    s->clock.run(1s);
    const std::string first = panelsWindow(november(15));
    const std::string second = panelsWindow(november(16));
    ASSERT_NE(first.substr(0, 5), second.substr(0, 5));
    EXPECT_EQ(inForce(), first + " every 01 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "today " + first);
    EXPECT_EQ(s->panel.Text1[0].text.get(), "9");
    const int planned = due(first, 1) + 1;
    EXPECT_EQ(s->module.plannedRecords, planned);
    s->clock.runUntil(at(2006, 11, 15, 17, 45)); // past the window
    EXPECT_EQ(countOf("20061115"), static_cast<std::size_t>(due(first, 1)));
    EXPECT_EQ(s->countLogged("End Time"), 1);
    EXPECT_EQ(timeText(WallTime(november(15)) + s->module.schedule.NextRecTime),
              second.substr(0, 5) + ":00");
    EXPECT_NE(s->days.plan().text.find(", next tomorrow at " + second.substr(0, 5)),
              std::string::npos)
        << s->days.plan().text;
    EXPECT_EQ(s->warnings.text.get(), "");
    s->clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_EQ(inForce(), second + " every 01 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "today " + second);
    EXPECT_EQ(s->module.plannedRecords, due(second, 1) + 1);
    EXPECT_EQ(s->days.plan().text,
              "taken 0 of " + std::to_string(due(second, 1)) + ", next at " + second.substr(0, 5));
    EXPECT_NE(ledger("20061116").find("00:00,+09:00,schedule,," + second + " every 01 min"),
              std::string::npos)
        << ledger("20061116");
    EXPECT_EQ(s->countLogged("End Time"), 1);
}

/// The picture of each due minute, no more, and no warning: through a restart, a stop with another
/// schedule, and a clock that is put forward over midnight.
TEST_F(FollowSun, GoesOnAfterARestartASwitchAndAJump) {
    s->start(true);
    s->clock.runUntil(at(2006, 11, 15, 10, 2));
    const std::string first = panelsWindow(november(15));
    start(at(2006, 11, 15, 10, 4));
    s->start(true);
    s->clock.runUntil(at(2006, 11, 15, 12, 1));
    EXPECT_EQ(inForce(), first + " every 05 min");
    EXPECT_TRUE(s->days.plan().text.starts_with("taken 80 of " + std::to_string(due(first, 5))))
        << s->days.plan().text << " from " << first; // 5:25 to 12:00
    s->recording.Command2_Click();
    s->panel.chk_sun.ticked = false;
    s->recording.chk_sun_Click();
    s->press(&Recording::Command1_Click);
    s->clock.runUntil(at(2006, 11, 15, 13, 1));
    EXPECT_EQ(inForce(), "09:00 to 17:00 every 05 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "");
    EXPECT_EQ(s->store.values["Station/FollowSun"], "0");
    s->recording.Command2_Click();
    s->panel.chk_sun.ticked = true;
    s->recording.chk_sun_Click();
    EXPECT_EQ(s->store.values["Station/FollowSun"], "1");
    s->press(&Recording::Command1_Click);
    s->clock.runUntil(at(2006, 11, 15, 14, 1));
    EXPECT_EQ(inForce(), first + " every 05 min");
    EXPECT_TRUE(s->days.plan().text.starts_with("taken 104 of " + std::to_string(due(first, 5))))
        << s->days.plan().text;
    s->clock.jumpWall(16h);
    s->clock.run(2s);
    const std::string second = panelsWindow(november(16));
    EXPECT_EQ(inForce(), second + " every 05 min");
    EXPECT_NE(ledger("20061116").find("schedule,," + second), std::string::npos);
    EXPECT_EQ(s->countLogged("End Time"), 1) << "of the window that was jumped over";
    s->clock.run(4min);
    EXPECT_EQ(countOf("20061116"), 1U) << "at 6:05";
    EXPECT_EQ(s->warnings.text.get(), "");
}

/// On a PC whose clock is not that of the site's zone; with a zone of half an hour.
TEST_F(FollowSun, ThePcsClockCounts) {
    const struct {
        std::chrono::minutes offset;
        int behind; ///< minutes behind Japan
    } cases[] = {{480min, 60}, {570min, -30}, {540min, 0}};
    for (const auto& [offset, behind] : cases) {
        start(at(2006, 11, 15, 4, 0));
        s->utcOffset = offset;
        s->start(true);
        s->clock.run(1s);
        const auto japan = parseSchedule(panelsWindow(november(15)) + " every 05 min");
        ASSERT_TRUE(japan);
        EXPECT_EQ(s->module.schedule.StartTime, japan->StartTime - std::chrono::minutes(behind));
        EXPECT_EQ(s->module.schedule.EndTime, japan->EndTime - std::chrono::minutes(behind));
    }
    s->utcOffset = 8h; // somebody changes the PC's zone, and with it the clock
    s->clock.jumpWall(-1h);
    s->clock.run(2min);
    EXPECT_EQ(s->module.schedule.StartTime,
              parseSchedule(panelsWindow(november(15)) + " every 05 min")->StartTime - 1h);
}

TEST_F(FollowSun, PolarNightHasTheTypedWindow) {
    at69North();
    start(at(2006, 12, 20, 8, 50));
    s->utcOffset = 1h;
    s->start(true);
    s->clock.runUntil(at(2006, 12, 20, 9, 7));
    EXPECT_EQ(inForce(), "09:00 to 17:00 every 05 min");
    EXPECT_EQ(s->panel.lbl_window.caption.get(), "no sunrise today: 09:00 to 17:00");
    EXPECT_EQ(countOf("20061220"), 2U);
    s->recording.Command2_Click();
    s->panel.Text1[3].text = "70"; // nobody can record by it on such a day
    s->press(&Recording::Command1_Click);
    EXPECT_EQ(s->op.told.back(), "Please set up 'minute' of a EndTime correctly.");
    EXPECT_FALSE(s->module.RecordFlg);
}

/// Near midnight sun the window is cut to the day, and ends with it once, every day.
TEST_F(FollowSun, AWindowToMidnightEndsWithTheDay) {
    at69North();
    start(at(2007, 7, 24, 20, 0), "30");
    s->utcOffset = 1h;
    s->start(true);
    s->clock.run(1s);
    EXPECT_EQ(inForce(), "00:00 to 23:59 every 30 min");
    s->clock.runUntil(at(2007, 7, 25, 0, 0, 30));
    EXPECT_EQ(s->countLogged("End Time"), 1);
    EXPECT_EQ(countOf("20070725"), 1U) << "due at once";
    s->clock.runUntil(at(2007, 7, 26, 0, 2));
    EXPECT_EQ(s->countLogged("End Time"), 2);
    EXPECT_EQ(countOf("20070725"), 48U);
    EXPECT_EQ(s->warnings.text.get(), "");
}

/// A year of midnights: the schedule in force, and the one that is said of tomorrow.
TEST_F(FollowSun, AYearAt69North) {
    at69North();
    start(at(2007, 1, 1, 0, 0, 1), "30");
    s->utcOffset = 1h;
    s->settings.initOperation();
    s->module.RecordFlg = true;
    s->module.schedule = {9h, 17h, 30min, {}};
    int typed = 0;
    int cut = 0;
    std::optional<int> next;
    for (int day = 0; day < 365; ++day) {
        s->days.follow();
        const Schedule& schedule = s->module.schedule;
        typed += s->panel.lbl_window.caption.get().starts_with("no sunrise today: 09:00 to 17:00");
        cut += schedule.StartTime == 0min;
        EXPECT_LT(schedule.StartTime, schedule.EndTime);
        EXPECT_LE(schedule.EndTime, 23h + 59min);
        EXPECT_EQ(schedule.IntervalTime, 30min);
        if (next) {
            EXPECT_TRUE(isDueMinute(schedule, *next)) << day;
            EXPECT_EQ(*next, *s->days.plan().next) << day;
        }
        s->clock.jumpWall(23h + 59min + 50s); // the day's last minute
        s->days.follow();
        const DayPlan& plan = s->days.plan();
        EXPECT_FALSE(plan.nextIsToday);
        next = plan.next;
        s->clock.jumpWall(10s);
    }
    EXPECT_GT(typed, 105); // polar night and midnight sun
    EXPECT_LT(typed, 125);
    EXPECT_GT(cut, 6); // the days beside midnight sun: May 15 to 19, July 24 to 27
    EXPECT_LT(cut, 12);
}

/// Half a number must not move the window; what is left in a field does.
TEST_F(FollowSun, TheWindowWaitsForASiteThatIsBeingTyped) {
    s->start(true);
    s->clock.runUntil(at(2006, 11, 15, 10, 1));
    const std::string before = inForce();
    s->panel.txt_long.text = "12"; // on the way to 124
    EXPECT_TRUE(s->settings.txt_long_Change());
    s->clock.run(2min);
    EXPECT_EQ(inForce(), before);
    EXPECT_EQ(s->countLogged("End Time"), 0);
    s->panel.txt_long.text = "124.315"; // fifteen degrees are an hour
    EXPECT_TRUE(s->settings.txt_long_Change());
    s->settings.showSite();
    const auto moved = parseSchedule(inForce());
    EXPECT_NEAR(wholeMinutes(moved->StartTime), wholeMinutes(parseSchedule(before)->StartTime) + 60,
                1);
    s->clock.run(2min);
    EXPECT_NE(ledger("20061115").find("schedule,," + inForce()), std::string::npos)
        << ledger("20061115");
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
    EXPECT_EQ(locks(), "ttttTTTS");
    s->press(&Recording::Command1_Click);
    EXPECT_EQ(locks(), "ttttTtTs");
    s->panel.chk_auto.ticked = true;
    s->recording.chk_auto_Click();
    s->panel.chk_auto.ticked = false;
    s->recording.chk_auto_Click();
    EXPECT_EQ(locks(), "ttttTTTs");
    s->recording.Command2_Click();
    EXPECT_EQ(locks(), "ttttTTTS");
    s->panel.chk_auto.ticked = true;
    s->recording.chk_auto_Click();
    EXPECT_EQ(locks(), "ttttTtTs");
    s->panel.chk_auto.ticked = false;
    s->recording.chk_auto_Click();
    s->panel.chk_sun.ticked = false;
    s->recording.chk_sun_Click();
    EXPECT_EQ(locks(), "TTTTTTTS");
}

/// Of a day without a ledger its own sun tells what was due, for all that show it; of one that has
/// a ledger, that.
TEST_F(FollowSun, PastDaysAreJudgedByTheirOwnWindow) {
    s->start(true);
    s->clock.runUntil(at(2006, 11, 15, 4, 10));
    std::filesystem::create_directory(data() / "20060621");
    std::filesystem::create_directory(data() / "20061001");
    const auto june = november(15) - std::chrono::days(147);
    ASSERT_EQ(dateDigits(WallTime(june)), "20060621");
    const auto october = november(15) - std::chrono::days(45);
    ASSERT_FALSE(writeToFinalName(
        "time,offset,event,file,detail\r\n00:00,+09:00,schedule,,10:00 to 12:00 every 30 min\r\n"
        "00:00,+09:00,recording on,,\r\n23:59,+09:00,program ended,,\r\n",
        data() / "Ledger" / "20061001.csv"));
    const std::string junes = panelsWindow(june);
    const int dueInJune = due(junes, 5);
    EXPECT_GT(dueInJune, due(panelsWindow(november(15)), 5) + 40) << "long days";

    Keograms keograms{{s->imageControl, s->module, s->busy, s->clock}};
    ShownDay shown{{s->days, s->panel, keograms, s->clock, s->faults}};
    DaySurvey survey{{s->days, s->panel, s->clock, s->faults}};
    DayReport report{{s->panel, s->busy, s->log, s->faults, s->clock}, s->module, s->schedules};
    const auto file = s->folder.path() / "report.csv";
    survey.start({june, november(15)});
    report.start({june, october}, file);
    s->clock.run(1min);
    std::string table;
    readWholeFile(file, table);
    for (const auto& [day, count] : {std::pair(june, dueInJune), {october, 4}}) {
        const std::string missed = std::to_string(count);
        const std::string text = "taken 0 of " + missed + ", " + missed + " missed";
        shown.turnTo(day);
        s->clock.run(1s);
        shown.refresh();
        EXPECT_EQ(shown.plan().text, text);
        EXPECT_EQ(survey.results().at(day).text, text);
        EXPECT_NE(table.find(dateText(WallTime(day)) + "," + missed + ",0,0," + missed),
                  std::string::npos)
            << table;
        if (day == october) continue;
        EXPECT_LT(std::abs(*shown.plan().begin -
                           wholeMinutes(parseSchedule(junes + " every 05 min")->StartTime)),
                  5);
    }
}

/// A past day turned to at another time of the year, without recording since the start.
TEST_F(FollowSun, YesterdaysGapsAreThoseOfItsOwnWindow) {
    s->start(true);
    s->http.answer = [](const std::string&) { return FakeHttp::failed("refused"); };
    s->clock.runUntil(at(2006, 11, 16, 0, 5));
    EXPECT_EQ(s->days.yesterdaysPlan().due, due(panelsWindow(november(15)), 5));
    EXPECT_EQ(s->days.yesterdaysPlan().missed, due(panelsWindow(november(15)), 5));
}

/// Ten minutes behind the day's own end.
TEST_F(FollowSun, TheDaysReportFollowsItsEnd) {
    MailSettings settings;
    settings.server.host = "mail.example.org";
    settings.from = "a@example.org";
    settings.to = "b@example.org";
    settings.daily = true;
    saveMailSettings(s->store, settings);
    s->alerts.start();
    s->start(true);
    s->clock.run(1s);
    const auto end = parseSchedule(panelsWindow(november(15)) + " every 05 min")->EndTime;
    s->clock.runUntil(at(2006, 11, 15) + end + 9min);
    EXPECT_EQ(s->mail.sent.size(), 0U);
    s->clock.run(3min);
    EXPECT_EQ(s->mail.sent.size(), 1U);
    s->clock.runUntil(at(2006, 11, 16, 12, 0));
    EXPECT_EQ(s->mail.sent.size(), 1U);
}

} // namespace
} // namespace orvane::test
