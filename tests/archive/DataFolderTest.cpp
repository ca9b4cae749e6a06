#include "archive/Csv.h"
#include "archive/DayFolder.h"
#include "archive/FolderScan.h"
#include "archive/Ledger.h"
#include "archive/SchFile.h"
#include "tests/support/Fakes.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(DataFolder, KnowsThePartsOfAnArchiveByTheirNames) {
    const std::pair<const char*, const char*> cases[] = {
        {"/data/20061115", "20061115 is a day of the archive"},
        {"/data/20061115/", "20061115 is a day of the archive"},
        {"/data/20061115/cloudy", "cloudy lies in 20061115, a day of the archive"},
        {"/data/Edit", "Edit is the archive's folder of processed copies"},
        {"/data/Edit/20061115", "20061115 is a day of the archive"},
        {"/data/Ledger", "Ledger is the archive's folder of ledgers"},
        {"/data", ""},
        {"/data/20061340", ""},
        {"/data/2006111", ""},
        {"/data/Edits", ""},
        {"/", ""}};
    for (const auto& [folder, place] : cases)
        EXPECT_EQ(archivePlace(folder).value_or(""), place) << folder;
}

TEST(ImageName, TakesTheFormOfARecordedPictureOnly) {
    const auto name = ImageName::ofFile("d/20061115_093007_42.jpg");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->time(), at(2006, 11, 15, 9, 30, 7));
    EXPECT_EQ(name->frame(), 42);
    EXPECT_FALSE(name->isCapture());
    EXPECT_EQ(name->text(), "20061115_093007_42.jpg");
    EXPECT_EQ(name->withFrame(3).text(), "20061115_093007_03.jpg");
    EXPECT_EQ(ImageName::parse("20061115_093000_00.JPG")->text(), "20061115_093000_00.jpg");
    EXPECT_TRUE(ImageName::parse("20080229_235959_99.jpg"));
    const ImageName capture = ImageName::ofCapture(at(2006, 1, 2, 3, 4, 59));
    EXPECT_EQ(capture.text(), "20060102_030400_00.jpg");
    EXPECT_TRUE(capture.isCapture());
    EXPECT_LT(capture.withFrame(99), *ImageName::parse("20060102_030401_00.jpg"));
    for (const char* text :
         {"", "full.jpg", "20061115_24000_00.jpg", "20061115_240000_00.jpg",
          "20061115_096000_00.jpg", "20061115_093060_00.jpg", "20061115_093099_00.jpg",
          "20061131_093000_00.jpg", "20070229_093000_00.jpg", "20061115_0930ab_00.jpg",
          "20061115_093000_0x.jpg", "20061115-093000_00.jpg", "20061115_093000_00.jpeg",
          "20061115_093000_00.jpg.part", "20061115_093000_00.bmp", "+0061115_093000_00.jpg",
          " 0061115_093000_00.jpg"})
        EXPECT_FALSE(ImageName::parse(text)) << text;
}

TEST(ImageName, TitlesAreReadByPeople) {
    const std::pair<const char*, const char*> cases[] = {
        {"20061115_122500_00.jpg", "15 Nov 2006 12:25"},
        {"20061115_122507_00.jpg", "15 Nov 2006 12:25:07"},
        {"20060102_000000_03.jpg", "2 Jan 2006 00:00, frame 3"},
        {"20081231_235959_00.jpg", "31 Dec 2008 23:59:59"}};
    for (const auto& [name, title] : cases)
        EXPECT_EQ(ImageName::parse(name)->title(), title) << name;
}

TEST(SchFile, PatternsAndNames) {
    EXPECT_EQ(ExtensionOf("a.b.jpg") + BaseNameOf("a.b.jpg"), ".jpga.b");
    EXPECT_EQ(ExtensionOf("readme") + BaseNameOf("readme"), "readme");
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"readme", "*.*", true},  {"readme", "*", true},         {"a.jpg", "*.jpg", true},
        {"a.jpg", "?.jpg", true}, {"ab.jpg", "?.jpg", false},    {"a.jpeg", "*.jp?g", true},
        {"aXbXc", "a*b*c", true}, {"aXbX", "a*b*c", false},      {"abab", "*ab", true},
        {"", "*", true},          {"a.jpg.part", "*.jpg", false}};
    for (const auto& [name, pattern, matches] : cases)
        EXPECT_EQ(matchesPattern(name, pattern), matches) << name << " " << pattern;
}

