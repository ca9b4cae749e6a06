#include "archive/FilmFile.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/archive/ArchiveStation.h"
#include "tests/support/FakeProcess.h"

namespace orvane::test {
namespace {

/// A station with an ffmpeg that is none, and the real imaging control.
struct Film : ArchiveStation {
    Film() : ArchiveStation(at(2006, 11, 20, 12, 0)) { std::filesystem::create_directory(films); }

    /// A picture of one colour, `grey` for all three.
    void picture(const std::string& name, int grey, QSize size = {64, 48}) const {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor(grey, grey, grey));
        write(name, encoded(image));
    }
    void someMinutes(int count) const {
        for (int minute = 0; minute < count; ++minute)
            picture("20061115_09" + twoDigits(minute) + "00_00.jpg", 10 * minute);
    }
    std::string make(unsigned last = 15) {
        film.start({november(15), november(last)}, {}, target);
        finishWork(film);
        return film.text.get();
    }
    /// The brightness of each picture that was fed, in its middle, to the nearest ten.
    std::vector<int> greys(QSize size = {64, 48}) const {
        std::vector<int> found;
        const auto width = static_cast<std::size_t>(size.width());
        const auto height = static_cast<std::size_t>(size.height());
        const std::size_t middle = (height / 2 * width + width / 2) * 4;
        for (std::size_t i = 0; i < process.fed.size(); i += width * height * 4)
            found.push_back((static_cast<unsigned char>(process.fed[i + middle]) + 5) / 10 * 10);
        return found;
    }
    std::string arguments() const {
        std::string all;
        for (const std::string& argument : process.arguments)
            all += argument + ' ';
        return all;
    }
    bool hasPart() const { return std::filesystem::exists(films / ".day.mp4.part"); }

