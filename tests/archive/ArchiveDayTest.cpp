#include "archive/DaySurvey.h"
#include "archive/ShownDay.h"
#include "simulators/sample-archive/SampleArchive.h"
#include "tests/archive/ArchiveStation.h"
#include "tests/support/FolderTime.h"

namespace orvane::test {
namespace {

/// A station that records every half hour from 9 to 11; it is 9:45 of the 15th.
struct OtherDays : testing::Test {
    OtherDays() {
        s.type(9, 11, 30);
        s.module.RecordFlg = true;
        for (const char* name : {"20061112_090000_00.jpg", "20061114_090000_00.jpg",
                                 "20061114_093007_00.jpg", "20061115_090000_00.jpg"})
            s.write(name);
        shown.refresh();
    }
    const std::string& textOf(unsigned day) {
        shown.turnTo(november(day));
        s.clock.runUntil([this] { return !shown.isReading(); }, 1min);
        shown.refresh();
        return shown.plan().text;
    }

    ArchiveStation s{at(2006, 11, 15, 9, 45)};
    Keograms keograms{{s.imageControl, s.module, s.busy, s.clock}};
    ShownDay shown{{s.days, s.panel, keograms, s.clock, s.faults}};
};

TEST_F(OtherDays, EachIsJudgedAsOneThatIsOver) {
    for (int minute = 0; minute < 11 * 60; ++minute)
        s.write(ImageName::ofCapture(at(2006, 11, 13, 0, minute)).text());
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.now(), 9 * 60 + 45);
    EXPECT_EQ(shown.firstDay(), november(12));
    shown.turnTo(november(13));
    EXPECT_EQ(shown.plan().text, "reading the day's folder...");
    EXPECT_LT(shown.pictures().size(), 100U) << "the window is not held up for the whole folder";
    EXPECT_EQ(textOf(14), "taken 1 of 4, 1 fetched later, 2 missed") << "reading can be left";
    EXPECT_EQ(shown.now(), std::nullopt);
    EXPECT_EQ(shown.plan().begin, 9 * 60);
    EXPECT_EQ(shown.pictureOf(9 * 60 + 30).filename(), "20061114_093007_00.jpg");
    EXPECT_EQ(shown.pictureOf(10 * 60), "");
    EXPECT_EQ(textOf(13), "taken 4 of 4");
    EXPECT_EQ(textOf(12), "taken 1 of 4, 3 missed");
    s.write("20061112_100000_00.jpg"); // filed later
    setFolderTime(s.dataFolder() / "20061112",
                  std::filesystem::file_time_type::clock::now() + 1min);
    shown.refresh();
    EXPECT_EQ(shown.plan().text, "taken 2 of 4, 2 missed");
    textOf(1);
    EXPECT_EQ(shown.day(), november(12)) << "the archive's first";
    EXPECT_FALSE(shown.isToday());
    EXPECT_EQ(textOf(30), s.days.plan().text);
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.day(), november(15));
}

/// Midnight moves today; a day that was turned to stays.
TEST_F(OtherDays, MidnightAndAnotherFolder) {
    s.clock.run(24h);
    shown.refresh();
    EXPECT_EQ(shown.day(), november(16));
    EXPECT_TRUE(shown.isToday());
    textOf(14);
    s.clock.run(24h);
    shown.refresh();
    EXPECT_EQ(shown.day(), november(14));
    s.clock.jumpWall(-72h); // the clock was wrong: it is the 14th
    shown.refresh();
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.day(), november(14));
    textOf(12);
    s.panel.Dir1[0].path = s.folder.path() / "elsewhere";
    shown.refresh();
    EXPECT_TRUE(shown.isToday());
    EXPECT_EQ(shown.firstDay(), november(14)) << "an archive without a folder begins today";
}

using namespace samplearchive;

constexpr std::chrono::local_days kLastDay{std::chrono::days(13467)}; // 2006/11/15

DayState stateOf(Truth truth) {
    constexpr DayState kStates[] = {DayState::NotDue, DayState::Taken, DayState::Fetched,
                                    DayState::Missed, DayState::Off,   DayState::NotRunning};
    return kStates[static_cast<std::size_t>(truth)];
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

/// The sample archive, and a station that looks at it at noon of the next day.
TEST(SixtyDays, AreSurveyedAndShown) {
    const TempFolder folder;
    const SampleArchive archive{folder.path(), kLastDay, SampleArchive::paintGrey};
    ArchiveStation s{WallTime(kLastDay + std::chrono::days(1)) + 12h};
    s.type(6, 18, 10);
    s.panel.Dir1[0].path = folder.path();
    s.days.refresh();
    DaySurvey survey{{s.days, s.panel, s.clock, s.faults}};
    survey.start({archive.day(0).date, kLastDay});
    ASSERT_TRUE(s.clock.runUntil([&] { return survey.found == kSampleDays; }, 1h));
    Keograms keograms{{s.imageControl, s.module, s.busy, s.clock}};
    ShownDay shown{{s.days, s.panel, keograms, s.clock, s.faults}};
    shown.turnTo(archive.day(0).date - std::chrono::days(5));
    EXPECT_EQ(shown.day(), archive.day(0).date) << "the archive's first";
    for (const SampleDay& day : archive.days()) {
        // a file with something in it is a picture to the calendar: it looks at names and sizes
        const DaySurvey::Result& result = survey.results().at(day.date);
        const int pictures = day.countBySize(Truth::Taken) + day.countBySize(Truth::Fetched);
        const int wanted = day.due() - day.countBySize(Truth::Off);
        ASSERT_EQ(result.share.has_value(), wanted > 0) << day.digits;
        EXPECT_DOUBLE_EQ(result.share.value_or(0), wanted == 0 ? 0 : 1.0 * pictures / wanted);
        EXPECT_EQ(result.isRecorded, day.date != archive.day(19).date) << day.digits;
        EXPECT_EQ(result.text, textOf(day, &SampleDay::countBySize)) << day.digits;

        shown.turnTo(day.date);
        ASSERT_TRUE(s.clock.runUntil([&] { return !shown.isReading(); }, 1min));
        shown.refresh();
        ASSERT_EQ(shown.day(), day.date);
        EXPECT_EQ(shown.plan().text, textOf(day, &SampleDay::count)) << day.digits;
        std::set<std::string> names;
        for (const FiledPicture& picture : shown.pictures())
            names.insert(picture.file.filename().string());
        EXPECT_EQ(names, day.pictures) << day.digits;
        for (int minute = 0; minute < kDayMinutes; ++minute) {
            SCOPED_TRACE(day.digits + " " + minuteText(minute));
            const auto place = static_cast<std::size_t>(minute);
            const SampleMinute& was = day.minutes[place];
            ASSERT_EQ(shown.plan().isDue[place], was.isDue);
            ASSERT_EQ(shown.plan().states[place], stateOf(was.truth));
            ASSERT_EQ(shown.detailOf(minute), was.detail);
        }
    }
}

} // namespace
} // namespace orvane::test
