#include "imaging/JpegMarkers.h"
#include "tests/support/StationDay.h"

#include <numeric>
#include <random>

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
    }
}

/// Days without drift, growth or a lost minute, for both ends of what is set.
TEST_F(MainLoopTest, VirtualDays) {
    const struct {
        const char *startHour, *endHour, *endMinute, *interval;
        int perDay, days, endTimes;
    } cases[] = {{"9", "17", "0", "30", 16, 10, 10},
                 // the window's end is the day's last minute: no minute is after it
                 {"0", "23", "59", "1", 1439, 2, 0}};
    for (const auto& c : cases) {
        start(at(2006, 11, 1));
        s->store.values["Settings/Delay"] = "15";
        s->setSchedule(c.startHour, c.endHour, c.interval, c.endMinute);
        s->start(true);
        s->clock.runUntil(at(2006, 11, 1, 17, 0, 59));
        EXPECT_EQ(s->countLogged("End Time"), 0);
        s->clock.run(2s);
        EXPECT_EQ(s->countLogged("End Time"), c.endTimes == 0 ? 0 : 1);
        std::size_t waiting = 0;
        for (int day = 1; day <= c.days; ++day) {
            s->clock.runUntil(at(2006, 11, 1) + day * 24h);
            const std::string digits = "200611" + twoDigits(day);
            const Names images = s->imagesOf(digits);
            ASSERT_EQ(images.size(), static_cast<std::size_t>(c.perDay)) << digits;
            EXPECT_EQ(s->imagesOf(digits, "Edit"), images);
            for (const std::string& name : images)
                EXPECT_TRUE(name.ends_with("00_00.jpg")) << name;
            if (day == 1) waiting = s->clock.pending();
            EXPECT_EQ(s->clock.pending(), waiting);
            for (const char* below : {"", "Edit"})
                std::filesystem::remove_all(s->dataFolder() / below / digits);
        }
        EXPECT_EQ(s->http.requests, c.days * c.perDay);
        EXPECT_EQ(s->countLogged("End Time"), c.endTimes);
        const std::string counted = s->panel.Label11.caption; // each synchronisation counts anew
        EXPECT_TRUE(c.endTimes == 0 || counted == "16 sheet") << counted;
        EXPECT_EQ(warning(), "");
        EXPECT_EQ(s->countLogged("DownLoad Error"), 0);
    }
}

