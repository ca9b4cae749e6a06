#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "archive/ShownDay.h"
#include "tests/support/SampleArchive.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::local_days kLastDay{std::chrono::days(13467)}; // 2006/11/15

/// The sample archive, and a station that looks at it at noon of the next day.
class SixtyDays : public testing::Test {
  protected:
    SixtyDays() {
        s.panel.Dir1[0].path = folder.path();
        const char* fields[] = {"6", "0", "18", "0", "", "10", "0"};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            s.panel.Text1[i].text = std::string(fields[i]);
        s.module.schedule = kPresent;
        s.module.image.Delay = 0;
        s.days.refresh();
    }

    static constexpr Schedule kPresent{6h, 18h, 10min, {}};

    /// Nothing of it is changed.
    struct Shared {
        TempFolder folder;
        SampleArchive archive{folder.path(), kLastDay, SampleArchive::paintGrey};
    };
    static Shared& shared() {
        static Shared shared;
        return shared;
    }

    const TempFolder& folder = shared().folder;
    const SampleArchive& archive = shared().archive;
    TestStation s{WallTime(kLastDay + std::chrono::days(1)) + 12h};
};

DayState stateOf(Truth truth) {
    constexpr DayState kStates[] = {DayState::NotDue, DayState::Taken, DayState::Fetched,
                                    DayState::Missed, DayState::Off,   DayState::NotRunning};
    return kStates[static_cast<std::size_t>(truth)];
}

/// "09:30": what differs between a plan and what was; empty when nothing does.
std::string differences(const SampleDay& day, const DayPlan& plan) {
    std::string text;
    for (std::size_t minute = 0; minute < day.minutes.size(); ++minute) {
        const SampleMinute& was = day.minutes[minute];
        const DayState state = plan.states[minute];
        if (was.isDue == plan.isDue[minute] && stateOf(was.truth) == state) continue;
        text += minuteText(static_cast<int>(minute)) + " is " +
                std::to_string(static_cast<int>(state)) + " and was " +
                std::to_string(static_cast<int>(stateOf(was.truth))) +
                (plan.isDue[minute] ? ", due; " : ", not due; ");
    }
    return text;
}

std::string textOf(const SampleDay& day, int (SampleDay::*count)(Truth) const) {
    const auto of = [&](Truth truth) { return (day.*count)(truth); };
    const auto part = [](int number, const char* what) {
        return number == 0 ? "" : ", " + std::to_string(number) + what;
    };
    return "taken " + std::to_string(of(Truth::Taken)) + " of " + std::to_string(day.due()) +
           part(of(Truth::Fetched), " fetched later") + part(of(Truth::Missed), " missed") +
           part(of(Truth::Off) + of(Truth::NotRunning), " not recorded");
}

