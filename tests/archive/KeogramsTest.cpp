#include "archive/Keograms.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/archive/ArchiveStation.h"

#include <QPainter>

namespace orvane::test {
namespace {

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