/// What is not a whole, sound picture is never filed, whatever the transfer says, and is asked for
/// again within its minute.
TEST_F(MainLoopTest, WhatIsNoPictureIsTriedAgainWithinItsMinute) {
    const std::string whole = jpegLike("x");
    const struct {
        const char* what;
        HttpReply reply;
        std::string unsound = {};
    } cases[] = {{"refused", FakeHttp::failed("HTTP status 503")},
                 {"empty", {true, 200, "", ""}},
                 {"a page", {true, 200, "<html><body>Busy</body></html>", ""}},
                 {"cut at its end", {true, 200, whole.substr(0, whole.size() - 2), ""}},
                 {"cut in its head", {true, 200, whole.substr(0, 12), ""}},
                 {"damaged", {true, 200, whole, ""}, "premature end of data segment"}};
    for (const auto& [what, reply, unsound] : cases) {
        SCOPED_TRACE(what);
        TestStation station(at(2006, 11, 15, 9, 29));
        station.imageControl.unsound = unsound;
        station.http.answer = [&](const std::string&) { return reply; };
        station.start(true);
        station.clock.runUntil(at(2006, 11, 15, 9, 30, 20));
        EXPECT_TRUE(station.imagesOf("20061115").empty());
        EXPECT_GT(station.http.requests, 3);
        EXPECT_EQ(station.countLogged("DownLoad Error"), station.http.requests);
        station.imageControl.unsound.clear();
        station.http.answer = [&](const std::string&) { return FakeHttp::picture("good"); };
        station.clock.runUntil(at(2006, 11, 15, 9, 31, 2));
        EXPECT_EQ(station.imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
        EXPECT_EQ(station.panel.Label7.caption.get(), "Recording Standby");
        EXPECT_TRUE(station.panel.Command2.enabled);
        EXPECT_EQ(station.http.urls.back(), "http://192.168.0.10:80/Images/full.jpg");
    }
}

/// Two pictures in turn are as frozen as one, also across midnight and a restart.
TEST_F(MainLoopTest, RefusesPicturesThatComeInTurn) {
    start(at(2006, 11, 15, 23, 20));
    s->setSchedule("0", "23", "10", "59");
    s->http.answer = [answers = 0](const std::string&) mutable {
        ++answers;
        return FakeHttp::picture(std::to_string(answers <= 3 ? answers : answers % 2));
    };
    s->start(true);
    s->clock.runUntil(at(2006, 11, 16, 0, 40));
    EXPECT_EQ(count(), 4) << "1, 2, 3, and 0 was new";
    EXPECT_EQ(count("20061116"), 0);
    start(at(2006, 11, 17, 8, 59));
    s->http.answer = [](const std::string&) { return FakeHttp::picture("2"); };
    s->start(true);
    s->clock.runUntil(at(2006, 11, 17, 9, 31));
    EXPECT_EQ(count("20061117"), 0);
    EXPECT_GT(s->countLogged("DownLoad Error"), 1);
}

/// A short answer over a longer old working picture must not bring the old tail into the archive.
TEST_F(MainLoopTest, FilesExactlyTheBytesThatTheCameraSent) {
    s->http.answer = [pictures = 0](const std::string&) mutable {
        return FakeHttp::picture(++pictures == 1 ? std::string(5000, 'l') : "short");
    };
    recordUntil(10, 1);
    EXPECT_EQ(contentsOf(s->dataFolder() / "20061115" / "20061115_100000_00.jpg"),
              jpegLike("short"));
    EXPECT_EQ(contentsOf(s->module.programFolder / "full.jpg"), jpegLike("short"));
}

TEST_F(MainLoopTest, StopDuringThePauseEndsItAndStaysStopped) {
    recordUntil(9, 30, 1);
    EXPECT_EQ(looks(), "Recording Now...");
    EXPECT_FALSE(s->busy.mnuFileOpen);
    runUntil(9, 30, 10);
    EXPECT_EQ(looks(), "Recording Now..., stop"); // the pause can be stopped
    EXPECT_TRUE(s->busy.mnuFileOpen);
    s->recording.Command2_Click();
    s->clock.run(2s);
    EXPECT_EQ(looks(), "Ready, start");
    EXPECT_EQ(s->panel.Label11.caption.get(), "");
    runUntil(12, 0);
    EXPECT_EQ(count(), 1);
}

TEST_F(MainLoopTest, TwoMissedMinutesRaiseAWarningThatGoesWithTheNextImage) {
    const auto picture = s->http.answer;
    s->http.answer = failing("HTTP status 404");
    recordUntil(10, 0, 59);
    EXPECT_EQ(warning(), "");
    s->clock.run(3s);
    const std::string missed = "No image at 09:30 and 10:00. Please check the camera.\n"
                               "(HTTP status 404)";
    EXPECT_EQ(warning(), missed);
    s->http.answer = failing("refused");
    runUntil(10, 32);
    EXPECT_EQ(warning(), missed); // a new text would open the window again
    s->http.answer = picture;
    runUntil(10, 59, 59);
    EXPECT_EQ(warning(), missed);
    s->clock.run(4s); // in the pause after the capture
    EXPECT_EQ(warning(), "") << "it goes with the picture, not a minute later";
}

TEST_F(MainLoopTest, LiveViewShowsWithoutFilingAndYieldsToCaptures) {
    start(at(2006, 11, 15, 9, 28));
    s->start(true);
    s->clock.run(1s);
    s->panel.chkLive.ticked = true;
    s->clock.run(21s);
    EXPECT_EQ(s->views.live, 5);
    s->http.latency = 55s; // a camera that hangs while it is asked for the live view
    runUntil(9, 29, 50);
    s->http.latency = 50ms;
    runUntil(9, 30, 3);
    EXPECT_EQ(s->imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
    EXPECT_EQ(s->countLogged("DownLoad Error"), 0);
}

TEST_F(MainLoopTest, SunTimesFollowTheDate) {
    // by the ephemeris that the table of sun times was made with, to two minutes: 5:15 and 18:36,
    // then 5:12 and 18:38, March being taken for a day later
    start(at(2024, 2, 29, 23, 59));
    const auto shown = [&] {
        return s->panel.lbl_sunrise.caption.get() + " " + s->panel.lbl_sunset.caption.get();
    };
    s->start(false);
    s->clock.run(30s);
    EXPECT_EQ(shown(), "5:15:00 18:36:00");
    s->clock.run(1min);
    EXPECT_EQ(shown(), "5:12:00 18:38:00");
}

/// The sun rises before the local day begins: no such time of day, and no reason not to record.
TEST_F(MainLoopTest, ASiteWithoutSunTimesIsWarnedOfAndRecords) {
    s->store.values["Operation/Longitude"] = "-60"; // the sun rises at 10 o'clock, universal time
    s->store.values["Operation/Tz"] = "-720";
    s->module.sun.SunriseText = "5:00:00";
    recordUntil(9, 31);
    EXPECT_EQ(s->exitCode, -1);
    EXPECT_TRUE(s->op.told.empty());
    EXPECT_EQ(s->module.image.JpegTyp, 98) << "the rest of the start-up";
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(s->panel.lbl_sunrise.caption.get() + s->panel.lbl_sunset.caption.get(), "");
    EXPECT_EQ(s->module.sun.SunriseText, "5:00:00");
    const std::string before = warning();
    EXPECT_TRUE(before.starts_with("The sun times of the site cannot be computed")) << before;
    EXPECT_EQ(s->countLogged(before), 1);
    s->clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_NE(warning(), before) << "another day, another impossible time";
    EXPECT_EQ(s->logged().back(), warning());
    s->panel.txt_tz.text = "9"; // the operator corrects it
    EXPECT_TRUE(s->settings.txt_tz_Change());
    s->clock.run(2min);
    EXPECT_EQ(warning(), "");
    EXPECT_NE(s->panel.lbl_sunset.caption.get(), "");
}

/// Random faults for some days: only whole new pictures are filed, each with its copy, and each
/// attempt brings a picture or a line in the log.
TEST_F(MainLoopTest, RandomFaultsForDays) {
    start(at(2006, 11, 1));
    s->setSchedule("0", "23", "10", "59");
    std::mt19937 random(7);
    s->http.answer = [&](const std::string&) {
        s->http.latency = std::chrono::milliseconds(random() % 60'000);
        const std::string whole = jpegLike(std::to_string(random()));
        const HttpReply answers[] = {FakeHttp::failed("refused"),
                                     FakeHttp::picture("stale"),
                                     {true, 200, whole.substr(0, random() % whole.size()), ""},
                                     {true, 200, "<html></html>", ""},
                                     {false, 500, "", "HTTP status 500"}};
        const std::size_t kind = random() % 8;
        return kind < std::size(answers) ? answers[kind] : HttpReply{true, 200, whole, ""};
    };
    s->start(true);
    s->clock.run(24h * 3);
    int filed = 0;
    for (const std::string day : {"20061101", "20061102", "20061103"}) {
        EXPECT_EQ(s->imagesOf(day, "Edit"), s->imagesOf(day));
        for (const std::string& name : s->imagesOf(day))
            EXPECT_TRUE(isWholeJpeg(contentsOf(s->dataFolder() / day / name))) << name;
        filed += count(day);
    }
    EXPECT_GT(filed, 3 * 144 / 2);
    const int ended = filed + s->countLogged("DownLoad Error"); // one may still be under way
    EXPECT_GE(s->http.requests, ended);
    EXPECT_LE(s->http.requests, ended + 1);
}

} // namespace
} // namespace orvane::test
