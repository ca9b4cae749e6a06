#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

/// What others change under a recording station: the PC's clock, and the data folder.
struct ClockSet : StationDay {
    ClockSet() { start(at(2006, 11, 15, 9, 29)); }
    std::string warning() const { return s->warnings.text; }
};
using DataFolderInUse = ClockSet;

/// By an operator, and by summer time, which begins where a minute ends.
TEST_F(ClockSet, AClockPutForwardBringsNoWarning) {
    for (const WallTime moment : {at(2006, 11, 15, 9, 35), at(2006, 11, 15, 10) - 1ms}) {
        start(at(2006, 11, 15, 8, 55));
        s->store.values["Settings/FillGaps"] = "1";
        s->setSchedule("9", "17", "10");
        s->start(true);
        s->clock.runUntil(moment);
        s->clock.jumpWall(1h);
        runUntil(11, 20, 30);
        EXPECT_EQ(warning(), "");
        EXPECT_EQ(s->gapBrowser.pages().size(), 0U);
        s->days.refresh();
        EXPECT_EQ(s->days.plan().missed, 0);
    }
}

/// The wall clock is set by the operator and by daylight saving; nothing filed is ever replaced,
/// and an hour that comes again is recorded again.
TEST_F(ClockSet, SurvivesAJumpingWallClock) {
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
    s->clock.jumpWall(24h * 400);
    s->clock.run(24h);
    EXPECT_EQ(count("20071220") + count("20071221"), 48);
    EXPECT_EQ(warning(), "");
}

/// Set back a little, the clock repeats minutes whose pictures are there; only those that have none
/// are due.
TEST_F(ClockSet, AMinuteThatComesAgainIsNotTakenTwice) {
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

TEST_F(DataFolderInUse, UnusableDataFolderIsToldAndRecoversByItself) {
    writeFile(s->dataFolder() / "Edit", "not a folder");
    recordUntil(9, 31);
    EXPECT_TRUE(has(warning(), "The data folder cannot be written"));
    EXPECT_GT(s->http.requests, 10); // tried again within the minute
    std::filesystem::remove(s->dataFolder() / "Edit");
    runUntil(10, 1);
    EXPECT_EQ(warning(), "");
    EXPECT_EQ(s->imagesOf("20061115").back(), "20061115_100000_00.jpg");
}

/// A disk that is pulled out, at any moment, and comes back: nothing is lost, and its folder, in
/// whose place another disk would be filled, is never made.
TEST_F(DataFolderInUse, AChosenFolderThatGoesIsNotMadeAndUsedAgainWhenItComes) {
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

TEST_F(DataFolderInUse, AFolderMissingAtTheStartIsToldAndTheDefaultOneIsMade) {
    std::filesystem::remove(s->dataFolder());
    s->store.values["Settings/FillGaps"] = "1";
    s->gapBrowser.answer = [](const std::string&) { return "1,2,record/20061115_090000_00.jpg,"; };
    s->start(true);
    s->clock.run(1s);
    EXPECT_TRUE(s->warnings.stands(Warnings::Cause::ChosenFolder));
    const auto meanwhile = s->folder.path() / "pictures";
    EXPECT_FALSE(std::filesystem::exists(meanwhile)) << "made at the first capture";
    runUntil(9, 32);
    EXPECT_TRUE(std::filesystem::exists(meanwhile / "Orvane/20061115/20061115_093000_00.jpg"));
    EXPECT_TRUE(s->gapBrowser.pages().empty()) << "what lies in the other folder is not missing";
    EXPECT_TRUE(
        has(contentsOf(meanwhile / "Orvane/Ledger/20061115.csv"), "09:29,+09:00,program started"));
}

/// The clocks of the devices are set between captures; where no minute leaves room, after the day's
/// first one.
TEST_F(ClockSet, TheDailyClocksAreSetInAGapOrAfterACapture) {
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

TEST(DiskWatch, TellsDaysAtTodaysRate) {
    const Schedule schedule{9h, 17h, 30min, {}}; // 16 captures a day
    DiskWatch disk;
    const auto caption = [&](std::uint64_t free) { return disk.report(free, schedule).caption; };
    EXPECT_EQ(caption(123'400'000'000), "123.4 GB free");
    const auto day = dayOf(at(2006, 11, 15));
    disk.addCapture(30'000'000, day);
    disk.addCapture(10'000'000, day);
    EXPECT_EQ(caption(123'400'000'000), "123.4 GB free, about 386 days");
    EXPECT_TRUE(disk.report(2'300'000'000, schedule).warning.empty());
    EXPECT_FALSE(disk.report(2'200'000'000, schedule).warning.empty()); // 6.9 days
    EXPECT_FALSE(DiskWatch().report(999'000'000, schedule).warning.empty());
    disk.addCapture(1'000'000, dayOf(at(2006, 11, 16))); // a new day, a new rate
    EXPECT_EQ(caption(16'000'000'000), "16.0 GB free, about 1000 days");
}

} // namespace
} // namespace orvane::test
