#include "archive/CopiesAnew.h"

#include "archive/DataFolder.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr std::int16_t kOn = -1;

DaySpan days(unsigned first, unsigned last) {
    const auto day = [](unsigned number) {
        return std::chrono::floor<std::chrono::days>(at(2006, 11, number));
    };
    return {day(first), day(last)};
}

/// A station with three days of two pictures each, and copies of an older kind.
struct Days {
    Days() {
        s.panel.Dir1[0].path = s.dataFolder();
        for (const char* day : {"20061114", "20061115", "20061116"})
            for (const char* time : {"_093000_00.jpg", "_094507_00.jpg"})
                write(day, day + std::string(time), jpegLike(day + std::string(time)));
    }
    std::filesystem::path file(const std::string& day, const std::string& name) const {
        return s.dataFolder() / day / name;
    }
    void write(const std::string& day, const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(s.dataFolder() / day);
        ASSERT_FALSE(writeToFinalName(bytes, file(day, name)));
    }
    void start(DaySpan span) { copies.start(span, s.module.image); }
    void finishWork() {
        EXPECT_TRUE(s.clock.runUntil([this] { return !copies.running; }, 1h));
    }
    std::vector<std::string> made() const {
        const auto edit = s.dataFolder() / "Edit";
        std::vector<std::string> files;
        if (!std::filesystem::is_directory(edit)) return files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(edit))
            if (entry.is_regular_file()) files.push_back(entry.path().filename().string());
        std::ranges::sort(files);
        return files;
    }
    std::string text() const { return copies.text.get(); }

    TestStation s{at(2006, 11, 20, 12, 0)};
    FakeImageControl control;
    CopiesAnew copies{{s.panel, s.busy, s.log, s.faults, s.clock}, control};
};

TEST(CopiesAnew, AreThoseOfTheOptionsAtTheStart) {
    Days d;
    struct Case {
        ImageOptions options;
        std::string added; ///< what the imaging control does to the bytes
        bool raw;
    };
    const Case cases[] = {
        {{.DateFlg = kOn}, "", false},
        {{.LrFlg = kOn}, "mirrored", false},
        {{.LrFlg = kOn, .DateFlg = kOn, .RawFlg = kOn}, "mirrored2006/11/15 09:30", true},
    };
    d.write("20061115", "notes.jpg", jpegLike("no picture's name"));
    const std::string name = "20061115_093000_00.jpg";
    const auto before = std::filesystem::last_write_time(d.file("20061115", name));
    for (const Case& test : cases) {
        std::filesystem::remove_all(d.s.dataFolder() / "Edit");
        d.s.module.image = test.options;
        d.start(days(15, 16));
        d.s.module.image = {.Quality = 56, .LrFlg = asFlag(!isSet(test.options.LrFlg))};
        d.start(days(14, 14)); // one at a time
        d.finishWork();
        EXPECT_EQ(d.text(), "4 copies made.");
        EXPECT_EQ(d.copies.progress, SpanWork::kWhole);
        EXPECT_EQ(contentsOf(d.file("Edit/20061115", name)), jpegLike(name) + test.added);
        EXPECT_EQ(d.made().size(), test.raw ? 8U : 4U);
        if (test.raw) {
            EXPECT_EQ(contentsOf(d.file("Edit/20061115", "20061115_093000_00_raw.jpg")),
                      jpegLike(name));
        }
    }
    EXPECT_EQ(contentsOf(d.file("20061115", name)), jpegLike(name));
    EXPECT_EQ(std::filesystem::last_write_time(d.file("20061115", name)), before);
    EXPECT_EQ(d.s.countLogged("CopiesAnew:2006/11/15 to 2006/11/16: 4 copies made."), 3);
}

TEST(CopiesAnew, WhatFailsIsToldAndPassedOver) {
    struct Case {
        const char* what;
        std::function<void(Days&)> spoil;
        std::string outcome;
        std::size_t made;
    };
    const auto brokenNight = [](Days& t) {
        for (int minute = 10; minute < 40; ++minute)
            t.write("20061115", "20061115_02" + std::to_string(minute) + "00_00.jpg", "");
    };
    const auto full = [](Days& t) { // no folder can be made there
        ASSERT_FALSE(writeToFinalName("a file", t.s.dataFolder() / "Edit"));
    };
    const auto unreadable = [](Days& t) {
        std::filesystem::remove_all(t.s.dataFolder() / "20061115");
        ASSERT_FALSE(writeToFinalName("a file", t.s.dataFolder() / "20061115"));
    };
    const Case cases[] = {
        {"cut",
         [](Days& t) {
             t.write("20061115", "20061115_094507_00.jpg", jpegLike("cut").substr(0, 20));
         },
         "5 copies made, 1 failed; see ERROR.LOG.", 5},
        {"a power cut", brokenNight, "6 copies made, 30 failed; see ERROR.LOG.", 6},
        {"a full disk", full, "0 copies made, 5 failed; see ERROR.LOG.", 0},
        {"written badly", [](Days& t) { t.control.unsound = "lost data"; },
         "Ended early: what was written is damaged: lost data. 0 copies made, 5 failed; "
         "see ERROR.LOG.",
         5},
        {"no folder", unreadable, "4 copies made, 1 day that cannot be read; see ERROR.LOG.", 4},
        {"no data folder", [](Days& t) { std::filesystem::remove_all(t.s.dataFolder()); },
         "Ended early: the data folder is not there; connect its disk or choose another one. 0 "
         "copies made.",
         0},
    };
    for (const Case& test : cases) {
        Days t;
        test.spoil(t);
        t.start(days(14, 16));
        t.finishWork();
        EXPECT_TRUE(t.text().ends_with(test.outcome)) << test.what << ": " << t.text();
        EXPECT_EQ(t.made().size(), test.made) << test.what;
        EXPECT_LE(t.s.logged().size(), 12U) << test.what;
    }
}

