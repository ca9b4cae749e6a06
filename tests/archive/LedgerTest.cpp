#include "archive/Ledger.h"
#include "archive/Csv.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr Schedule kHalfHours{9h, 17h, 30min, {}};
constexpr std::string_view kHeader = "time,offset,event,file,detail\r\n";

/// What a day tells of a picture that is not there: "." due, "x" missed, "o" recording was off, "-"
/// the program was not running; each half hour from 8:00 to 13:00, blank when it is not due.
std::string judged(const LedgerDay& day, const Schedule& present = kHalfHours, int now = 13 * 60) {
    const DueMinutes isDue = day.dueBy(present, now);
    constexpr std::string_view kSigns = ".xo-";
    std::string text;
    for (int minute = 8 * 60; minute < 13 * 60; minute += 30) {
        const auto place = static_cast<std::size_t>(minute);
        text += isDue[place] ? kSigns[static_cast<std::size_t>(day.watch()[place])] : ' ';
    }
    return text;
}

LedgerDay dayOf(const std::string& lines) {
    const TempFolder folder;
    writeFile(folder.path() / "day.csv", std::string(kHeader) + lines);
    return readLedger(folder.path() / "day.csv");
}

TEST(Ledger, TellsWhoRecorded) {
    struct Case {
        const char *what, *lines, *judged;
    };
    const Case cases[] = {
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
    for (const auto& [what, lines, expected] : cases)
        EXPECT_EQ(judged(dayOf(lines)), expected) << what;
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
