#include "archive/CopiesAnew.h"
#include "archive/DayReport.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/archive/ArchiveStation.h"

namespace orvane::test {
namespace {

constexpr std::int16_t kOn = -1;

/// Three days of two pictures each.
struct Copies : ArchiveStation {
    Copies() : ArchiveStation(at(2006, 11, 20, 12, 0)) {
        for (const char* day : {"20061114", "20061115", "20061116"})
            for (const char* time : {"_093000_00.jpg", "_094507_00.jpg"})
                write(day + std::string(time));
    }
    void start(unsigned first, unsigned last) {
        copies.start({november(first), november(last)}, module.image);
    }
    std::string make(unsigned first, unsigned last) {
        start(first, last);
        finishWork(copies);
        return copies.text.get();
    }
    /// How many copies there are.
    std::size_t made() const {
        std::size_t count = 0;
        for (const char* day : {"20061114", "20061115", "20061116"})
            count += imagesOf(day, "Edit").size();
        return count;
    }

    FakeImageControl control;
    CopiesAnew copies{forSpans(), control};
};

TEST(CopiesAnew, AreThoseOfTheOptionsAtTheStart) {
    Copies s;
    struct Case {
        ImageOptions options;
        std::size_t made;
        std::string added; ///< what the imaging control does to the bytes
        std::string inWords;
    };
    const Case cases[] = {
        {{.DateFlg = kOn}, 4, "", "not mirrored, without date stamp, EXIF, high quality"},
        {{.Quality = 2, .LrFlg = kOn, .JpegTyp = 98},
         4,
         "mirrored",
         "mirrored, without date stamp, 4:4:4, highest quality"},
        {{.Quality = 56, .LrFlg = kOn, .DateFlg = kOn, .RawFlg = kOn},
         8,
         "mirrored2006/11/15 09:30",
         "mirrored, with date stamp, EXIF, low quality, untouched picture beside it"}};
    writeFile(s.dataFolder() / "20061115" / "notes.jpg", jpegLike("no picture's name"));
    const std::string name = "20061115_093000_00.jpg";
    const auto edit = s.dataFolder() / "Edit" / "20061115";
    const auto before = std::filesystem::last_write_time(s.file(name));
    for (const auto& [options, made, added, inWords] : cases) {
        std::filesystem::remove_all(s.dataFolder() / "Edit");
        s.module.image = options;
        s.start(15, 16);
        s.module.image = {.Quality = 56, .LrFlg = asFlag(!isSet(options.LrFlg))};
        s.clock.run(22ms); // in the midst of the last day
        {
            const Busy::Hold capture(s.busy);
            s.clock.run(1min);
            EXPECT_TRUE(s.copies.running) << "all else goes first";
        }
        EXPECT_EQ(s.make(14, 14), "4 copies made.") << "one at a time";
        EXPECT_EQ(s.copies.progress, SpanWork::kWhole);
        EXPECT_EQ(contentsOf(edit / name), jpegLike(name) + added);
        EXPECT_EQ(s.made(), made) << added;
        EXPECT_EQ(s.countLogged("CopiesAnew:" + inWords), 1);
    }
    EXPECT_EQ(contentsOf(edit / "20061115_093000_00_raw.jpg"), jpegLike(name));
    EXPECT_EQ(contentsOf(s.file(name)), jpegLike(name));
    EXPECT_EQ(std::filesystem::last_write_time(s.file(name)), before);
    EXPECT_EQ(s.countLogged("CopiesAnew:2006/11/15 to 2006/11/16: 4 copies made."), 3);
}

TEST(CopiesAnew, WhatFailsIsToldAndPassedOver) {
    struct Case {
        const char* what;
        std::function<void(Copies&)> spoil;
        std::string outcome;
        std::size_t made;
    };
    const auto brokenNight = [](Copies& s) {
        for (int minute = 10; minute < 40; ++minute)
            s.write("20061115_02" + std::to_string(minute) + "00_00.jpg", "");
    };
    const auto fileInsteadOf = [](const char* folder) {
        return [=](Copies& s) {
            std::filesystem::remove_all(s.dataFolder() / folder);
            writeFile(s.dataFolder() / folder, "a file");
        };
    };
    const Case cases[] = {
        {"cut", [](Copies& s) { s.write("20061115_094507_00.jpg", jpegLike("cut").substr(0, 20)); },
         "5 copies made, 1 failed; see ERROR.LOG.", 5},
        {"a power cut", brokenNight, "6 copies made, 30 failed; see ERROR.LOG.", 6},
        {"a full disk", fileInsteadOf("Edit"), "0 copies made, 5 failed; see ERROR.LOG.", 0},
        {"written badly", [](Copies& s) { s.control.unsound = "lost data"; },
         "Ended early: what was written is damaged: lost data. 0 copies made, 5 failed; "
         "see ERROR.LOG.",
         5},
        {"no folder", fileInsteadOf("20061115"),
         "4 copies made, 1 day that cannot be read; see ERROR.LOG.", 4}};
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        Copies s;
        test.spoil(s);
        const std::string told = s.make(14, 16);
        EXPECT_TRUE(told.ends_with(test.outcome)) << told;
        EXPECT_EQ(s.made(), test.made);
        EXPECT_LE(s.logged().size(), 12U);
    }
}

/// The real imaging control, which holds a picture as a whole when it must turn it.
TEST(CopiesAnew, CancelledWithinAPictureHoldsNoPixels) {
    constexpr int kOrientation = 0x0112;
    Copies s;
    s.write("20061114_093000_00.jpg",
            withSegments(encoded(gradient(1600, 1200)),
                         segment(0xE1, exifPayload({shortEntry(kOrientation, 3)}, {}))));
    LibjpegImageControl control{s.clock};
    CopiesAnew copies{s.forSpans(), control};
    const std::size_t waiting = s.clock.pending();
    copies.start({november(14), november(14)}, s.module.image);
    ASSERT_TRUE(s.clock.runUntil([&] { return !control.picture().isNull(); }, 1min));
    copies.cancel();
    EXPECT_TRUE(control.picture().isNull());
    EXPECT_EQ(s.clock.pending(), waiting);
    EXPECT_EQ(copies.text.get(), "Cancelled. 0 copies made.");
    EXPECT_EQ(s.made(), 0U);
}

/// The minutes 9:00, 9:30, 10:00 and 10:30 are due; it is 9:45.
struct DayReportTest : ArchiveStation, testing::Test {
    DayReportTest() : ArchiveStation(at(2006, 11, 15, 9, 45)) { type(9, 11, 30); }

