#include "platform/Paths.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using Outcome = Filing::Outcome;

/// A station whose main loop does not run; pictures are handed to its archive.
class ArchiveTest : public testing::Test {
  protected:
    ArchiveTest() {
        s.panel.Dir1[0].path = s.dataFolder();
        s.days.refresh();
    }
    std::filesystem::path file(const std::string& name) const {
        return s.dataFolder() / "20061115" / name;
    }
    void write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(s.dataFolder() / "20061115");
        ASSERT_FALSE(writeToFinalName(bytes, file(name)));
    }
    std::string read(const std::string& name) const { return contentsOf(file(name)); }
    Filing take(const std::string& content, const std::string& name, Arrival arrival) {
        return finish(s.clock, s.archive.take(jpegLike(content), file(name), arrival));
    }
    Filing capture(const std::string& content) {
        return take(content, "20061115_093000_00.jpg", Arrival::Capture);
    }
    std::vector<std::string> files() const { return s.imagesOf("20061115"); }

    TestStation s{at(2006, 11, 15, 9, 30)};
};

/// Whichever step of writing fails: nothing is lost, nothing is cut, it is told, and it works
/// again.
TEST_F(ArchiveTest, EveryStepOfWritingMayFail) {
    struct Case {
        Arrival arrival;
        const char* name;
        std::vector<std::string> kept; ///< what lies in the folder and must stay as it is
    };
    const Case cases[] = {{Arrival::Capture, "20061115_093000_00.jpg", {}},
                          {Arrival::Capture, "20061115_093000_00.jpg", {"20061115_093000_00.jpg"}},
                          {Arrival::Run, "20061115_092907_00.jpg", {"20061115_092907_00.jpg"}},
                          {Arrival::Run, "20061115_093000_00.jpg", {"20061115_093000_00.jpg"}},
                          {Arrival::Gap, "20061115_092907_00.jpg", {}}};
    const std::string older = jpegLike("older");
    for (const char* step : {"open", "write", "flush", "close", "rename"})
        for (const auto& [arrival, name, kept] : cases) {
            const std::string which = std::string(step) + " " + name;
            TestStation t(at(2006, 11, 15, 9, 30), FileWriter::Force::Yes);
            t.panel.Dir1[0].path = t.dataFolder();
            const auto dated = t.dataFolder() / "20061115";
            std::filesystem::create_directory(dated);
            for (const std::string& before : kept)
                ASSERT_FALSE(writeToFinalName(older, dated / before));
            t.files.failing = step;
            Filing filing = finish(t.clock, t.archive.take(jpegLike("new"), dated / name, arrival));
            EXPECT_EQ(filing.outcome, Outcome::Failed) << which;
            EXPECT_NE(filing.fault.find("No space left on device"), std::string::npos) << which;
            EXPECT_EQ(t.imagesOf("20061115"), kept) << which << ": nothing new, no temporary";
            EXPECT_TRUE(t.imagesOf("20061115", "Edit").empty()) << which;
            for (const std::string& before : kept)
                EXPECT_EQ(contentsOf(dated / before), older) << which;
            EXPECT_NE(t.warnings.text.get().find("The data folder cannot be written"),
                      std::string::npos)
                << which;
            EXPECT_EQ(t.logged().size(), 1U) << which;
            EXPECT_TRUE(t.module.thumbnails[0].empty()) << which;
            EXPECT_EQ(t.module.filesFetched, 0) << which;

            t.files.failing.clear();
            filing = finish(t.clock, t.archive.take(jpegLike("new"), dated / name, arrival));
            EXPECT_EQ(filing.outcome, Outcome::Filed) << which;
            EXPECT_TRUE(t.warnings.text.get().empty()) << which;
        }
}

/// The picture is filed then; what cannot be promised is told.
TEST(Archive, NamesThatCannotBeForcedAreTold) {
    for (const Arrival arrival : {Arrival::Capture, Arrival::Run}) {
        TestStation t(at(2006, 11, 15, 9, 30), FileWriter::Force::Yes);
        t.files.failing = "folder";
        const auto dated = t.dataFolder() / "20061115";
        const Filing filing = finish(
            t.clock, t.archive.take(jpegLike("new"), dated / "20061115_093000_00.jpg", arrival));
        EXPECT_EQ(filing.outcome, Outcome::Filed);
        if (arrival == Arrival::Run) t.archive.flush();
        EXPECT_NE(t.warnings.text.get().find("A power cut may lose"), std::string::npos);
        EXPECT_EQ(t.logged().size(), 1U);
        EXPECT_EQ(t.imagesOf("20061115").size(), 1U);
    }
}