TEST(SchFile, HoldsAThousandNames) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.path() / "sub.jpg");
    for (int i = 0; i < 1000; ++i)
        writeFile(folder.path() / (std::to_string(i) + ".jpg"), "x");
    std::vector<std::filesystem::path> names;
    EXPECT_TRUE(SchFile(folder.path() / "", "", names));
    EXPECT_EQ(names.size(), 1000U);
    EXPECT_TRUE(std::ranges::is_sorted(names));
    writeFile(folder.path() / "one more", "x");
    names.clear();
    EXPECT_FALSE(SchFile(folder.path() / "", "*.*", names));
    EXPECT_EQ(names.size(), 1000U);
    names.clear();
    EXPECT_TRUE(SchFile(folder.path() / "gone.jpg", "", names));
    EXPECT_TRUE(SchFile(folder.path() / "7.jpg", "", names));
    EXPECT_EQ(names, std::vector{folder.path() / "7.jpg"});
}

/// "Cannot be read" is never taken for "empty".
TEST(DatedFolder, WhatCannotBeReadIsNotEmpty) {
    const TempFolder temp;
    const auto write = [&](const char* name, const std::string& bytes) {
        writeFile(temp.path() / name, bytes);
    };
    for (const char* name :
         {"20061115_093000_00.jpg", "20061115_100007_00.JPG", "20061115_103000_00.jpg",
          "20061115_103007_00.jpg", "20061116_120000_00.jpg", "20061115_143000_00.txt"})
        write(name, jpegLike(name));
    write("20061115_150000_00.jpg", "");
    DayPictures expected{};
    expected[9 * 60 + 30] = expected[10 * 60 + 30] = PictureOrigin::Taken;
    expected[10 * 60] = PictureOrigin::Fetched;
    bool readable = true;
    DayFolder folder{[&](const auto& path) {
        return readable ? listDay(path) : DayListing{{}, "Permission denied"};
    }};
    const auto day = std::chrono::floor<std::chrono::days>(at(2006, 11, 15));
    folder.turnTo(temp.path(), day);
    EXPECT_TRUE(folder.refresh());
    EXPECT_EQ(folder.origins(), expected);
    write("20061115", "in the way");
    EXPECT_TRUE(listDay(temp.path() / "20061115").fault);
    readable = false;
    EXPECT_TRUE(folder.refresh());
    EXPECT_EQ(folder.fault(), "Permission denied");
    EXPECT_EQ(folder.origins(), expected) << "what was known still stands";
    folder.add(temp.path() / "20061115_170000_00.jpg");
    EXPECT_EQ(folder.origins()[17 * 60], PictureOrigin::Taken);
    readable = true;
    write("20061115_150000_00.jpg", jpegLike("instead of a broken one"));
    EXPECT_TRUE(folder.refresh());
    EXPECT_FALSE(folder.fault());
    EXPECT_EQ(folder.origins()[15 * 60], PictureOrigin::Taken);
    folder.turnTo(temp.path() / "none", day);
    folder.refresh();
    EXPECT_EQ(folder.origins(), DayPictures{});
    EXPECT_FALSE(folder.fault()) << "no folder is an empty one";
}

constexpr std::string_view kHeader = "time,offset,event,file,detail\r\n";

/// What a day tells of a picture that is not there: "." due, "x" missed, "o" recording was off, "-"
/// the program was not running; each half hour from 8:00 to 13:00, blank when it is not due.
std::string judged(const LedgerDay& day) {
    const DueMinutes isDue = day.dueBy({9h, 17h, 30min, {}}, 13 * 60);
    constexpr std::string_view kSigns = ".xo-";
    std::string text;
    for (int minute = 8 * 60; minute < 13 * 60; minute += 30) {
        const auto place = static_cast<std::size_t>(minute);
        text += isDue[place] ? kSigns[static_cast<std::size_t>(day.watch()[place])] : ' ';
    }
    return text;
}

