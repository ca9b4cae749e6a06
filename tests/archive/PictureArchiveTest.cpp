#include "imaging/ProcessImageFile.h"
#include "platform/Paths.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/archive/ArchiveStation.h"

namespace orvane::test {
namespace {

using Outcome = Filing::Outcome;

const std::string kCapture = "20061115_093000_00.jpg";

/// Pictures are handed to the archive of a station.
struct Archiving : ArchiveStation {
    explicit Archiving(FileWriter::Force force = FileWriter::Force::No)
        : ArchiveStation(at(2006, 11, 15, 9, 30), force) {
        days.refresh();
    }

    std::string read(const std::string& name) const { return contentsOf(file(name)); }
    Filing take(const std::string& content, const std::string& name, Arrival arrival) {
        const auto wanted = dataFolder() / "20061115" / name;
        return finish(clock, archive.take(jpegLike(content), wanted, arrival));
    }
    Outcome run(const std::string& content, const std::string& name) {
        return take(content, name, Arrival::Run).outcome;
    }
    Filing capture(const std::string& content) { return take(content, kCapture, Arrival::Capture); }
    std::vector<std::string> names() const { return imagesOf("20061115"); }
};

struct ArchiveTest : testing::Test {
    Archiving s;
};

/// Whichever step of writing fails: nothing is lost, nothing is cut, it is told, and it works
/// again.
TEST(Archive, EveryStepOfWritingMayFail) {
    const std::string stored = "20061115_092907_00.jpg";
    const std::tuple<Arrival, std::string, bool> cases[] = {
        // whether a picture of that name is there, which must stay as it is
        {Arrival::Capture, kCapture, false},
        {Arrival::Capture, kCapture, true},
        {Arrival::Run, stored, true},
        {Arrival::Run, kCapture, true},
        {Arrival::Gap, stored, false}};
    for (const char* step : {"open", "write", "flush", "close", "rename"})
        for (const auto& [arrival, name, isThere] : cases) {
            SCOPED_TRACE(step + (" " + name));
            Archiving s(FileWriter::Force::Yes);
            if (isThere) s.write(name, jpegLike("older"));
            s.files.failing = step;
            const Filing filing = s.take("new", name, arrival);
            EXPECT_EQ(filing.outcome, Outcome::Failed);
            EXPECT_NE(filing.fault.find("No space left on device"), std::string::npos);
            EXPECT_EQ(s.names().size(), isThere ? 1U : 0U) << "nothing new, no temporary";
            EXPECT_EQ(s.read(name), isThere ? jpegLike("older") : "");
            EXPECT_TRUE(s.imagesOf("20061115", "Edit").empty());
            EXPECT_TRUE(s.warnings.text.get().starts_with("The data folder cannot be written"));
            EXPECT_EQ(s.logged().size(), 1U);
            EXPECT_TRUE(s.module.thumbnails[0].empty());
            EXPECT_EQ(s.module.filesFetched, 0);

            s.files.failing.clear();
            EXPECT_EQ(s.take("new", name, arrival).outcome, Outcome::Filed);
            EXPECT_EQ(s.warnings.text.get(), "");
        }
}

/// The picture is filed then; what cannot be promised is told. A run's names are forced by page.
TEST(Archive, NamesThatCannotBeForcedAreTold) {
    for (const Arrival arrival : {Arrival::Capture, Arrival::Run}) {
        Archiving s(FileWriter::Force::Yes);
        s.files.failing = "folder";
        EXPECT_EQ(s.take("new", kCapture, arrival).outcome, Outcome::Filed);
        EXPECT_EQ(s.warnings.text.get().empty(), arrival == Arrival::Run);
        if (arrival == Arrival::Run) s.archive.flush();
        EXPECT_NE(s.warnings.text.get().find("A power cut may lose"), std::string::npos);
        EXPECT_EQ(s.logged().size(), 1U);
        EXPECT_EQ(s.names().size(), 1U);
    }
}

/// A capture keeps its name whatever comes under it, from a run as from another capture.
TEST_F(ArchiveTest, ACaptureIsNeverReplaced) {
    EXPECT_EQ(s.capture("first").outcome, Outcome::Filed);
    EXPECT_EQ(s.run("stored", kCapture), Outcome::Filed);
    EXPECT_EQ(s.names(), (std::vector<std::string>{kCapture, "20061115_093000_01.jpg"}));
    EXPECT_EQ(s.read(kCapture), jpegLike("first"));
    EXPECT_EQ(s.read("20061115_093000_01.jpg"), jpegLike("stored"));
    const auto steps = s.files.steps.size();
    for (const Arrival arrival : {Arrival::Run, Arrival::Gap, Arrival::Run})
        EXPECT_EQ(s.take("stored", kCapture, arrival).outcome, Outcome::Held);
    EXPECT_EQ(s.files.steps.size(), steps) << "what is held is no work";
    EXPECT_EQ(s.module.filesFetched, 4) << "but counts as fetched, except in a gap";
    // any frame of the second, also one that the camera numbered
    s.write("20061115_093000_57.jpg", jpegLike("far"));
    EXPECT_EQ(s.run("far", kCapture), Outcome::Held);
    EXPECT_EQ(s.run("far", "20061115_093000_40.jpg"), Outcome::Held);
    EXPECT_EQ(s.run("near", "20061115_093000_57.jpg"), Outcome::Filed);
    EXPECT_EQ(s.read("20061115_093000_58.jpg"), jpegLike("near"));
    EXPECT_EQ(s.capture("second").outcome, Outcome::Filed);
    EXPECT_EQ(s.read("20061115_093000_02.jpg"), jpegLike("second"));
    for (int frame = 0; frame < 100; ++frame)
        s.write("20061115_093000_" + twoDigits(frame) + ".jpg", jpegLike(std::to_string(frame)));
    EXPECT_EQ(s.capture("one more").outcome, Outcome::Failed) << "all frames are used up";
    EXPECT_EQ(s.names().size(), 100U);
    EXPECT_EQ(s.logged().size(), 1U);
    EXPECT_FALSE(s.warnings.text.get().empty());
    EXPECT_EQ(s.run("71", kCapture), Outcome::Held);
}

/// Of a power cut, or of a program that was killed.
TEST_F(ArchiveTest, WhatIsNoWholePictureMayBeReplaced) {
    s.write("20061115_093000_01.jpg", jpegLike("whole"));
    for (const std::string& broken :
         {std::string(), std::string(3000, '\0'), jpegLike("cut").substr(0, 25)}) {
        s.write(kCapture, broken);
        EXPECT_EQ(s.run("new " + broken.substr(0, 1), kCapture), Outcome::Filed);
        EXPECT_TRUE(isWholePicture(s.file(kCapture)));
    }
    for (const char* content : {"the copy of a stored picture", "is as well"}) {
        EXPECT_EQ(s.run(content, "short.jpg"), Outcome::Filed);
        EXPECT_EQ(contentsOf(s.dataFolder() / "20061115" / "short.jpg"), jpegLike(content));
    }
    EXPECT_EQ(s.names().size(), 3U);
    EXPECT_EQ(s.read("20061115_093000_01.jpg"), jpegLike("whole"));
}

TEST_F(ArchiveTest, ACaptureThatWasSentBeforeIsRefused) {
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(s.capture(std::to_string(i)).outcome, Outcome::Filed);
    EXPECT_EQ(s.capture("0").fault, "the camera sent the same picture again");
    EXPECT_EQ(s.run("9", "20061115_092907_00.jpg"), Outcome::Filed) << "a stored one may be";
    EXPECT_EQ(s.capture("10").outcome, Outcome::Filed);
    EXPECT_EQ(s.capture("0").outcome, Outcome::Held) << "ten are known";
}

TEST_F(ArchiveTest, LeftOversOfAKilledProgramGo) {
    for (const char* below : {"20061115", "Edit/20061115", "20061114"})
        for (const char* name : {".20061115_090000_00.jpg.part", "notes.part"})
            writeFile(s.dataFolder() / below / name, "cut, or the operator's own");
    EXPECT_EQ(s.capture("new").outcome, Outcome::Filed);
    EXPECT_EQ(s.names(), (std::vector<std::string>{kCapture, "notes.part"}));
    EXPECT_EQ(s.imagesOf("20061115", "Edit").size(), 2U);
    EXPECT_EQ(s.imagesOf("20061114").size(), 2U) << "a day that nobody writes to";
}

TEST_F(ArchiveTest, TheHistoryShowsTheNewestFirst) {
    s.take("1", "20061115_090000_00.jpg", Arrival::Capture);
    s.capture("2");
    s.run("3", "20061115_084507_00.jpg");
    s.take("4", "20061115_091507_00.jpg", Arrival::Gap);
    s.run("5", "20061115_084507_00.jpg"); // the same picture anew
    EXPECT_EQ(s.views.newest.filename(), kCapture);
    EXPECT_EQ(s.module.lastImage.filename(), kCapture);
    for (int i = 10; i < 19; ++i)
        s.run(std::to_string(i), "20061115_0800" + std::to_string(i) + "_00.jpg");
    s.run("7", "20061115_070007_00.jpg"); // older than all ten
    std::string times;
    for (const auto& file : s.module.thumbnails)
        times += utf8FromPath(file.filename()).substr(9, 6) + " ";
    EXPECT_EQ(times, "093000 091507 090000 084507 080018 080017 080016 080015 080014 080013 ");
}

TEST_F(ArchiveTest, EachFileOfACaptureCountsForTheDaysThatAreLeft) {
    s.module.image.RawFlg = -1;
    s.capture("a picture");
    const std::filesystem::path image = s.file(kCapture);
    std::uintmax_t size = 0;
    for (const auto& file : {image, editPathOf(image), rawPathOf(image)})
        size += std::filesystem::file_size(file);
    const Schedule schedule{9h, 17h, 30min, {}}; // 16 captures a day
    EXPECT_EQ(s.disk.report(160 * size, schedule).days, 10);
}

/// With the real decoder: what is damaged never gets in, what merely cannot be shown does.
TEST_F(ArchiveTest, TakesSoundPicturesOnly) {
    LibjpegImageControl control(s.clock);
    PictureArchive archive(
        {s.module, s.days, s.disk, s.files, control, s.views, s.warnings, s.log, s.clock});
    const auto take = [&](const std::string& bytes, Arrival arrival) {
        return finish(s.clock, archive.take(bytes, s.file(kCapture), arrival));
    };
    const std::string whole = encoded(gradient(320, 240));
    std::string huge = whole; // the frame's size: FF C0 length precision height width
    huge.replace(huge.find("\xFF\xC0") + 5, 4, "\xFF\xFF\xFF\xFF");
    for (const std::string& bytes : {whole.substr(0, whole.size() / 2) + "\xFF\xD9", huge})
        for (const Arrival arrival : {Arrival::Capture, Arrival::Run, Arrival::Gap}) {
            const Filing filing = take(bytes, arrival);
            EXPECT_EQ(filing.outcome, Outcome::Refused);
            EXPECT_TRUE(filing.fault.starts_with("the picture is damaged")) << filing.fault;
        }
    EXPECT_TRUE(s.names().empty());
    EXPECT_EQ(take(whole, Arrival::Capture).outcome, Outcome::Filed);
    EXPECT_EQ(s.read(kCapture), whole);
    EXPECT_EQ(decoded(s.dataFolder() / "Edit" / "20061115" / kCapture).size(), QSize(320, 240));
}

TEST_F(ArchiveTest, APictureThatCannotBeProcessedIsFiledAndWarnedOf) {
    s.imageControl.failure = "CMYK pictures are not supported";
    EXPECT_EQ(s.capture("cmyk").outcome, Outcome::Filed);
    EXPECT_EQ(s.read(kCapture), jpegLike("cmyk"));
    EXPECT_EQ(s.warnings.text.get(), "No processed copy of 20061115_093000_00.jpg: CMYK pictures "
                                     "are not supported.");
    EXPECT_EQ(s.days.plan().states[9 * 60 + 30], DayState::Taken);
}

} // namespace
} // namespace orvane::test