TEST(Archive, DataAreOnTheDiskBeforeTheNameIs) {
    TestStation t(at(2006, 11, 15, 9, 30), FileWriter::Force::Yes);
    const auto dated = t.dataFolder() / "20061115";
    const std::vector<std::string> one{"open", "write", "flush", "close", "rename"};
    finish(t.clock, t.archive.take(jpegLike("1"), dated / "20061115_092907_00.jpg", Arrival::Run));
    EXPECT_EQ(t.files.steps, one) << "a run's names are forced page by page";
    t.archive.flush();
    t.archive.flush(); // nothing is left
    EXPECT_EQ(std::ranges::count(t.files.steps, "folder"), 2) << "and the day's name, once";
    t.files.steps.clear();
    finish(t.clock,
           t.archive.take(jpegLike("2"), dated / "20061115_093000_00.jpg", Arrival::Capture));
    std::vector<std::string> expected = one;
    expected.emplace_back("folder");
    EXPECT_EQ(t.files.steps, expected);
}

/// A capture keeps its name whatever comes under it, from a run as from another capture.
TEST_F(ArchiveTest, ACaptureIsNeverReplaced) {
    EXPECT_EQ(capture("first").outcome, Outcome::Filed);
    EXPECT_EQ(take("stored", "20061115_093000_00.jpg", Arrival::Run).outcome, Outcome::Filed);
    EXPECT_EQ(files(),
              (std::vector<std::string>{"20061115_093000_00.jpg", "20061115_093000_01.jpg"}));
    EXPECT_EQ(read("20061115_093000_00.jpg"), jpegLike("first"));
    EXPECT_EQ(read("20061115_093000_01.jpg"), jpegLike("stored"));
    const auto steps = s.files.steps.size();
    for (const Arrival arrival : {Arrival::Run, Arrival::Gap, Arrival::Run})
        EXPECT_EQ(take("stored", "20061115_093000_00.jpg", arrival).outcome, Outcome::Held);
    EXPECT_EQ(s.files.steps.size(), steps) << "what is held is no work";
    EXPECT_EQ(s.module.filesFetched, 4) << "but counts as fetched, except in a gap";
    // any frame of the second, also one that the camera numbered
    write("20061115_093000_57.jpg", jpegLike("far"));
    EXPECT_EQ(take("far", "20061115_093000_00.jpg", Arrival::Run).outcome, Outcome::Held);
    EXPECT_EQ(take("far", "20061115_093000_40.jpg", Arrival::Run).outcome, Outcome::Held);
    EXPECT_EQ(take("near", "20061115_093000_57.jpg", Arrival::Run).outcome, Outcome::Filed);
    EXPECT_EQ(read("20061115_093000_58.jpg"), jpegLike("near"));
    EXPECT_EQ(capture("second").outcome, Outcome::Filed);
    EXPECT_EQ(read("20061115_093000_02.jpg"), jpegLike("second"));
}

TEST_F(ArchiveTest, FramesThatAreUsedUpAreAFailure) {
    for (int frame = 0; frame < 100; ++frame)
        write("20061115_093000_" + twoDigits(frame) + ".jpg", jpegLike(std::to_string(frame)));
    EXPECT_EQ(capture("one more").outcome, Outcome::Failed);
    EXPECT_EQ(files().size(), 100U);
    EXPECT_EQ(s.logged().size(), 1U);
    EXPECT_FALSE(s.warnings.text.get().empty());
    EXPECT_EQ(take("71", "20061115_093000_00.jpg", Arrival::Run).outcome, Outcome::Held);
}

/// Of a power cut, or of a program that was killed.
TEST_F(ArchiveTest, WhatIsNoWholePictureMayBeReplaced) {
    for (const std::string& broken :
         {std::string(), std::string(3000, '\0'), jpegLike("cut").substr(0, 25)}) {
        write("20061115_093000_00.jpg", broken);
        write("20061115_093000_01.jpg", jpegLike("whole"));
        EXPECT_EQ(
            take("new " + broken.substr(0, 1), "20061115_093000_00.jpg", Arrival::Run).outcome,
            Outcome::Filed);
        EXPECT_EQ(files().size(), 2U);
        EXPECT_EQ(read("20061115_093000_01.jpg"), jpegLike("whole"));
        EXPECT_TRUE(isWholePicture(file("20061115_093000_00.jpg")));
    }
}

TEST_F(ArchiveTest, TheCopyOfAStoredPictureIsReplacedAsAWhole) {
    for (const char* name : {"20061115_092907_00.jpg", "short.jpg"}) {
        EXPECT_EQ(take(std::string(5000, 'x'), name, Arrival::Run).outcome, Outcome::Filed);
        EXPECT_EQ(take("again", name, Arrival::Run).outcome, Outcome::Filed);
        EXPECT_EQ(read(name), jpegLike("again")) << "no tail of the older one";
    }
}

