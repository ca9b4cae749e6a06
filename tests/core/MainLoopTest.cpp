#include "tests/support/StationDay.h"

#include <numeric>
#include <random>
#include <set>

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

/// Records from 9:00 to 17:00 every 30 minutes unless another schedule is set.
struct MainLoopTest : StationDay {
    MainLoopTest() { start(at(2006, 11, 15, 9, 29)); }
    std::string warning() const { return s->warnings.text; }
};

/// The interval means minutes of the hour; slow answers and long delays cost no minute and bring
/// none twice.
TEST_F(MainLoopTest, TakesTheDueMinutesOfAnHour) {
    std::vector<int> all(60);
    std::iota(all.begin(), all.end(), 0);
    const struct {
        const char *interval, *delay;
        std::chrono::milliseconds latency;
        std::vector<int> minutes;
    } cases[] = {{"45", "0", 0s, {0, 45}}, {"7", "0", 0s, {0, 7, 14, 21, 28, 35, 42, 49, 56}},
                 {"59", "0", 0s, {0, 59}}, {"0", "0", 0s, {}},
                 {"1", "0", 0s, all},      {"1", "15", 20s, all},
                 {"1", "5", 50s, all}};
    for (const auto& [interval, delay, latency, minutes] : cases) {
        start(at(2006, 11, 15, 9, 0));
        s->store.values["Operation/IntervalSecond"] = "30";
        s->store.values["Settings/Delay"] = delay;
        s->http.latency = latency;
        s->setSchedule("10", "12", interval);
        std::filesystem::remove_all(s->dataFolder() / "20061115");
        recordUntil(11, 0);
        Names expected;
        for (const int minute : minutes)
            expected.push_back("20061115_10" + twoDigits(minute) + "00_00.jpg");
        EXPECT_EQ(s->imagesOf("20061115"), expected) << interval << " " << delay;
        EXPECT_EQ(s->http.requests, std::ssize(minutes));
    }
}