    void start(unsigned first, unsigned last) {
        report.start({november(first), november(last)}, target);
    }
    /// The file that is there in the end.
    std::string reportOf(unsigned first, unsigned last) {
        start(first, last);
        finishWork(report);
        return std::filesystem::exists(target) ? contentsOf(target) : "";
    }
    std::string text() const { return report.text.get(); }

    DayReport report{forSpans(), module, schedules};
    std::filesystem::path target = folder.path() / "report.csv";
};

/// An unreadable day is no empty one. The schedule of the start holds, whatever happens meanwhile.
TEST_F(DayReportTest, JudgesEachDayByScheduleAndFiles) {
    for (const char* name :
         {"20061114_080000_00.jpg", "20061114_090100_00.jpg", "20061114_093007_00.jpg",
          "20061114_235900_00.jpg", "20061115_090000_00.jpg"})
        write(name);
    write("20061112_090000_00.jpg", "");
    write("20061112_093000_00.jpg", jpegLike("cut").substr(0, 20));
    writeFile(dataFolder() / "20061112" / "notes.jpg", jpegLike("of another name"));
    writeFile(dataFolder() / "20061112" / "20061113_000007_00.jpg", jpegLike("after midnight"));
    writeFile(dataFolder() / "20061113", "a file");
    writeFile(dataFolder() / "Ledger" / "20061111.csv",
              "time,offset,event,file,detail\r\n00:00,+09:00,program started,,\r\n"
              "09:10,+09:00,recording on,,\r\n23:00,+09:00,recording off,,\r\n");
    start(11, 16);
    clock.run(7ms);
    panel.Text1[5].text = std::string("1");
    std::string table = reportOf(1, 1); // one at a time
    const std::size_t note = table.find("cannot be read: ");
    ASSERT_NE(note, std::string::npos) << table;
    table.erase(note, table.find("\r\n", note) - note); // and why, in the system's words
    EXPECT_EQ(table, "date,due,taken,fetched,missed,first,last,note\r\n"
                     "2006/11/11,4,0,0,3,,,1 not recorded\r\n"
                     "2006/11/12,4,0,0,4,,,\r\n"
                     "2006/11/13,4,,,,,,\r\n"
                     "2006/11/14,4,1,1,2,08:00:00,23:59:00,\r\n"
                     "2006/11/15,4,1,0,1,09:00:00,09:00:00,not over\r\n"
                     "2006/11/16,4,0,0,0,,,not over\r\n");
    EXPECT_EQ(text(), "report.csv is written. The folder of 1 day cannot be read. See to the "
                      "access rights.");
}

/// The older report stays as it was until the new one is whole.
TEST_F(DayReportTest, IsWrittenWholeOrNotAtAll) {
    writeFile(target, "older");
    for (Ticks moment = 0ms; moment < 12ms; moment += 1ms) {
        start(12, 14);
        clock.run(moment);
        ASSERT_TRUE(report.running);
        report.cancel();
        EXPECT_EQ(text(), "Cancelled. No report was written.");
        EXPECT_EQ(contentsOf(target), "older");
    }
    EXPECT_NE(reportOf(12, 14), "older");

    target = folder.path() / "gone" / "report.csv";
    EXPECT_EQ(reportOf(12, 14), "");
    EXPECT_TRUE(text().starts_with("Ended early: the report cannot be written: ")) << text();
    std::filesystem::remove_all(dataFolder());
    reportOf(12, 14);
    EXPECT_EQ(text(), "Ended early: the data folder is not there; connect its disk or choose "
                      "another one. No report was written.");
}

} // namespace
} // namespace orvane::test