TEST(Ledger, TellsWhoRecorded) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"no ledger", "", "  ........"},
        {"across midnight, then killed after 10:00 and started at noon",
         "00:00,+09:00,schedule,,09:00 to 17:00 every 30 min\n00:00,+09:00,recording on,,\n"
         "09:00,+09:00,taken,20061115_090000_00.jpg,\n09:30,+09:00,missed,,HTTP status 503\n"
         "10:00,+09:00,taken,20061115_100000_00.jpg,\n12:00,+09:00,program started,,\n"
         "12:00,+09:00,recording on,,\n",
         "  xxx---xx"},
        {"other schedules",
         "08:00,+09:00,program started,,\n08:00,+09:00,schedule,,08:00 to 10:00 every 30 min\n"
         "08:00,+09:00,recording on,,\n11:00,+09:00,schedule,,09:00 to 17:00 every 60 min\n"
         "12:00,+09:00,schedule,,09:00 to 17:00 every 30 min\n",
         "xxxx    xx"},
        {"summer time ends at 10:00: the hour comes again",
         "08:00,+02:00,program started,,\n08:00,+02:00,recording on,,\n"
         "09:30,+02:00,recording off,,\n09:10,+01:00,recording on,,\n",
         "  xxxxxxxx"},
        {"a miss is one, whatever else is said of its minute",
         "08:00,+09:00,program started,,\n08:00,+09:00,recording on,,\n"
         "09:30,+09:00,recording off,,\n09:30,+09:00,missed,,no answer\n",
         "  xxoooooo"},
        {"nonsense between",
         "08:00,+09:00,program started,,\n\n,,,,\n25:00,+09:00,recording off,,\n"
         "08:10,0900,recording off,,\n08:10,+09:00,recording of,,\n"
         "08:10,+09:00,recording off,\n08:10,+09:00,recording off,,,\n"
         "08:10,+09:00,\"recording off,,\n\xFF\xFE,\"\"\"\n"
         "08:10,+09:00,schedule,,09:00 to 17:00 every 3 min\n08:20,+09:00,recording on,,\n",
         "  xxxxxxxx"}};
    const TempFolder folder;
    for (const auto& [what, lines, expected] : cases) {
        writeFile(folder.path() / "day.csv", std::string(kHeader) + lines);
        EXPECT_EQ(judged(readLedger(folder.path() / "day.csv")), expected) << what;
    }
}

TEST(Ledger, ALineIsReadAsItWasWritten) {
    const LedgerLine line{570, -210min, LedgerEntry::Missed, "", "\"status\", 503"};
    EXPECT_EQ(ledgerText(line), "09:30,-03:30,missed,,\"\"\"status\"\", 503\"");
    const auto read = parseLedgerLine(ledgerText(line));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->minute, 570);
    EXPECT_EQ(read->offset, -210min);
    EXPECT_EQ(read->entry, LedgerEntry::Missed);
    EXPECT_EQ(read->detail, "\"status\", 503");
    EXPECT_EQ(ledgerText({0, 0min, LedgerEntry::Missed, "", "one\r\ntwo"}),
              "00:00,+00:00,missed,,one  two");
    EXPECT_EQ(csvField("a\nb"), "\"a\nb\"");
    EXPECT_EQ(csvField("a\rb"), "\"a\rb\"");
}

/// Whatever a loss of power leaves of a file: every whole line counts, nothing else, and what is
/// written next is not joined to half a line.
TEST(Ledger, ACutLineIsPassedOver) {
    const TempFolder folder;
    const auto file = ledgerOf(folder.path(), std::chrono::local_days(std::chrono::days(13467)));
    EXPECT_EQ(file, folder.path() / "Ledger" / "20061115.csv");
    EXPECT_TRUE(appendToLedger(folder.path() / "gone" / "Ledger" / "20061115.csv", "x\r\n"));
    const std::string lines = "08:00,+09:00,program started,,\r\n08:00,+09:00,recording on,,\r\n"
                              "09:30,+09:00,missed,,\"no, \"\"none\"\"\"\r\n"
                              "10:00,+09:00,schedule,,09:00 to 17:00 every 30 min\r\n"
                              "11:40,+09:00,recording off,,\r\n";
    ASSERT_FALSE(appendToLedger(file, lines));
    const std::string whole = contentsOf(file);
    EXPECT_EQ(whole, std::string(kHeader) + lines);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        const std::string kept = whole.substr(0, size);
        const auto holds = [&](const char* line) { return kept.find(line) != std::string::npos; };
        writeFile(file, kept);
        const LedgerDay day = readLedger(file);
        ASSERT_EQ(day.reasonOf(570), holds("\"\"\"\r\n") ? "no, \"none\"" : "");
        ASSERT_EQ(judged(day).substr(6, 2), holds("on,,\r\n")        ? "xx"
                                            : holds("started,,\r\n") ? "oo"
                                                                     : "..");
        ASSERT_FALSE(mendLedger(file));
        ASSERT_FALSE(appendToLedger(file, "12:10,+09:00,recording off,,\r\n"));
        const std::string before = kept.substr(0, kept.rfind('\n') + 1);
        ASSERT_EQ(contentsOf(file), (before.empty() ? std::string(kHeader) : before) +
                                        "12:10,+09:00,recording off,,\r\n");
    }
}

} // namespace
} // namespace orvane::test