TEST_F(ArchiveTest, LeftOversOfAKilledProgramGo) {
    for (const char* below : {"20061115", "Edit/20061115", "20061114"}) {
        std::filesystem::create_directories(s.dataFolder() / below);
        writeFile(s.dataFolder() / below / ".20061115_090000_00.jpg.part", "cut");
        writeFile(s.dataFolder() / below / "notes.part", "the operator's own");
    }
    EXPECT_EQ(capture("new").outcome, Outcome::Filed);
    EXPECT_EQ(files(), (std::vector<std::string>{"20061115_093000_00.jpg", "notes.part"}));
    EXPECT_EQ(s.imagesOf("20061115", "Edit").size(), 2U);
    EXPECT_EQ(s.imagesOf("20061114").size(), 2U) << "a day that nobody writes to";
}

TEST_F(ArchiveTest, TheHistoryShowsTheNewestFirst) {
    const auto name = [&](std::size_t place) {
        return utf8FromPath(s.module.thumbnails[place].filename());
    };
    take("1", "20061115_090000_00.jpg", Arrival::Capture);
    take("2", "20061115_093000_00.jpg", Arrival::Capture);
    take("3", "20061115_084507_00.jpg", Arrival::Run);
    take("4", "20061115_091507_00.jpg", Arrival::Gap);
    take("5", "20061115_084507_00.jpg", Arrival::Run); // the same picture anew
    EXPECT_EQ(name(0), "20061115_093000_00.jpg");
    EXPECT_EQ(name(1), "20061115_091507_00.jpg");
    EXPECT_EQ(name(2), "20061115_090000_00.jpg");
    EXPECT_EQ(name(3), "20061115_084507_00.jpg");
    EXPECT_EQ(name(4), "");
    EXPECT_EQ(s.views.newest.filename(), "20061115_093000_00.jpg");
    EXPECT_EQ(s.module.lastImage.filename(), "20061115_093000_00.jpg");
    for (int i = 0; i < 9; ++i)
        take("6" + std::to_string(i), "20061115_0800" + twoDigits(10 + i) + "_00.jpg",
             Arrival::Run);
    take("7", "20061115_070007_00.jpg", Arrival::Run); // older than all ten
    EXPECT_EQ(name(0), "20061115_093000_00.jpg");
    EXPECT_EQ(name(9), "20061115_080013_00.jpg");
}

/// Two frozen pictures in turn are as stale as one.
TEST_F(ArchiveTest, ACaptureThatWasSentBeforeIsRefused) {
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(capture(std::to_string(i)).outcome, Outcome::Filed);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(capture(std::to_string(i)).fault, "the camera sent the same picture again");
    EXPECT_EQ(take("9", "20061115_092907_00.jpg", Arrival::Run).outcome, Outcome::Filed)
        << "a stored picture may be the same";
}

/// With the real decoder: what is damaged never gets in, what merely cannot be shown does.
TEST(Archive, TakesSoundPicturesOnly) {
    TestStation t(at(2006, 11, 15, 9, 30));
    LibjpegImageControl control(t.clock);
    PictureArchive archive(
        {t.module, t.days, t.disk, t.files, control, t.views, t.warnings, t.log, t.clock});
    const auto wanted = t.dataFolder() / "20061115" / "20061115_093000_00.jpg";
    const std::string whole = encoded(gradient(320, 240));
    std::string huge = whole; // the frame's size: FF C0 length precision height width
    const std::size_t frame = huge.find("\xFF\xC0");
    huge.replace(frame + 5, 4, "\xFF\xFF\xFF\xFF");
    for (const std::string& bytes : {whole.substr(0, whole.size() / 2) + "\xFF\xD9", huge}) {
        for (const Arrival arrival : {Arrival::Capture, Arrival::Run, Arrival::Gap}) {
            const Filing filing = finish(t.clock, archive.take(bytes, wanted, arrival));
            EXPECT_EQ(filing.outcome, Outcome::Refused);
            EXPECT_TRUE(filing.fault.starts_with("the picture is damaged")) << filing.fault;
        }
    }
    EXPECT_TRUE(t.imagesOf("20061115").empty());
    EXPECT_EQ(finish(t.clock, archive.take(whole, wanted, Arrival::Capture)).outcome,
              Outcome::Filed);
    EXPECT_EQ(contentsOf(wanted), whole);
    EXPECT_EQ(decoded(t.dataFolder() / "Edit" / "20061115" / wanted.filename()).size(),
              QSize(320, 240));
}

TEST_F(ArchiveTest, APictureThatCannotBeProcessedIsFiledAndWarnedOf) {
    s.imageControl.failure = "CMYK pictures are not supported";
    EXPECT_EQ(capture("cmyk").outcome, Outcome::Filed);
    EXPECT_EQ(read("20061115_093000_00.jpg"), jpegLike("cmyk"));
    EXPECT_EQ(s.warnings.text.get(), "No processed copy of 20061115_093000_00.jpg: CMYK pictures "
                                     "are not supported.");
    EXPECT_EQ(s.days.plan().states[9 * 60 + 30], DayState::Taken);
}

} // namespace
} // namespace orvane::test
