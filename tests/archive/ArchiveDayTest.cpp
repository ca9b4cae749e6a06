#include "archive/DaySurvey.h"
#include "archive/ShownDay.h"
#include "platform/qt/LibjpegImageControl.h"
#include "simulators/sample-archive/SampleArchive.h"
#include "tests/archive/ArchiveStation.h"
#include "tests/support/FolderTime.h"

#include <QPainter>

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

/// A picture of two colours; the second begins at column `from`, and ends as far from the right.
std::string striped(QColor around, QColor middle, QSize size = {320, 480}, int from = 60,
                    int right = 60) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(around);
    QPainter(&picture).fillRect(from, 0, size.width() - right - from, size.height(), middle);
    return encoded(picture, 100);
}

/// Every ten minutes from 9 to 17 are due.
struct Keogram : testing::Test {
    std::vector<FiledPicture> pictures(const std::string& day = "20061115") const {
        return listDay(s.dataFolder() / day).pictures;
    }
    void read(const std::string& day = "20061115") {
        finish(s.clock, keograms.read(pictures(day)));
        EXPECT_TRUE(keograms.isComplete(pictures(day)));
    }
    /// The colour in the middle of a minute's column; invalid for a gap.
    QColor at(int hour, int minute) const {
        const Pixels drawn = keograms.draw(november(15), pictures(), dueMinutes(kTens));
        EXPECT_EQ(drawn.width * drawn.height, static_cast<int>(drawn.data.size()));
        const auto x = static_cast<std::size_t>(hour * 60 + minute);
        const std::uint32_t pixel =
            drawn.data[static_cast<std::size_t>(Keograms::kRows / 2) * kDayMinutes + x];
        return pixel == Keograms::kGap ? QColor() : QColor::fromRgb(pixel);
    }
    static bool isLike(const QColor& a, const QColor& b) {
        const int apart = std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
                          std::abs(a.blue() - b.blue());
        return a.isValid() == b.isValid() && apart < 30;
    }

    static constexpr Schedule kTens{9h, 17h, 10min, {}};
    ArchiveStation s{test::at(2006, 11, 15, 18)};
    LibjpegImageControl control{s.clock};
    Keograms keograms{{control, s.module, s.busy, s.clock}};
};

TEST_F(Keogram, ColumnsStandAtTheirMinutesAndGapsAreDark) {
    s.write("20061115_090000_00.jpg", striped(Qt::red, Qt::blue));
    s.write("20061115_091000_00.jpg", striped(Qt::red, Qt::green));
    // beside the schedule
    s.write("20061115_091500_00.jpg", striped(Qt::red, Qt::yellow, {640, 240}));
    s.write("20061115_093000_00.jpg", "no picture");
    // fetched, with few rows
    s.write("20061115_094007_00.jpg", striped(Qt::red, Qt::blue, {200, 100}));
    s.write("20061115_165000_00.jpg", striped(Qt::red, Qt::green));
    s.write("20061115_200000_00.jpg", striped(Qt::red, Qt::green));
    s.write("20061116_000000_00.jpg", striped(Qt::red, Qt::green));
    read();
    const struct {
        int hour, minute;
        QColor colour;
    } cases[] = {{8, 59, {}},         {9, 0, Qt::blue},    {9, 9, Qt::blue},    {9, 10, Qt::green},
                 {9, 14, Qt::green},  {9, 15, Qt::yellow}, {9, 19, Qt::yellow}, {9, 20, {}},
                 {9, 30, {}},         {9, 40, Qt::blue},   {9, 49, Qt::blue},   {9, 50, {}},
                 {16, 59, Qt::green}, {17, 0, {}},         {20, 0, Qt::green},  {20, 1, {}}};
    for (const auto& [hour, minute, colour] : cases)
        EXPECT_TRUE(isLike(at(hour, minute), colour)) << hour << ":" << minute;
}

