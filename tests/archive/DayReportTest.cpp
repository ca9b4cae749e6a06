#include "archive/DayReport.h"
#include "archive/Csv.h"

#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

const std::string kHeader = "date,due,taken,fetched,missed,first,last,note\r\n";

std::chrono::local_days dayOfNovember(unsigned number) {
    return std::chrono::floor<std::chrono::days>(at(2006, 11, number));
}

/// A station whose schedule has the due minutes 9:00, 9:30, 10:00 and 10:30; it is 9:45.
struct Days {
    Days() {
        s.panel.Dir1[0].path = s.dataFolder();
        const char* fields[] = {"9", "0", "11", "0", "", "30", "0"};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            s.panel.Text1[i].text = std::string(fields[i]);
        s.module.image.Delay = 0;
    }
    void write(const std::string& day, const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(s.dataFolder() / day);
        ASSERT_FALSE(writeToFinalName(bytes, s.dataFolder() / day / name));
    }
    void start(unsigned first, unsigned last) {
        report.start({dayOfNovember(first), dayOfNovember(last)}, file);
    }
    std::string reportOf(unsigned first, unsigned last) {
        start(first, last);
        EXPECT_TRUE(s.clock.runUntil([this] { return !report.running; }, 1h));
        return std::filesystem::exists(file) ? contentsOf(file) : "";
    }
    std::string text() const { return report.text.get(); }

    TestStation s{at(2006, 11, 15, 9, 45)};
    DayReport report{{s.panel, s.busy, s.log, s.faults, s.clock}, s.module, s.schedules};
    std::filesystem::path file = s.folder.path() / "report.csv";
};

TEST(DayReport, JudgesEachDayByScheduleAndFiles) {
    struct Case {
        const char* what;
        unsigned day;
        std::vector<std::string> pictures; ///< times and frames
        std::string line;
    };
    const Case cases[] = {
        {"complete",
         13,
         {"090000_00", "093000_00", "100000_00", "103000_00"},
         "2006/11/13,4,4,0,0,09:00:00,10:30:00,\r\n"},
        {"no folder", 12, {}, "2006/11/12,4,0,0,4,,,\r\n"},
        {"late, fetched, beside the due minutes",
         14,
         {"080000_00", "090100_00", "093007_00", "235900_00"},
         "2006/11/14,4,1,1,2,08:00:00,23:59:00,\r\n"},
        {"today", 15, {"090000_00"}, "2006/11/15,4,1,0,1,09:00:00,09:00:00,not over\r\n"},
        {"tomorrow", 16, {}, "2006/11/16,4,0,0,0,,,not over\r\n"},
    };
    for (const Case& test : cases) {
        Days d;
        const std::string day = "200611" + std::to_string(test.day);
        for (const std::string& picture : test.pictures)
            d.write(day, day + "_" + picture + ".jpg", jpegLike(picture));
        EXPECT_EQ(d.reportOf(test.day, test.day), kHeader + test.line) << test.what;
    }
}

TEST(DayReport, WhatIsNoPictureDoesNotCount) {
    Days d;
    d.write("20061113", "20061113_090000_00.jpg", "");
    d.write("20061113", "20061113_093000_00.jpg", jpegLike("cut").substr(0, 20));
    d.write("20061113", "notes.jpg", jpegLike("of another name"));
    d.write("20061113", "20061114_000007_00.jpg", jpegLike("a run after midnight"));
    EXPECT_EQ(d.reportOf(13, 13), kHeader + "2006/11/13,4,0,0,4,,,\r\n");
}

/// An unreadable day is no empty one, and its reason may hold whatever a table's line must not.
TEST(DayReport, UnreadableFoldersSaySo) {
    Days d;
    ASSERT_FALSE(writeToFinalName("a file", d.s.dataFolder() / "20061113"));
    const std::string table = d.reportOf(12, 14);
    EXPECT_TRUE(table.starts_with(kHeader + "2006/11/12,4,0,0,4,,,\r\n2006/11/13,4,,,,,,"));
    EXPECT_NE(table.find("cannot be read: "), std::string::npos) << table;
    EXPECT_TRUE(table.ends_with("2006/11/14,4,0,0,4,,,\r\n"));
    EXPECT_EQ(
        d.text(),
        "report.csv is written. The folder of 1 day cannot be read. See to the access rights.");
}

TEST(DayReport, FieldsAreQuotedWhereTheyMustBe) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain text", "plain text"}, {"", ""},
        {"a,b", "\"a,b\""},           {"say \"a\"", "\"say \"\"a\"\"\""},
        {"a\nb", "\"a\nb\""},         {"a\rb", "\"a\rb\""}};
    for (const auto& [field, written] : cases)
        EXPECT_EQ(csvField(field), written);
}

/// The older report stays as it was until the new one is whole.
TEST(DayReport, IsWrittenWholeOrNotAtAll) {
    Days d;
    ASSERT_FALSE(writeToFinalName("older", d.file));
    for (Ticks moment = 0ms; moment < 12ms; moment += 1ms) {
        d.start(12, 14);
        d.s.clock.run(moment);
        ASSERT_TRUE(d.report.running);
        d.report.cancel();
        EXPECT_EQ(d.text(), "Cancelled. No report was written.");
        EXPECT_EQ(contentsOf(d.file), "older");
    }
    EXPECT_NE(d.reportOf(12, 14), "older");

    d.file = d.s.folder.path() / "gone" / "report.csv";
    EXPECT_EQ(d.reportOf(12, 14), "");
    EXPECT_TRUE(d.text().starts_with("Ended early: the report cannot be written: ")) << d.text();
    std::filesystem::remove_all(d.s.dataFolder());
    d.reportOf(12, 14);
    EXPECT_EQ(d.text(), "Ended early: the data folder is not there; connect its disk or choose "
                        "another one. No report was written.");
}

/// The schedule of the start holds, whatever happens meanwhile.
TEST(DayReport, OneScheduleForAllDays) {
    Days d;
    d.start(1, 10);
    d.s.clock.run(20ms);
    d.s.panel.Text1[5].text = std::string("1");
    const std::string table = d.reportOf(1, 1); // one at a time
    EXPECT_EQ(std::ranges::count(table, '\n'), 11);
    EXPECT_NE(table.find("2006/11/10,4,0,0,4,,,\r\n"), std::string::npos) << table;
}

} // namespace
} // namespace orvane::test
