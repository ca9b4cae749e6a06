#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "archive/ShownDay.h"
#include "tests/archive/ArchiveStation.h"
#include "tests/support/SampleArchive.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr std::chrono::local_days kLastDay{std::chrono::days(13467)}; // 2006/11/15

/// The sample archive, and a station that looks at it at noon of the next day.
class SixtyDays : public testing::Test {
  protected:
    SixtyDays() {
        s.type(6, 18, 10);
        s.panel.Dir1[0].path = folder.path();
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
    ArchiveStation s{WallTime(kLastDay + std::chrono::days(1)) + 12h};
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

/// The archive is as eventful as it is meant to be: counted by hand from the story.
TEST_F(SixtyDays, AreAsTheStoryTells) {
    struct Case {
        int day, due, taken, fetched, missed, off, notRunning;
    };
    const Case cases[] = {
        {1, 72, 72, 0, 0, 0, 0},  {4, 72, 60, 6, 6, 0, 0},    {7, 56, 56, 0, 0, 0, 0},
        {11, 72, 0, 1, 0, 71, 0}, {15, 72, 60, 1, 0, 0, 11},  {19, 72, 0, 0, 0, 0, 72},
        {29, 95, 95, 0, 0, 0, 0}, {36, 240, 234, 0, 6, 0, 0}, {46, 121, 120, 0, 1, 0, 0},
        {52, 72, 54, 0, 0, 9, 9}, {56, 72, 0, 0, 72, 0, 0},   {58, 72, 63, 2, 7, 0, 0}};
    for (const auto& [number, due, taken, fetched, missed, off, notRunning] : cases) {
        const SampleDay& day = archive.day(number);
        EXPECT_EQ(day.due(), due) << number;
        EXPECT_EQ(day.count(Truth::Taken), taken) << number;
        EXPECT_EQ(day.count(Truth::Fetched), fetched) << number;
        EXPECT_EQ(day.count(Truth::Missed), missed) << number;
        EXPECT_EQ(day.count(Truth::Off), off) << number;
        EXPECT_EQ(day.count(Truth::NotRunning), notRunning) << number;
    }
    EXPECT_FALSE(std::filesystem::exists(ledgerOf(folder.path(), archive.day(19).date)));
}

TEST_F(SixtyDays, AreJudgedMinuteByMinute) {
    for (const SampleDay& sample : archive.days()) {
        ArchiveDay day;
        day.turnTo(folder.path(), sample.date);
        day.folder.refresh();
        const DayPlan plan = day.planPast(kPresent, 0);
        EXPECT_EQ(differences(sample, plan), "") << sample.digits;
        EXPECT_EQ(plan.text, textOf(sample, &SampleDay::count)) << sample.digits;
        for (int minute = 0; minute < kDayMinutes; ++minute)
            EXPECT_EQ(day.detailOf(plan, minute, 0),
                      sample.minutes[static_cast<std::size_t>(minute)].detail)
                << sample.digits << " " << minuteText(minute);
    }
}

std::string reportOf(const SampleDay& day) {
    std::string first, last;
    for (const std::string& name : day.pictures) {
        if (!name.starts_with(day.digits)) continue;
        last = name.substr(9, 2) + ":" + name.substr(11, 2) + ":" + name.substr(13, 2);
        if (first.empty()) first = last;
    }
    const int notRecorded = day.count(Truth::Off) + day.count(Truth::NotRunning);
    std::string line = day.digits + "," + std::to_string(day.due());
    for (const Truth truth : {Truth::Taken, Truth::Fetched, Truth::Missed})
        line += "," + std::to_string(day.count(truth));
    line.insert(6, "/").insert(4, "/");
    return line + "," + first + "," + last + "," +
           (notRecorded == 0 ? "" : std::to_string(notRecorded) + " not recorded") + "\r\n";
}

TEST_F(SixtyDays, AreReported) {
    DayReport report{s.forSpans(), s.module, s.schedules};
    const auto file = s.folder.path() / "report.csv";
    report.start({archive.day(0).date, kLastDay}, file);
    s.finishWork(report);
    std::string expected = "date,due,taken,fetched,missed,first,last,note\r\n";
    for (const SampleDay& day : archive.days())
        expected += reportOf(day);
    EXPECT_EQ(contentsOf(file), expected);
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
