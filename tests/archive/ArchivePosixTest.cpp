#include "archive/FilmFile.h"
#include "archive/FolderScan.h"
#include "platform/Paths.h"
#include "platform/qt/LibjpegImageControl.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/archive/ArchiveStation.h"

#include <QTest>

namespace orvane::test {
namespace {

/// The program ffmpeg itself, where it is installed. It runs at the lowest priority, so each start
/// of it is slow on a busy machine.
TEST(FilmOfFfmpeg, HasItsPicturesTheirColoursAndItsLength) {
    constexpr int kPatience = 120'000; // ms
    ArchiveStation s{at(2006, 11, 20)};
    QtClock clock;
    LibjpegImageControl control{clock};
    QtProcess process{clock};
    if (process.find("ffmpeg").empty()) GTEST_SKIP() << "ffmpeg is not installed";
    for (int minute = 10; minute < 20; ++minute) {
        QImage picture(321, 241, QImage::Format_RGB32); // no even number of either
        picture.fill(QColor(200, 60, 8 * minute));
        s.write("20061115_09" + std::to_string(minute) + "00_00.jpg", encoded(picture));
    }
    FilmFile film{{s.panel, s.busy, s.log, s.faults, clock}, control, process, s.store};
    const auto make = [&](const std::filesystem::path& target) {
        film.start({november(15), november(15)}, {.rows = 120, .rate = 10}, target);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !film.running; }, kPatience));
        return film.text.get();
    };
    const std::string told = make(s.folder.path() / "gone" / "film.mp4");
    EXPECT_TRUE(told.starts_with("Ended early: ffmpeg failed: ")) << told;
    EXPECT_NE(told.find("No such file or directory"), std::string::npos) << "in its words" << told;

    const auto target = s.folder.path() / pathFromUtf8("a film \xC3\xA4.mp4");
    ASSERT_EQ(make(target), "a film \xC3\xA4.mp4 is written: 10 pictures, 1.0 s.");
    const auto pixels = s.folder.path() / "pixels";
    process.start(process.find("ffmpeg"),
                  {"-hide_banner", "-nostdin", "-nostats", "-i", utf8FromPath(target), "-f",
                   "rawvideo", "-pix_fmt", "rgb24", utf8FromPath(pixels)});
    Task<ProcessEnd> ending = process.end(std::chrono::milliseconds(kPatience));
    ending.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ending.done(); }, kPatience));
    const std::string said = ending.result().said;
    for (const char* expected :
         {"Video: h264", "yuv420p(tv, bt709", " 160x120", " 10 fps", "Duration: 00:00:01.00"})
        EXPECT_NE(said.find(expected), std::string::npos) << expected << " in\n" << said;
    constexpr std::size_t kFrame = 160 * 120 * 3;
    const std::string decoded = contentsOf(pixels);
    ASSERT_EQ(decoded.size(), 10 * kFrame);
    const auto* middle = reinterpret_cast<const unsigned char*>(
        decoded.data() + 9 * kFrame + (60 * 160 + 80) * 3); // of the last picture
    EXPECT_NEAR(middle[0], 200, 6);
    EXPECT_NEAR(middle[1], 60, 6);
    EXPECT_NEAR(middle[2], 152, 6);
}

/// Only an attribute word of exactly 16 marks a sub-folder. Windows and Wine keep other bits of a
/// folder in other ways.
TEST(FolderScan, AReadOnlyFolderCountsAsAFile) {
    using std::filesystem::perms;
    const TempFolder temp;
    const auto folder = temp.path() / "sky";
    std::filesystem::create_directory(folder);
    Module1 module;
    OperationPanel panel;
    panel.Dir1[1].path = temp.path();
    FolderScan scan(module, panel);
    for (const auto& [allowed, count] :
         {std::pair{perms::owner_all, 1}, {perms::owner_read | perms::owner_exec, 2}}) {
        std::filesystem::permissions(folder, allowed);
        scan.file_check("sky");
        EXPECT_EQ(module.foundCount, count);
    }
    EXPECT_EQ(module.foundImages[1], folder);
    std::filesystem::permissions(folder, perms::owner_all);
}

} // namespace
} // namespace orvane::test