    LibjpegImageControl control{clock};
    FakeProcess process{clock};
    std::filesystem::path films = folder.path() / "films";
    std::filesystem::path target = films / "day.mp4";
    FilmFile film{forSpans(), control, process, store};
};

TEST(FilmFile, OnePictureForEachMinuteInTheOrderOfTime) {
    Film f;
    f.picture("20061115_093107_00.jpg", 60); // fetched
    f.picture("20061115_093007_00.jpg", 99); // the capture goes before it
    f.picture("20061115_093000_00.jpg", 40); //
    f.picture("20061115_093000_01.jpg", 99); // the clock was set back
    f.picture("20061115_093120_00.jpg", 99);
    f.write("20061115_093200_00.jpg", ""); // a power cut: the fetched one stands in
    f.picture("20061115_093207_00.jpg", 80);
    f.write("20061115_093300_00.jpg", jpegLike("cannot be decoded"));
    f.picture("20061116_000007_00.jpg", 99);
    std::filesystem::rename(f.file("20061116_000007_00.jpg"),
                            f.dataFolder() / "20061115" / "20061116_000007_00.jpg");
    f.picture("20061116_000000_00.jpg", 120);
    f.process.encoders = "Encoders:\n V..... h264_mf   x\n V....D libopenh264   x\n"
                         " V....D libx264   x\n"; // the best is taken
    EXPECT_EQ(f.make(16), "day.mp4 is written: 4 pictures, 0.2 s. "
                          "Passed over: 2 pictures; see ERROR.LOG.");
    EXPECT_EQ(f.greys(), (std::vector{40, 60, 80, 120}));
    EXPECT_EQ(f.film.progress, SpanWork::kWhole);
    EXPECT_EQ(listing(f.films), std::vector<std::string>{"day.mp4"});
    EXPECT_EQ(contentsOf(f.target), "film of " + f.process.fed);
    EXPECT_EQ(f.countLogged("FilmFile:with /opt/ffmpeg, libx264"), 1);

    const auto own = f.films / "my ffmpeg";
    f.film.choose(own);
    EXPECT_EQ(f.film.program(), std::filesystem::path("/opt/ffmpeg")) << "it is not there";
    writeFile(own, "a program");
    f.make();
    EXPECT_EQ(f.process.programs.back(), own);
    f.store.readOnly = true;
    f.film.choose("/opt/other");
    EXPECT_TRUE(f.film.text.get().starts_with("The settings cannot be stored"));
}

TEST(FilmFile, SizesAreEvenAndThoseOfTheFirstPicture) {
    const std::tuple<FilmSize, int, FilmSize> cases[] = {
        {{1600, 1200}, 0, {1600, 1200}},   {{641, 481}, 0, {642, 482}},
        {{1920, 1080}, 480, {854, 480}},   {{5184, 3888}, 0, {2880, 2160}},
        {{8000, 2000}, 1080, {3840, 960}}, {{640, 480}, 720, {960, 720}},
        {{1080, 1920}, 720, {406, 720}},   {{10, 3000}, 480, {16, 480}}};
    for (const auto& [first, rows, film] : cases)
        EXPECT_EQ(filmSizeOf(first, rows), film) << first.width << " " << rows;
}

/// What is piped is no larger than it must be; others are fitted to the first. Captures go first.
TEST(FilmFile, MixedSizesAreFitted) {
    Film f;
    f.picture("20061115_093000_00.jpg", 50, {640, 480});
    f.picture("20061115_093100_00.jpg", 100, {320, 240});
    f.picture("20061115_093200_00.jpg", 150, {480, 640});
    constexpr std::size_t kFrame = std::size_t{160} * 120 * 4; // a quarter: at least 100 rows
    f.film.start({november(15), november(15)}, {.rows = 100, .rate = 60}, f.target);
    ASSERT_TRUE(f.clock.runUntil([&] { return f.process.fed.size() == kFrame; }, 1min));
    EXPECT_FALSE(f.busy.active());
    {
        const Busy::Hold capture(f.busy);
        f.clock.run(1min);
        EXPECT_LE(f.process.fed.size(), 2 * kFrame) << "the picture it was at";
    }
    f.finishWork(f.film);
    EXPECT_TRUE(f.film.text.get().starts_with("day.mp4 is written: 3 pictures"));
    for (const char* part :
         {" -video_size 160x120 ", " -framerate 60 ", " -c:v libx264 ", " scale=134:100:"})
        EXPECT_NE(f.arguments().find(part), std::string::npos) << part;
    ASSERT_EQ(f.process.fed.size(), 3 * kFrame);
    EXPECT_EQ(f.greys({160, 120}), (std::vector{50, 100, 150}));
    EXPECT_EQ(f.process.fed[2 * kFrame + kFrame / 2], 0) << "black beside one that stands upright";
}

TEST(FilmFile, StampAndMirrorAreIndependent) {
    const std::pair<FilmOptions, const char*> cases[] = {
        {{}, ""},
        {{.mirror = true}, "mirrored"},
        {{.stamp = true}, "2006/11/15 09:30"},
        {{.mirror = true, .stamp = true}, "mirrored2006/11/15 09:30"}};
    for (const auto& [options, done] : cases) {
        Film f;
        f.write("20061115_093000_00.jpg");
        FilmFile film(f.forSpans(), f.imageControl, f.process, f.store);
        film.start({november(15), november(15)}, options, f.target);
        f.finishWork(film);
        std::string fed; // the fake control tells what was done to it
        for (std::size_t i = 0; i < f.process.fed.size(); i += 4)
            fed += f.process.fed[i];
        EXPECT_EQ(fed, jpegLike("20061115_093000_00.jpg") + done);
    }
}

/// However it fails: told, nothing is left over, an older film stays, and it can be tried again.
TEST(FilmFile, WhatFailsIsToldAndLeavesNothing) {
    struct Case {
        const char* what;
        std::function<void(Film&)> spoil;
        const char* told;
    };
    const auto fails = [](const char* how, std::size_t after = 0) {
        return [=](Film& f) {
            f.process.failing = how;
            f.process.soundBytes = after;
            f.process.said = "x264 [info]\n.day.mp4.part: No space left on device\r\n";
        };
    };
    const Case cases[] = {
        {"no ffmpeg", [](Film& f) { f.process.installed = false; },
         "Ended early: there is no ffmpeg. Install ffmpeg ("},
        {"no ffmpeg at all", [](Film& f) { f.process.encoders = "Usage: notepad\n"; },
         "Ended early: /opt/ffmpeg is no ffmpeg that can be used. "},
        {"no encoder that can be used",
         [](Film& f) {
             f.process.encoders = "Encoders:\n V....D libx264rgb   x\n V..... h264_nvenc   x\n";
         },
         "Ended early: /opt/ffmpeg has no H.264 encoder"},
        {"not to be started", fails("start"), "Ended early: /opt/ffmpeg failed: it cannot be"},
        {"dies", fails("die"), "Ended early: ffmpeg failed: it stopped reading (.day.mp4.part: No"},
        {"dies later", fails("die", 20'000), "Ended early: ffmpeg failed: it stopped reading ("},
        {"stands still", fails("hang", 20'000), "Ended early: ffmpeg failed: it stands still ("},
        {"does not end", fails("hang at the end"), "Ended early: ffmpeg failed: it does not end ("},
        {"fails at the end", fails("exit code"), "Ended early: ffmpeg failed: exit code 1 ("},
        {"no pictures", [](Film& f) { std::filesystem::remove_all(f.dataFolder() / "20061115"); },
         "Ended early: there are no pictures that can be used; choose other days. No film was "
         "written."},
        {"the target is a folder",
         [](Film& f) {
             std::filesystem::remove(f.target);
             std::filesystem::create_directories(f.target / "full");
         },
         "Ended early: the film cannot be renamed: "}};
    for (const auto& [what, spoil, expected] : cases) {
        SCOPED_TRACE(what);
        Film f;
        f.someMinutes(5);
        writeFile(f.target, "older");
        spoil(f);
        const std::string told = f.make();
        EXPECT_TRUE(told.starts_with(expected)) << told;
        EXPECT_NE(told.find("No film was written."), std::string::npos);
        EXPECT_FALSE(f.process.running);
        EXPECT_FALSE(f.hasPart());
        if (std::filesystem::is_directory(f.target)) continue;
        EXPECT_EQ(contentsOf(f.target), "older");
        f.process.failing.clear();
        f.process.installed = true;
        f.process.encoders = FakeProcess(f.clock).encoders;
        f.someMinutes(5);
        EXPECT_EQ(f.make(), "day.mp4 is written: 5 pictures, 0.2 s.");
    }
}

/// Wherever it is cancelled, or the program ends: no part of a film, nothing waits on.
TEST(FilmFile, EndsAtAnyMoment) {
    int withPart = 0;
    for (Ticks moment = 0ms; moment < 400ms; moment += 5ms) {
        Film f;
        f.someMinutes(6);
        writeFile(f.target, "older");
        const std::size_t waiting = f.clock.pending();
        auto film = std::make_unique<FilmFile>(f.forSpans(), f.control, f.process, f.store);
        film->start({november(15), november(15)}, {}, f.target);
        f.clock.run(moment);
        if (!film->running) break;
        withPart += f.hasPart();
        if (moment / 5ms % 2 == 0) {
            film->cancel();
            EXPECT_EQ(film->text.get(), "Cancelled. No film was written.");
        } else {
            film.reset();
        }
        EXPECT_EQ(f.clock.pending(), waiting);
        EXPECT_FALSE(f.process.running);
        EXPECT_TRUE(f.control.picture().isNull());
        EXPECT_EQ(listing(f.films), std::vector<std::string>{"day.mp4"});
        EXPECT_EQ(contentsOf(f.target), "older");
    }
    EXPECT_GT(withPart, 10);
}

} // namespace
} // namespace orvane::test