TEST_F(MainLoopTest, APictureFromBeforeARestartIsRefused) {
    for (const auto& [begun, hour, minute] : {std::tuple{29, 9, 31}, {40, 10, 1}}) {
        start(at(2006, 11, 15, 9, begun));
        s->http.answer = [](const std::string&) { return FakeHttp::picture("stuck"); };
        recordUntil(hour, minute);
        EXPECT_EQ(s->imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
    }
}

TEST_F(MainLoopTest, ACaptureDoesNotWaitForTheLiveView) {
    recordUntil(9, 29, 30);
    s->panel.chkLive.ticked = true;
    s->http.latency = 55s;
    runUntil(9, 29, 50);
    s->http.latency = 50ms;
    runUntil(9, 30, 3);
    EXPECT_EQ(s->imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
}

/// Random faults for some days: only whole new pictures are filed, each with its copy, each attempt
/// brings a picture or a line in the log, and nothing grows.
TEST_F(MainLoopTest, RandomFaultsForDays) {
    start(at(2006, 11, 1));
    s->setSchedule("0", "23", "10", "59");
    std::mt19937 random(7);
    std::set<std::string> sent;
    s->http.answer = [&](const std::string&) {
        s->http.latency = std::chrono::milliseconds(random() % 60'000);
        const std::string whole =
            jpegLike(std::string(random() % 900, 'x') + std::to_string(random()));
        const HttpReply answers[] = {FakeHttp::failed("refused"),
                                     FakeHttp::picture("stale"),
                                     {true, 200, whole.substr(0, random() % whole.size()), ""},
                                     {true, 200, "<html></html>", ""},
                                     {false, 500, "", "HTTP status 500"}};
        const std::size_t kind = random() % 8;
        if (kind < std::size(answers)) return answers[kind];
        sent.insert(whole);
        return HttpReply{true, 200, whole, ""};
    };
    s->start(true);
    int filed = 0;
    std::set<std::size_t> waiting;
    for (const std::string day : {"20061101", "20061102", "20061103"}) {
        s->clock.run(24h);
        waiting.insert(s->clock.pending());
        EXPECT_EQ(s->imagesOf(day, "Edit"), s->imagesOf(day));
        for (const std::string& name : s->imagesOf(day)) {
            const std::string bytes = contentsOf(s->dataFolder() / day / name);
            EXPECT_TRUE(sent.erase(bytes) == 1 || bytes == jpegLike("stale")) << name;
        }
        filed += count(day);
    }
    EXPECT_LE(*waiting.rbegin(), *waiting.begin() + 2) << "a capture's";
    EXPECT_GT(filed, 3 * 144 / 2);
    const int ended = filed + s->countLogged("DownLoad Error"); // one may still be under way
    EXPECT_GE(s->http.requests, ended);
    EXPECT_LE(s->http.requests, ended + 1);
}

/// Nothing filed is ever replaced, and an hour that comes again is recorded again.
TEST_F(MainLoopTest, SurvivesAJumpingWallClock) {
    s->setSchedule("9", "17", "10");
    recordUntil(11, 5);
    EXPECT_EQ(count(), 10); // 9:30 to 11:00
    s->clock.jumpWall(-1h);
    runUntil(11, 5);
    const Names images = s->imagesOf("20061115");
    EXPECT_EQ(images.size(), 16U); // 10:10 to 11:00 once more
    EXPECT_EQ(std::ranges::count(images, "20061115_103000_01.jpg"), 1);
    s->clock.jumpWall(+2h);
    runUntil(13, 15);
    EXPECT_EQ(count(), 17);
    s->days.refresh();
    EXPECT_EQ(s->days.plan().missed, 0) << "minutes that never were";
    s->clock.jumpWall(24h * 400);
    s->clock.run(24h);
    EXPECT_EQ(count("20071220") + count("20071221"), 48);
    EXPECT_EQ(warning(), "");
}

TEST_F(MainLoopTest, AMinuteThatComesAgainIsNotTakenTwice) {
    for (const auto back : {1min, 4min, 9min}) {
        TestStation station(at(2006, 11, 15, 8, 59));
        station.setSchedule("9", "17", "1");
        const auto picture = station.http.answer;
        station.http.answer = [&](const std::string& url) {
            const bool refused = minuteOfDay(station.clock.now()) == 9 * 60 + 17;
            return refused ? FakeHttp::failed("refused") : picture(url);
        };
        const auto countAt = [&](int hour, int minute, int second) {
            station.clock.runUntil(at(2006, 11, 15, hour, minute, second));
            return station.imagesOf("20061115").size();
        };
        station.start(true);
        EXPECT_EQ(countAt(9, 20, 30), 20U); // without 9:17
        station.http.answer = picture;
        station.clock.jumpWall(-back);
        const unsigned late = back == 1min ? 0 : 1;
        EXPECT_EQ(countAt(9, 20, 50), 20 + late) << back.count();
        EXPECT_EQ(countAt(10, 0, 0), 59 + late) << back.count();
        EXPECT_EQ(station.warnings.text.get(), "");
    }
}

/// A disk that is pulled out, at any moment, and comes back: nothing is lost, and its folder, in
/// whose place another disk would be filled, is never made.
TEST_F(MainLoopTest, AChosenFolderThatGoesIsNotMadeAndUsedAgainWhenItComes) {
    for (const Ticks moment : {Ticks(-20min), Ticks(-1s), Ticks(3s)}) { // seen from 10:00
        start(at(2006, 11, 15, 9, 29));
        std::filesystem::remove_all(s->dataFolder() / "20061115");
        s->store.values["Settings/Delay"] = "5";
        s->start(true);
        s->clock.runUntil(at(2006, 11, 15, 10, 0) + moment);
        const auto away = s->folder.path() / "away";
        const std::string stored = s->store.values["DataPath/PathDataFile"];
        std::filesystem::rename(s->dataFolder(), away);
        runUntil(10, 31);
        const auto meanwhile = s->folder.path() / "pictures" / "Orvane";
        for (const char* name : {"20061115_100000_00.jpg", "20061115_103000_00.jpg"})
            EXPECT_TRUE(std::filesystem::exists(meanwhile / "20061115" / name)) << name;
        EXPECT_FALSE(std::filesystem::exists(s->dataFolder()));
        EXPECT_EQ(s->panel.Dir1[0].path.get(), meanwhile);
        EXPECT_EQ(s->store.values["DataPath/PathDataFile"], stored);
        const std::string told = "The data folder " + stored + " is not there. Pictures go to " +
                                 utf8FromPath(meanwhile) + " meanwhile.";
        EXPECT_EQ(warning(), told);
        std::filesystem::rename(away, s->dataFolder());
        runUntil(10, 33);
        EXPECT_EQ(warning(), "") << "what lies elsewhere is not missed";
        runUntil(11, 1);
        EXPECT_EQ(s->imagesOf("20061115").back(), "20061115_110000_00.jpg");
        EXPECT_EQ(warning(), "");
        EXPECT_EQ(s->countLogged(told), 1);
        EXPECT_EQ(s->countLogged("Data folder: " + stored), 1);
    }
}

/// Where no minute leaves room, after the day's first one.
TEST_F(MainLoopTest, TheDailyClocksAreSetInAGapOrAfterACapture) {
    const struct {
        const char *startHour, *endHour, *endMinute, *interval, *setAt;
    } cases[] = {{"0", "23", "59", "1", "08:59"}, {"0", "23", "59", "2", "09:00"},
                 {"0", "23", "59", "3", "09:01"}, {"9", "17", "0", "30", "09:01"},
                 {"9", "9", "2", "1", "09:00"},   {"9", "17", "0", "31", "09:01"}};
    for (const auto& c : cases) {
        TestStation station(at(2006, 11, 15, 8, 59, 30));
        station.store.values["Settings/AdjTime"] = "1";
        station.setSchedule(c.startHour, c.endHour, c.interval, c.endMinute);
        station.start(true);
        EXPECT_TRUE(station.clock.runUntil([&] { return !station.timeDialog.empty(); }, 1h));
        EXPECT_EQ(hourMinute(station.clock.now()), c.setAt) << c.interval;
        EXPECT_FALSE(station.views.latest.empty()) << "the day's first capture went before";
    }
}

/// A station that records every half hour from 9 to 17 and is started at 8:50.
struct LedgerOfADay : StationDay {
    LedgerOfADay() { start(at(2006, 11, 15, 8, 50)); }
    /// Without the line of the fields' names.
    std::string lines() const {
        std::string text = ledger();
        std::erase(text, '\r');
        return text.substr(text.find('\n') + 1);
    }
    std::string plan() const { return s->days.plan().text; }
};

constexpr const char* kStart = "08:50,+09:00,program started,,\n"
                               "08:50,+09:00,schedule,,09:00 to 17:00 every 30 min\n"
                               "08:50,+09:00,recording on,,\n"
                               "09:00,+09:00,taken,20061115_090000_00.jpg,\n";

/// After a restart the day goes on as it was; what nobody recorded is fetched from the store, but
/// not what nobody wanted.
TEST_F(LedgerOfADay, HasALineForEveryDueMinuteAndSwitch) {
    recordUntil(9, 10);
    s->http.answer = failing("HTTP status 503");
    runUntil(9, 40);
    s->recording.Command2_Click();
    s->panel.Text1[5].text = "15";
    runUntil(10, 10);
    EXPECT_EQ(std::ranges::count(s->days.plan().states, DayState::ToCome), 0);
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
    start(at(2006, 11, 15, 11, 5));
    s->store.values["Settings/FillGaps"] = "1";
    std::string asked;
    s->gapBrowser.answer = [&](const std::string& url) {
        asked += url.substr(url.find("from_hour"), 25) + " ";
        return std::string("NO_DATA");
    };
    recordUntil(11, 7);
    EXPECT_EQ(plan(), "taken 1 of 30, next at 11:15, 2 missed, 4 not recorded");
    EXPECT_EQ(s->days.plan().states[10 * 60], DayState::Off);
    EXPECT_EQ(s->days.plan().states[11 * 60], DayState::NotRunning);
    EXPECT_EQ(s->days.today().detailOf(s->days.plan(), 9 * 60 + 30, 0), "HTTP status 503");
    EXPECT_EQ(std::ranges::count(asked, ' '), 5) << asked;
    EXPECT_EQ(asked.find("from_hour=10&from_min=0"), std::string::npos) << asked;
}

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
