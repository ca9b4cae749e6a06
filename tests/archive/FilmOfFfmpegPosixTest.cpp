#include "archive/FilmFile.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/qt/LibjpegImageControl.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Fakes.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr int kPictures = 30;

/// The program ffmpeg itself, where it is installed; ffprobe looks at what it made.
struct FilmOfFfmpeg : testing::Test {
    void SetUp() override {
        if (process.find("ffmpeg").empty() || process.find("ffprobe").empty())
            GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
        panel.Dir1[0].path = folder.path();
        const auto day = folder.path() / "20061115";
        std::filesystem::create_directory(day);
        for (int minute = 0; minute < kPictures; ++minute) {
            QImage picture(321, 241, QImage::Format_RGB32); // no even number of either
            picture.fill(QColor(200, 60, 8 * minute));
            const std::string number = std::to_string(100 + minute).substr(1);
            writeFile(day / ("20061115_09" + number + "00_00.jpg"), encoded(picture));
        }
    }
    void start(const FilmOptions& options) {
        constexpr std::chrono::year_month_day day{std::chrono::year(2006), std::chrono::month(11),
                                                  std::chrono::day(15)};
        film.start({std::chrono::local_days(day), std::chrono::local_days(day)}, options, target);
    }
    std::string outputOf(const std::string& program, const std::vector<std::string>& arguments) {
        QtProcess other(clock);
        other.start(other.find(program), arguments);
        Task<ProcessEnd> ending = other.end(20s);
        ending.start();
        const ProcessEnd end = finish(ending);
        EXPECT_FALSE(end.fault);
        return end.said;
    }

    TempFolder folder;
    QtClock clock;
    OperationPanel panel;
    Busy busy;
    FakeOperator op{clock};
    ErrorLog log{folder.path(), clock, {[] { return ""; }, [](const std::string&) {}}};
    Faults faults{log, clock, op};
    FakeStore store;
    LibjpegImageControl control{clock};
    QtProcess process{clock};
    std::filesystem::path target = folder.path() / pathFromUtf8("a film \xC3\xA4.mp4");
    FilmFile film{{panel, busy, log, faults, clock}, control, process, store};
};

TEST_F(FilmOfFfmpeg, HasItsPicturesTheirColoursAndItsLength) {
    start({.rows = 120, .rate = 10});
    runEventLoopUntil([&] { return !film.running; });
    ASSERT_EQ(film.text.get(), "a film \xC3\xA4.mp4 is written: 30 pictures, 3.0 s.");
    const std::string probed =
        outputOf("ffprobe", {"-v", "error", "-count_frames", "-show_entries",
                             "stream=codec_name,width,height,pix_fmt,color_space,r_frame_rate,"
                             "nb_read_frames:format=duration",
                             "-of", "default=noprint_wrappers=1", utf8FromPath(target)});
    for (const char* expected :
         {"codec_name=h264", "width=160", "height=120", "pix_fmt=yuv420p", "color_space=bt709",
          "r_frame_rate=10/1", "nb_read_frames=30", "duration=3.000000"})
        EXPECT_NE(probed.find(expected), std::string::npos) << expected << " in\n" << probed;

    const auto last = folder.path() / "last.png";
    outputOf("ffmpeg", {"-v", "error", "-i", utf8FromPath(target), "-vf", "select=gte(n\\,29)",
                        "-frames:v", "1", last.string()});
    const QColor middle = QImage(QString::fromStdString(last.string())).pixelColor(80, 60);
    EXPECT_NEAR(middle.red(), 200, 6);
    EXPECT_NEAR(middle.green(), 60, 6);
    EXPECT_NEAR(middle.blue(), 232, 6);
}

TEST_F(FilmOfFfmpeg, CancelledInTheMiddleLeavesNothing) {
    start({.rate = 1});
    const auto part = temporaryOf(target);
    runEventLoopUntil([&] { return std::filesystem::exists(part); });
    film.cancel();
    EXPECT_EQ(film.text.get(), "Cancelled. No film was written.");
    EXPECT_FALSE(std::filesystem::exists(part));
    EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(FilmOfFfmpeg, AFolderThatIsNotThereIsToldInItsWords) {
    target = folder.path() / "gone" / "film.mp4";
    start({});
    runEventLoopUntil([&] { return !film.running; });
    const std::string told = film.text.get();
    EXPECT_TRUE(told.starts_with("Ended early: ffmpeg failed: ")) << told;
    EXPECT_NE(told.find("No such file or directory"), std::string::npos) << told;
}

} // namespace
} // namespace orvane::test
