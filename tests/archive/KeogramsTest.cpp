#include "archive/Keograms.h"

#include "platform/Files.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A picture of two colours; the second begins at column `from`, and ends as far from the right.
std::string striped(QColor around, QColor middle, QSize size = {320, 480}, int from = 60,
                    int right = 60) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(around);
    for (int y = 0; y < size.height(); ++y)
        for (int x = from; x < size.width() - right; ++x)
            picture.setPixelColor(x, y, middle);
    return encoded(picture, 100);
}

class Keogram : public testing::Test {
  protected:
    Keogram() { isDue = everyTenMinutes(); }
    static DueMinutes everyTenMinutes() {
        DueMinutes due{};
        for (int minute = 9 * 60; minute < 17 * 60; minute += 10)
            due[static_cast<std::size_t>(minute)] = true;
        return due;
    }
    void file(const std::string& name, const std::string& bytes) {
        const auto folder = data.path() / name.substr(0, 8);
        std::filesystem::create_directory(folder);
        writeFile(folder / name, bytes);
    }
    std::vector<FiledPicture> pictures(const std::string& day = "20061115") const {
        return listDay(data.path() / day).pictures;
    }
    void read(const std::string& day = "20061115") {
        finish(clock, keograms.read(pictures(day)));
        EXPECT_TRUE(keograms.isComplete(pictures(day)));
    }
    /// The colour in the middle of a minute's column; invalid for a gap.
    QColor at(int hour, int minute) const {
        const Pixels drawn = keograms.draw(november15, pictures(), isDue);
        EXPECT_EQ(drawn.width * drawn.height, static_cast<int>(drawn.data.size()));
        const auto x = static_cast<std::size_t>(hour * 60 + minute);
        const std::uint32_t pixel =
            drawn.data[static_cast<std::size_t>(Keograms::kRows / 2) * kDayMinutes + x];
        return pixel == Keograms::kGap ? QColor() : QColor::fromRgb(pixel);
    }
    static bool isLike(const QColor& a, const QColor& b) {
        return a.isValid() && std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
                                      std::abs(a.blue() - b.blue()) <
                                  30;
    }

    const std::chrono::local_days november15 =
        std::chrono::floor<std::chrono::days>(test::at(2006, 11, 15));
    TempFolder data;
    JumpingClock clock{test::at(2006, 11, 15, 18)};
    LibjpegImageControl control{clock};
    Module1 module;
    Busy busy;
    Keograms keograms{{control, module, busy, clock}};
    DueMinutes isDue{};
};

TEST_F(Keogram, ColumnsStandAtTheirMinutesAndGapsAreDark) {
    file("20061115_090000_00.jpg", striped(Qt::red, Qt::blue));
    file("20061115_091000_00.jpg", striped(Qt::red, Qt::green));
    file("20061115_091500_00.jpg", striped(Qt::red, Qt::yellow, {640, 240})); // beside the schedule
    file("20061115_093000_00.jpg", "no picture");
    file("20061115_094007_00.jpg",
         striped(Qt::red, Qt::blue, {200, 100})); // fetched, with few rows
    file("20061115_165000_00.jpg", striped(Qt::red, Qt::green));
    file("20061115_200000_00.jpg", striped(Qt::red, Qt::green));
    file("20061116_000000_00.jpg", striped(Qt::red, Qt::green));
    read();
    const struct {
        int hour, minute;
        QColor colour;
    } cases[] = {{8, 59, {}},         {9, 0, Qt::blue},    {9, 9, Qt::blue},    {9, 10, Qt::green},
                 {9, 14, Qt::green},  {9, 15, Qt::yellow}, {9, 19, Qt::yellow}, {9, 20, {}},
                 {9, 30, {}},         {9, 40, Qt::blue},   {9, 49, Qt::blue},   {9, 50, {}},
                 {16, 59, Qt::green}, {17, 0, {}},         {20, 0, Qt::green},  {20, 1, {}}};
    for (const auto& [hour, minute, colour] : cases) {
        const QColor drawn = at(hour, minute);
        EXPECT_TRUE(colour.isValid() ? isLike(drawn, colour) : !drawn.isValid())
            << hour << ":" << minute;
    }
}

/// Whatever the camera's size: the first row is the picture's top.
TEST_F(Keogram, TopAndBottomStayWhereTheyAre) {
    for (const QSize size : {QSize(640, 480), QSize(64, 1000), QSize(300, 240), QSize(100, 50)}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(Qt::white);
        for (int y = size.height() / 2; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                picture.setPixelColor(x, y, Qt::black);
        Keograms fresh({control, module, busy, clock});
        file("20061115_090000_00.jpg", encoded(picture, 100));
        finish(clock, fresh.read(pictures()));
        const Pixels drawn = fresh.draw(november15, pictures(), isDue);
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
    file("20061115_090000_00.jpg", striped(Qt::black, Qt::white, {320, 240}, 160, 0));
    read();
    EXPECT_TRUE(isLike(at(9, 0), Qt::white)) << "the first column of the right half";
    module.image.LrFlg = -1;
    EXPECT_FALSE(keograms.isComplete(pictures()));
    EXPECT_FALSE(at(9, 0).isValid()) << "an old column would be of the other side";
    read();
    EXPECT_TRUE(isLike(at(9, 0), Qt::black)) << "which was the left half's last";
}

TEST_F(Keogram, DecodesEachPictureOnceAndOnlyWhileNothingElseIsDone) {
    for (const char* name : {"20061115_090000_00.jpg", "20061115_090000_01.jpg",
                             "20061115_090007_00.jpg", "20061115_091000_00.jpg"})
        file(name, striped(Qt::red, Qt::blue));
    {
        const Busy::Hold capture(busy);
        Task<> reading = keograms.read(pictures());
        reading.start();
        clock.run(1h);
        EXPECT_EQ(keograms.revision(), 0) << "captures go first";
    }
    read();
    EXPECT_EQ(keograms.revision(), 2) << "one picture of each minute";
    read();
    EXPECT_EQ(keograms.revision(), 2);
    file("20061115_092000_00.jpg", striped(Qt::red, Qt::blue));
    EXPECT_FALSE(keograms.isComplete(pictures()));
    read();
    EXPECT_EQ(keograms.revision(), 3) << "it grows with each capture";
}

/// Two may want columns at the same time; one may lose interest.
TEST_F(Keogram, ReadersTakeTurnsAndMayGo) {
    for (int minute = 10; minute < 40; ++minute)
        file("20061115_09" + std::to_string(minute) + "00_00.jpg", striped(Qt::red, Qt::blue));
    Task<> first = keograms.read(pictures());
    Task<> second = keograms.read(pictures());
    first.start();
    second.start();
    clock.run(10ms);
    first.reset();
    clock.runUntil([&] { return second.done(); }, 1h);
    EXPECT_TRUE(keograms.isComplete(pictures()));
    EXPECT_TRUE(control.picture().isNull()) << "no pixels are left in the control";
}

TEST_F(Keogram, OnlyTheLastDaysStayInMemory) {
    std::vector<std::string> days;
    for (int day = 10; day < 20; ++day) {
        days.push_back("200611" + std::to_string(day));
        file(days.back() + "_090000_00.jpg", striped(Qt::red, Qt::blue));
        read(days.back());
    }
    EXPECT_FALSE(keograms.isComplete(pictures(days.front())));
    EXPECT_TRUE(keograms.isComplete(pictures(days[5])));
    EXPECT_TRUE(keograms.isComplete(pictures(days.back())));
}

} // namespace
} // namespace orvane::test