/// Whatever the camera's size: the first row is the picture's top.
TEST_F(Keogram, TopAndBottomStayWhereTheyAre) {
    for (const QSize size : {QSize(640, 480), QSize(64, 1000), QSize(300, 240), QSize(100, 50)}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(Qt::white);
        QPainter(&picture).fillRect(0, size.height() / 2, size.width(), size.height(), Qt::black);
        Keograms fresh({control, s.module, s.busy, s.clock});
        s.write("20061115_090000_00.jpg", encoded(picture, 100));
        finish(s.clock, fresh.read(pictures()));
        const Pixels drawn = fresh.draw(november(15), pictures(), dueMinutes(kTens));
        const auto row = [&](int y) {
            return qGray(drawn.data[static_cast<std::size_t>(y) * kDayMinutes + 540]);
        };
        EXPECT_GT(row(0), 230) << size.height();
        EXPECT_GT(row(Keograms::kRows / 2 - 8), 200) << size.height();
        EXPECT_LT(row(Keograms::kRows / 2 + 8), 55) << size.height();
        EXPECT_LT(row(Keograms::kRows - 1), 25) << size.height();
    }
}

TEST_F(Keogram, FollowsTheMirroringAsItIsNow) {
    s.write("20061115_090000_00.jpg", striped(Qt::black, Qt::white, {320, 240}, 160, 0));
    read();
    EXPECT_TRUE(isLike(at(9, 0), Qt::white)) << "the first column of the right half";
    s.module.image.LrFlg = -1;
    EXPECT_FALSE(keograms.isComplete(pictures()));
    EXPECT_FALSE(at(9, 0).isValid()) << "an old column would be of the other side";
    read();
    EXPECT_TRUE(isLike(at(9, 0), Qt::black)) << "which was the left half's last";
}

TEST_F(Keogram, DecodesEachPictureOnceAndOnlyWhileNothingElseIsDone) {
    for (const char* name : {"20061115_090000_00.jpg", "20061115_090000_01.jpg",
                             "20061115_090007_00.jpg", "20061115_091000_00.jpg"})
        s.write(name, striped(Qt::red, Qt::blue));
    {
        const Busy::Hold capture(s.busy);
        Task<> reading = keograms.read(pictures());
        reading.start();
        s.clock.run(1h);
        EXPECT_EQ(keograms.revision(), 0) << "captures go first";
    }
    read();
    EXPECT_EQ(keograms.revision(), 2) << "one picture of each minute";
    read();
    EXPECT_EQ(keograms.revision(), 2);
    s.write("20061115_092000_00.jpg", striped(Qt::red, Qt::blue));
    EXPECT_FALSE(keograms.isComplete(pictures()));
    read();
    EXPECT_EQ(keograms.revision(), 3) << "it grows with each capture";
}

/// Two may want columns at the same time; one may lose interest. Only the last days are kept.
TEST_F(Keogram, ReadersTakeTurnsAndMayGo) {
    for (int minute = 10; minute < 20; ++minute)
        s.write("20061110_09" + std::to_string(minute) + "00_00.jpg", striped(Qt::red, Qt::blue));
    Task<> first = keograms.read(pictures("20061110"));
    Task<> second = keograms.read(pictures("20061110"));
    first.start();
    second.start();
    s.clock.run(10ms);
    first.reset();
    s.clock.runUntil([&] { return second.done(); }, 1h);
    EXPECT_TRUE(keograms.isComplete(pictures("20061110")));
    EXPECT_TRUE(control.picture().isNull()) << "no pixels are left in the control";
    for (const char* day : {"20061111", "20061112", "20061113", "20061114", "20061115", "20061116",
                            "20061117", "20061118", "20061119"}) {
        s.write(day + std::string("_090000_00.jpg"), striped(Qt::red, Qt::blue));
        read(day);
    }
    EXPECT_FALSE(keograms.isComplete(pictures("20061110")));
    EXPECT_TRUE(keograms.isComplete(pictures()));
    EXPECT_TRUE(keograms.isComplete(pictures("20061119")));
}

} // namespace
} // namespace orvane::test
