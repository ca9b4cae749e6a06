#include "archive/DayReport.h"

#include "archive/Csv.h"
#include "tests/archive/ArchiveStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

const std::string kHeader = "date,due,taken,fetched,missed,first,last,note\r\n";

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

TEST_F(DayReportTest, JudgesEachDayByScheduleAndFiles) {
    for (const char* name :
         {"20061113_090000_00.jpg", "20061113_093000_00.jpg", "20061113_100000_00.jpg",
          "20061113_103000_00.jpg", "20061114_080000_00.jpg", "20061114_090100_00.jpg",
          "20061114_093007_00.jpg", "20061114_235900_00.jpg", "20061115_090000_00.jpg"})
        write(name);
    // no pictures of the 12th
    write("20061112_090000_00.jpg", "");
    write("20061112_093000_00.jpg", jpegLike("cut").substr(0, 20));
    writeFile(dataFolder() / "20061112" / "notes.jpg", jpegLike("of another name"));
    writeFile(dataFolder() / "20061112" / "20061113_000007_00.jpg", jpegLike("after midnight"));
    EXPECT_EQ(reportOf(11, 16), kHeader + "2006/11/11,4,0,0,4,,,\r\n"
                                          "2006/11/12,4,0,0,4,,,\r\n"
                                          "2006/11/13,4,4,0,0,09:00:00,10:30:00,\r\n"
                                          "2006/11/14,4,1,1,2,08:00:00,23:59:00,\r\n"
                                          "2006/11/15,4,1,0,1,09:00:00,09:00:00,not over\r\n"
                                          "2006/11/16,4,0,0,0,,,not over\r\n");
}

/// An unreadable day is no empty one, and its reason may hold whatever a table's line must not.
TEST_F(DayReportTest, UnreadableFoldersSaySo) {
    writeFile(dataFolder() / "20061113", "a file");
    const std::string table = reportOf(12, 14);
    EXPECT_TRUE(table.starts_with(kHeader + "2006/11/12,4,0,0,4,,,\r\n2006/11/13,4,,,,,,"));
    EXPECT_NE(table.find("cannot be read: "), std::string::npos) << table;
    EXPECT_TRUE(table.ends_with("2006/11/14,4,0,0,4,,,\r\n"));
    EXPECT_EQ(text(), "report.csv is written. The folder of 1 day cannot be read. See to the "
                      "access rights.");
}

TEST(Csv, FieldsAreQuotedWhereTheyMustBe) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain text", "plain text"}, {"", ""},
        {"a,b", "\"a,b\""},           {"say \"a\"", "\"say \"\"a\"\"\""},
        {"a\nb", "\"a\nb\""},         {"a\rb", "\"a\rb\""}};
    for (const auto& [field, written] : cases)
        EXPECT_EQ(csvField(field), written);
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

/// The schedule of the start holds, whatever happens meanwhile.
TEST_F(DayReportTest, OneScheduleForAllDays) {
    start(1, 10);
    clock.run(20ms);
    panel.Text1[5].text = std::string("1");
    const std::string table = reportOf(1, 1); // one at a time
    EXPECT_EQ(std::ranges::count(table, '\n'), 11);
    EXPECT_NE(table.find("2006/11/10,4,0,0,4,,,\r\n"), std::string::npos) << table;
}

} // namespace
} // namespace orvane::test
