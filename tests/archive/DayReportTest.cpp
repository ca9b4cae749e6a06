#include "archive/DayReport.h"
#include "tests/archive/ArchiveStation.h"

namespace orvane::test {
namespace {

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
    for (const char* name : {"20061114_080000_00.jpg", "20061114_090100_00.jpg",
                             "20061114_093007_00.jpg", "20061114_235900_00.jpg",
                             "20061115_090000_00.jpg"})
        write(name);
    write("20061112_090000_00.jpg", "");
    write("20061112_093000_00.jpg", jpegLike("cut").substr(0, 20));
    writeFile(dataFolder() / "20061112" / "notes.jpg", jpegLike("of another name"));
    writeFile(dataFolder() / "20061112" / "20061113_000007_00.jpg", jpegLike("after midnight"));
    writeFile(dataFolder() / "20061113", "a file");
    start(11, 16);
    clock.run(7ms);
    panel.Text1[5].text = std::string("1");
    std::string table = reportOf(1, 1); // one at a time
    const std::size_t note = table.find("cannot be read: ");
    ASSERT_NE(note, std::string::npos) << table;
    table.erase(note, table.find("\r\n", note) - note); // and why, in the system's words
    EXPECT_EQ(table, "date,due,taken,fetched,missed,first,last,note\r\n"
                     "2006/11/11,4,0,0,4,,,\r\n"
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
