#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

/// A station that records every half hour from 9 to 17 and is started at 8:50.
class LedgerOfADay : public StationDay {
  protected:
    LedgerOfADay() { start(at(2006, 11, 15, 8, 50)); }
    /// Without the line of the fields' names.
    std::string lines() const {
        std::string text = ledger();
        std::erase(text, '\r');
        return text.substr(text.find('\n') + 1);
    }
    std::string plan() const { return s->days.plan().text; }
    std::string reasonAt930() const {
        return s->days.today().detailOf(s->days.plan(), 9 * 60 + 30, 0);
    }
};

constexpr const char* kStart = "08:50,+09:00,program started,,\n"
                               "08:50,+09:00,schedule,,09:00 to 17:00 every 30 min\n"
                               "08:50,+09:00,recording on,,\n"
                               "09:00,+09:00,taken,20061115_090000_00.jpg,\n";

TEST_F(LedgerOfADay, HasALineForEveryDueMinuteAndSwitch) {
    recordUntil(9, 10);
    s->http.answer = failing("HTTP status 503");
    runUntil(9, 40);
    s->recording.Command2_Click();
    s->panel.Text1[5].text = "15";
    runUntil(10, 10);
    const auto states = s->days.plan().states;
    EXPECT_EQ(states[9 * 60 + 30], DayState::Missed) << "what was stays";
    EXPECT_EQ(states[10 * 60], DayState::Off);
    EXPECT_EQ(std::ranges::count(states, DayState::ToCome), 0);
    s->press(&Recording::Command1_Click);
    s->files.failing = "write";
    s->http.answer = [](const std::string&) { return FakeHttp::picture("x"); };
    runUntil(10, 12);
    s->utcOffset = 600min;
    runUntil(10, 20);
    s->ledger.end();
    EXPECT_EQ(lines(), std::string(kStart) +
                           "09:30,+09:00,missed,,HTTP status 503\n"
                           "09:40,+09:00,recording off,,\n"
                           "10:10,+09:00,schedule,,09:00 to 17:00 every 15 min\n"
                           "10:10,+09:00,recording on,,\n"
                           "10:15,+10:00,missed,,The data folder cannot be written: No space left "
                           "on device.\n"
                           "10:20,+10:00,program ended,,\n");
    EXPECT_EQ(plan(), "taken 1 of 30, next at 10:30, 2 missed, 1 not recorded");
    EXPECT_EQ(reasonAt930(), "HTTP status 503");
}

/// The day goes on as it was; what nobody recorded is fetched from the store, but not what nobody
/// wanted.
TEST_F(LedgerOfADay, IsKnownAfterARestart) {
    recordUntil(9, 10);
    s->http.answer = failing("HTTP status 503");
    runUntil(9, 40);
    s->recording.Command2_Click();
    runUntil(10, 10);
    s->press(&Recording::Command1_Click);
    runUntil(10, 35);
    start(at(2006, 11, 15, 12, 5));
    s->store.values["Settings/FillGaps"] = "1";
    std::string asked;
    s->gapBrowser.answer = [&](const std::string& url) {
        asked += url.substr(url.find("from_hour"), 25) + " ";
        return std::string("NO_DATA");
    };
    recordUntil(12, 7);
    EXPECT_EQ(plan(), "taken 1 of 16, next at 12:30, 2 missed, 4 not recorded");
    EXPECT_EQ(s->days.plan().states[10 * 60], DayState::Off);
    EXPECT_EQ(s->days.plan().states[11 * 60], DayState::NotRunning);
    EXPECT_EQ(reasonAt930(), "HTTP status 503");
    EXPECT_EQ(s->warnings.text.get(), "");
    EXPECT_EQ(std::ranges::count(asked, ' '), 5) << asked;
    EXPECT_EQ(asked.find("from_hour=10&from_min=0"), std::string::npos) << asked;
}

/// No capture is lost for a ledger that cannot be written, and what it was to tell follows.
TEST_F(LedgerOfADay, ThatCannotBeWrittenStopsNothing) {
    writeFile(s->dataFolder() / "Ledger", "in the way");
    recordUntil(10, 10);
    EXPECT_EQ(count(), 3);
    const auto tellsOfIt = [](const auto& line) { return line.find("ledger") != line.npos; };
    EXPECT_EQ(std::ranges::count_if(s->logged(), tellsOfIt), 1);
    EXPECT_EQ(plan(), "taken 3 of 16, next at 10:30");
    std::filesystem::remove(s->dataFolder() / "Ledger");
    runUntil(10, 40);
    EXPECT_EQ(lines(), std::string(kStart) + "09:30,+09:00,taken,20061115_093000_00.jpg,\n"
                                             "10:00,+09:00,taken,20061115_100000_00.jpg,\n"
                                             "10:30,+09:00,taken,20061115_103000_00.jpg,\n");
}

} // namespace
} // namespace orvane::test