/// The archive is what it is meant to be: counted by hand.
TEST_F(SixtyDays, AreAsTheStoryTells) {
    struct Case {
        int day, due, taken, fetched, missed, off, notRunning;
    };
    const Case cases[] = {
        {0, 72, 59, 0, 0, 0, 13},   {1, 72, 72, 0, 0, 0, 0},    {3, 72, 53, 0, 19, 0, 0},
        {4, 72, 60, 6, 6, 0, 0},    {6, 68, 68, 0, 0, 0, 0},    {7, 56, 56, 0, 0, 0, 0},
        {9, 72, 49, 0, 0, 23, 0},   {10, 72, 72, 0, 0, 0, 0},   {11, 72, 0, 1, 0, 71, 0},
        {12, 72, 72, 0, 0, 0, 0},   {14, 72, 55, 0, 0, 0, 17},  {15, 72, 60, 1, 0, 0, 11},
        {18, 72, 51, 0, 0, 0, 21},  {19, 72, 0, 0, 0, 0, 72},   {20, 72, 49, 0, 0, 0, 23},
        {21, 72, 71, 0, 0, 0, 1},   {22, 72, 69, 2, 0, 0, 1},   {23, 72, 71, 0, 0, 0, 1},
        {24, 72, 65, 1, 6, 0, 0},   {25, 72, 66, 0, 6, 0, 0},   {26, 72, 58, 0, 0, 0, 14},
        {27, 72, 64, 0, 0, 0, 8},   {28, 72, 69, 0, 3, 0, 0},   {29, 95, 95, 0, 0, 0, 0},
        {30, 144, 144, 0, 0, 0, 0}, {31, 138, 138, 0, 0, 0, 0}, {32, 121, 121, 0, 0, 0, 0},
        {36, 240, 234, 0, 6, 0, 0}, {38, 72, 72, 0, 0, 0, 0},   {40, 72, 72, 0, 0, 0, 0},
        {44, 104, 104, 0, 0, 0, 0}, {45, 144, 144, 0, 0, 0, 0}, {46, 121, 120, 0, 1, 0, 0},
        {52, 72, 54, 0, 0, 9, 9},   {53, 72, 60, 0, 0, 0, 12},  {54, 72, 70, 0, 2, 0, 0},
        {56, 72, 0, 0, 72, 0, 0},   {58, 72, 63, 2, 7, 0, 0},   {59, 72, 72, 0, 0, 0, 0}};
    for (const Case& test : cases) {
        const SampleDay& day = archive.day(test.day);
        EXPECT_EQ(day.due(), test.due) << test.day;
        EXPECT_EQ(day.count(Truth::Taken), test.taken) << test.day;
        EXPECT_EQ(day.count(Truth::Fetched), test.fetched) << test.day;
        EXPECT_EQ(day.count(Truth::Missed), test.missed) << test.day;
        EXPECT_EQ(day.count(Truth::Off), test.off) << test.day;
        EXPECT_EQ(day.count(Truth::NotRunning), test.notRunning) << test.day;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path() / archive.day(19).digits));
    EXPECT_FALSE(std::filesystem::exists(ledgerOf(folder.path(), archive.day(19).date)));
    EXPECT_EQ(archive.day(38).minutes[9 * 60 + 10].detail,
              archive.day(38).digits + "_091100_00.jpg");
    EXPECT_TRUE(archive.day(46).pictures.contains(archive.day(46).digits + "_021000_01.jpg"));
    const auto file = archive.day(1).digits + "_120000_00.jpg";
    EXPECT_EQ(decoded(folder.path() / archive.day(1).digits / file).size(), QSize(64, 48));
    EXPECT_EQ(archive.day(24).countBySize(Truth::Taken), 68);
    EXPECT_EQ(archive.day(24).countBySize(Truth::Missed), 4);
    EXPECT_EQ(archive.day(58).countBySize(Truth::Taken), 64);
}

TEST_F(SixtyDays, AreJudgedMinuteByMinute) {
    for (const SampleDay& sample : archive.days()) {
        ArchiveDay day;
        day.turnTo(folder.path(), sample.date);
        day.folder.refresh();
        const DayPlan plan = day.planPast(kPresent, 0);
        EXPECT_EQ(differences(sample, plan), "") << sample.digits;
        EXPECT_EQ(plan.due, sample.due()) << sample.digits;
        EXPECT_EQ(plan.taken, sample.count(Truth::Taken)) << sample.digits;
        EXPECT_EQ(plan.fetched, sample.count(Truth::Fetched)) << sample.digits;
        EXPECT_EQ(plan.missed, sample.count(Truth::Missed)) << sample.digits;
        EXPECT_EQ(plan.notRecorded, sample.count(Truth::Off) + sample.count(Truth::NotRunning));
        for (int minute = 0; minute < kDayMinutes; ++minute)
            EXPECT_EQ(day.detailOf(plan, minute, 0),
                      sample.minutes[static_cast<std::size_t>(minute)].detail)
                << sample.digits << " " << minuteText(minute);
    }
}

/// The fields of a table's lines, read by this test's own rules: no line break in a field.
std::vector<std::vector<std::string>> tableOf(const std::string& text) {
    std::vector<std::vector<std::string>> table(1, {""});
    bool isQuoted = false;
    for (const char c : text) {
        if (c == '"') isQuoted = !isQuoted; // a doubled one changes it twice
        if (c == '"' || c == '\r') continue;
        if (c == '\n') {
            table.push_back({""});
        } else if (c == ',' && !isQuoted) {
            table.back().emplace_back();
        } else {
            table.back().back() += c;
        }
    }
    table.pop_back();
    return table;
}