/// Wherever it is cancelled: every copy that is there is whole, nothing waits on, and it can be
/// begun again.
TEST(CopiesAnew, CanBeCancelledAtAnyMoment) {
    int cancelled = 0;
    for (Ticks moment = 0ms; moment < 60ms; moment += 1ms) {
        Days t;
        const std::size_t waiting = t.s.clock.pending();
        t.start(days(14, 16));
        t.s.clock.run(moment);
        const bool running = t.copies.running;
        const std::size_t made = t.made().size();
        t.copies.cancel();
        EXPECT_EQ(t.s.clock.pending(), waiting);
        t.s.clock.run(1min);
        EXPECT_EQ(t.made().size(), made);
        for (const std::string& name : t.made())
            EXPECT_TRUE(isWholePicture(t.file("Edit/" + name.substr(0, 8), name)));
        EXPECT_EQ(t.text().starts_with("Cancelled. "), running) << t.text();
        cancelled += running && made > 0;
        t.start(days(14, 16));
        t.finishWork();
        EXPECT_EQ(t.text(), "6 copies made.");
    }
    EXPECT_GT(cancelled, 10);
}

/// The real imaging control, whose work has waits within a picture.
TEST(CopiesAnew, CancelledWithinAPictureHoldsNoPixels) {
    Days t;
    t.write("20061114", "20061114_093000_00.jpg", encoded(gradient(1600, 1200)));
    LibjpegImageControl control{t.s.clock};
    CopiesAnew copies{{t.s.panel, t.s.busy, t.s.log, t.s.faults, t.s.clock}, control};
    copies.start(days(14, 14), t.s.module.image);
    ASSERT_TRUE(t.s.clock.runUntil([&] { return !control.picture().isNull(); }, 1min));
    copies.cancel();
    EXPECT_TRUE(control.picture().isNull());
    EXPECT_TRUE(t.made().empty());
}

TEST(CopiesAnew, AllElseGoesFirst) {
    Days t;
    t.start(days(14, 16));
    ASSERT_TRUE(t.s.clock.runUntil([&] { return t.made().size() == 2; }, 1min));
    {
        const Busy::Hold capture(t.s.busy);
        t.s.clock.run(1min);
        EXPECT_LE(t.made().size(), 3U) << "the picture it was at";
        EXPECT_TRUE(t.copies.running);
    }
    t.finishWork();
    EXPECT_EQ(t.text(), "6 copies made.");
    EXPECT_FALSE(t.s.busy.active());
}

/// Copies while a picture is taken every minute: neither misses any.
TEST(CopiesAnew, RecordingGoesOnBesideThem) {
    Days t;
    for (int minute = 0; minute < 20; ++minute)
        for (int second = 1; second < 60; second += 2) {
            const std::string name =
                "20061114_10" + twoDigits(minute) + twoDigits(second) + "_00.jpg";
            t.write("20061114", name, jpegLike(name));
        }
    t.s.setSchedule("9", "17", "1");
    t.s.store.values["Settings/Delay"] = "30";
    t.s.start(true);
    t.s.clock.runUntil(at(2006, 11, 20, 12, 0, 59));
    t.start(days(14, 14));
    t.s.clock.runUntil(at(2006, 11, 20, 12, 1, 20));
    EXPECT_TRUE(t.s.module.capturing);
    EXPECT_TRUE(t.copies.running);
    t.s.clock.runUntil(at(2006, 11, 20, 12, 5, 59));
    EXPECT_EQ(t.text(), "602 copies made.");
    EXPECT_EQ(t.s.imagesOf("20061120").size(), 6U);
}

TEST(CopiesAnew, TheOptionsAreToldInWords) {
    const std::pair<ImageOptions, std::string> cases[] = {
        {{}, "not mirrored, without date stamp, EXIF, high quality"},
        {{.Quality = 2, .LrFlg = kOn, .DateFlg = kOn, .JpegTyp = 98},
         "mirrored, with date stamp, 4:4:4, highest quality"},
        {{.Quality = 56, .DateFlg = kOn, .RawFlg = kOn},
         "not mirrored, without date stamp, EXIF, low quality, untouched picture beside it"},
    };
    for (const auto& [options, text] : cases)
        EXPECT_EQ(describe(options), text);
}

} // namespace
} // namespace orvane::test