std::vector<std::string> lineOf(const SampleDay& day) {
    std::string first, last;
    for (const std::string& name : day.pictures) {
        if (!name.starts_with(day.digits)) continue;
        last = name.substr(9, 2) + ":" + name.substr(11, 2) + ":" + name.substr(13, 2);
        if (first.empty()) first = last;
    }
    const int notRecorded = day.count(Truth::Off) + day.count(Truth::NotRunning);
    return {day.digits.substr(0, 4) + "/" + day.digits.substr(4, 2) + "/" + day.digits.substr(6),
            std::to_string(day.due()),
            std::to_string(day.count(Truth::Taken)),
            std::to_string(day.count(Truth::Fetched)),
            std::to_string(day.count(Truth::Missed)),
            first,
            last,
            notRecorded == 0 ? "" : std::to_string(notRecorded) + " not recorded"};
}

TEST_F(SixtyDays, AreReported) {
    DayReport report{{s.panel, s.busy, s.log, s.faults, s.clock}, s.module, s.schedules};
    const auto file = s.folder.path() / "report.csv";
    report.start({archive.day(0).date, kLastDay}, file);
    ASSERT_TRUE(s.clock.runUntil([&] { return !report.running; }, 1h));
    const auto table = tableOf(contentsOf(file));
    ASSERT_EQ(table.size(), 1U + kSampleDays);
    EXPECT_EQ(table[0], tableOf("date,due,taken,fetched,missed,first,last,note\n")[0]);
    for (std::size_t day = 0; day < kSampleDays; ++day)
        EXPECT_EQ(table[day + 1], lineOf(archive.days()[day]));
}

/// A file with something in it is a picture to the calendar: it looks at names and sizes only.
TEST_F(SixtyDays, AreSurveyedByNamesAndSizes) {
    DaySurvey survey{{s.days, s.panel, s.clock, s.faults}};
    survey.start({archive.day(0).date, kLastDay});
    ASSERT_TRUE(s.clock.runUntil([&] { return survey.found == kSampleDays; }, 1h));
    for (const SampleDay& day : archive.days()) {
        const DaySurvey::Result& result = survey.results().at(day.date);
        const int pictures = day.countBySize(Truth::Taken) + day.countBySize(Truth::Fetched);
        const int wanted = day.due() - day.countBySize(Truth::Off);
        ASSERT_EQ(result.share.has_value(), wanted > 0) << day.digits;
        EXPECT_DOUBLE_EQ(result.share.value_or(0), wanted == 0 ? 0 : 1.0 * pictures / wanted);
        EXPECT_EQ(result.isRecorded, day.date != archive.day(19).date) << day.digits;
        EXPECT_EQ(result.text, textOf(day, &SampleDay::countBySize)) << day.digits;
    }
}

TEST_F(SixtyDays, AreShownAsTheOperatorTurns) {
    FakeImageControl control;
    Keograms keograms{{control, s.module, s.busy, s.clock}};
    ShownDay shown{{s.days, s.panel, keograms, s.clock, s.faults}};
    shown.turnTo(archive.day(0).date - std::chrono::days(5));
    EXPECT_EQ(shown.day(), archive.day(0).date) << "the archive's first";
    for (auto day = archive.days().rbegin(); day != archive.days().rend(); ++day) {
        shown.turnTo(day->date);
        ASSERT_TRUE(s.clock.runUntil([&] { return !shown.isReading(); }, 1min));
        shown.refresh();
        ASSERT_EQ(shown.day(), day->date);
        EXPECT_EQ(differences(*day, shown.plan()), "") << day->digits;
        EXPECT_EQ(shown.plan().text, textOf(*day, &SampleDay::count)) << day->digits;
        std::set<std::string> names;
        for (const FiledPicture& picture : shown.pictures())
            names.insert(picture.file.filename().string());
        EXPECT_EQ(names, day->pictures) << day->digits;
        for (int minute = 0; minute < kDayMinutes; ++minute)
            ASSERT_EQ(shown.detailOf(minute), day->minutes[static_cast<std::size_t>(minute)].detail)
                << day->digits << " " << minuteText(minute);
    }
}

} // namespace
} // namespace orvane::test
