#include "imaging/JpegMarkers.h"
#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

#include <random>

namespace orvane::test {
namespace {

/// A station from 8:59 on whose camera records a picture a minute, seven seconds past, all day.
class GapFillingTest : public testing::Test {
  protected:
    GapFillingTest() {
        camera.record("20061115", 0, 24);
        s.gapBrowser.answer = [this](const std::string& url) {
            return storeAnswers ? camera.search(url) : std::string();
        };
        s.gapHttp.answer = [this](const std::string& url) { return camera.picture(url); };
        s.http.answer = [this](const std::string&) {
            return liveAnswers ? FakeHttp::picture(std::to_string(++live))
                               : FakeHttp::failed("refused");
        };
    }
    std::vector<std::string> images() const { return s.imagesOf("20061115"); }
    std::ptrdiff_t fetchedLater() const {
        const auto names = images();
        return std::ranges::count_if(
            names, [](const std::string& name) { return name.ends_with("07_00.jpg"); });
    }

    TestStation s{at(2006, 11, 15, 8, 59)};
    FakeCameraStore camera;
    bool liveAnswers = true;
    bool storeAnswers = true;
    int live = 0;
};

/// The live picture fails for an hour while the camera goes on recording.
TEST_F(GapFillingTest, AnOutageIsFilledWithinTenMinutes) {
    for (const char* interval : {"1", "5"}) {
        TestStation t(at(2006, 11, 15, 8, 59));
        t.gapBrowser.answer = s.gapBrowser.answer;
        t.gapHttp.answer = s.gapHttp.answer;
        t.http.answer = s.http.answer;
        t.store.values["Settings/Delay"] = "15";
        t.setSchedule("9", "17", interval);
        t.start(true);
        t.clock.runUntil(at(2006, 11, 15, 9, 59, 30));
        liveAnswers = false;
        t.clock.runUntil(at(2006, 11, 15, 10, 59, 30));
        liveAnswers = true;
        t.clock.runUntil(at(2006, 11, 15, 11, 10));
        const int minutes = std::atoi(interval);
        std::vector<std::string> expected;
        for (int minute = 9 * 60; minute < 11 * 60 + 10; minute += minutes) {
            char name[64];
            // the last minute of the outage is captured at its end
            const bool missed = minute >= 10 * 60 && minute < 10 * 60 + 59;
            std::snprintf(name, sizeof name, "20061115_%02d%02d%s_00.jpg", minute / 60, minute % 60,
                          missed ? "07" : "00");
            expected.emplace_back(name);
        }
        EXPECT_EQ(t.imagesOf("20061115"), expected) << interval;
        EXPECT_EQ(t.imagesOf("20061115", "Edit"), expected) << interval;
        EXPECT_EQ(t.countLogged("Gap filled:20061115_103007_00.jpg"), 1);
        EXPECT_EQ(t.gapHttp.requests, 59 / minutes + (minutes > 1 ? 1 : 0));
    }
}

TEST_F(GapFillingTest, AsksForTheMinuteAndTakesNoOther) {
    liveAnswers = false;
    camera.names = {"20061115_085959_00.jpg", "20061115_093100_00.jpg", "20061115_093142_00.jpg"};
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 32));
    EXPECT_EQ(s.gapBrowser.pages().front(),
              "http://192.168.0.10:80/cgi/srch.cgi?srch_type=0&s_mode=0&dl=1&ar0=on&from_year=6"
              "&from_mon=10&from_day=14&from_hour=9&from_min=0&from_sec=0&from_frame=0&maxnum=2");
    EXPECT_TRUE(images().empty()); // 9:00 and 9:30 are due, 9:31 is not
    EXPECT_EQ(s.gapHttp.requests, 0);
}

TEST_F(GapFillingTest, AMinuteThatTheCameraDoesNotHoldIsAskedForTwice) {
    liveAnswers = false;
    camera.names.clear();
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 29, 30));
    EXPECT_EQ(s.gapBrowser.pages().size(), 2U);
    s.clock.runUntil(at(2006, 11, 15, 16, 59));
    EXPECT_EQ(s.gapBrowser.pages().size(), 32U);
    s.clock.runUntil(at(2006, 11, 16, 3, 0)); // yesterday is over
    EXPECT_EQ(s.gapBrowser.pages().size(), 32U);
}

/// After a restart the files tell what is missing; what is there is left alone.
TEST_F(GapFillingTest, ARestartFillsTheMorning) {
    s.setSchedule("6", "17", "30");
    std::filesystem::create_directory(s.dataFolder() / "20061115");
    const auto kept = s.dataFolder() / "20061115" / "20061115_070000_00.jpg";
    writeToFinalName(jpegLike("kept"), kept);
    s.start(true);
    s.clock.run(30s);
    EXPECT_EQ(images(),
              (std::vector<std::string>{"20061115_060007_00.jpg", "20061115_063007_00.jpg",
                                        "20061115_070000_00.jpg", "20061115_073007_00.jpg",
                                        "20061115_080007_00.jpg", "20061115_083007_00.jpg"}));
    EXPECT_EQ(s.views.newest.filename(), "20061115_083007_00.jpg");
    s.clock.runUntil(at(2006, 11, 15, 9, 0, 30));
    EXPECT_EQ(s.views.newest.filename(), "20061115_090000_00.jpg");
}

TEST_F(GapFillingTest, TheSwitchTurnsItOffAndIsStored) {
    liveAnswers = false;
    s.store.values["Settings/FillGaps"] = "0";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 40));
    EXPECT_TRUE(s.gapBrowser.pages().empty());
    EXPECT_FALSE(s.panel.chk_fill.ticked);
    s.panel.chk_fill.ticked = true;
    s.settings.writeSetup();
    EXPECT_EQ(s.store.values["Settings/FillGaps"], "1");
    s.clock.run(10s);
    EXPECT_EQ(fetchedLater(), 2);
}

/// A request that hangs when a minute falls due is cut off, and its minute is asked for again.
TEST_F(GapFillingTest, StandsBackForCaptures) {
    liveAnswers = false;
    s.setSchedule("9", "17", "2");
    s.gapBrowser.latency = 70s;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 1, 55));
    liveAnswers = true;
    s.clock.runUntil(at(2006, 11, 15, 9, 2, 5));
    EXPECT_EQ(images(), std::vector<std::string>{"20061115_090200_00.jpg"});
    s.gapBrowser.latency = 20ms;
    s.clock.runUntil(at(2006, 11, 15, 9, 3, 30));
    EXPECT_EQ(fetchedLater(), 1);
}

TEST_F(GapFillingTest, AStoreThatDoesNotAnswerIsAskedOnceAMinute) {
    liveAnswers = false;
    storeAnswers = false;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 29));
    EXPECT_NEAR(static_cast<double>(s.gapBrowser.pages().size()), 28, 2);
    storeAnswers = true;
    s.clock.run(70s);
    EXPECT_EQ(fetchedLater(), 1);
}

TEST_F(GapFillingTest, AFolderThatCannotBeWrittenIsTold) {
    liveAnswers = false;
    s.files.failing = "write";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 2));
    EXPECT_NE(s.warnings.text.get().find("The data folder cannot be written"), std::string::npos);
    s.files.failing.clear();
    s.clock.run(3min);
    EXPECT_EQ(fetchedLater(), 1);
    EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
}

/// Names that are no pictures', or pictures that do not come: each minute is asked for twice in
/// all, once a minute at most, and the log stays short.
TEST_F(GapFillingTest, EndsWhateverIsListed) {
    struct Case {
        const char* name;
        std::size_t askings; ///< of one minute
        std::size_t filed;
    };
    const Case cases[] = {{"20061115_093000_00.JPG", 1, 1},  {"20061115_093059_00.jpg", 1, 1},
                          {"20061115_093060_00.jpg", 2, 0},  {"20061115_093099_00.jpg", 2, 0},
                          {"20061115_0930ab_00.jpg", 2, 0},  {"20061115_093007_0x.jpg", 2, 0},
                          {"20061115_093007_00.jpeg", 0, 0}, {"20061115_093007_99.jpg", 1, 1}};
    for (const auto& [name, askings, filed] : cases) {
        TestStation t(at(2006, 11, 15, 9, 29));
        t.setSchedule("9", "10", "30");
        t.http.answer = [](const std::string&) { return FakeHttp::failed("refused"); };
        std::map<std::string, std::vector<Ticks>> asked;
        t.gapBrowser.answer = [&, listed = std::string(name)](const std::string& url) {
            const bool ours = url.find("from_hour=9&from_min=30") != std::string::npos;
            if (ours) asked[url].push_back(t.clock.ticks());
            return ours ? "1,2,record/" + listed + "," : "NO_DATA";
        };
        t.gapHttp.answer = [](const std::string&) { return FakeHttp::picture("stored"); };
        t.start(true);
        t.clock.runUntil(at(2006, 11, 15, 12, 0));
        ASSERT_EQ(asked.size(), 1U) << name;
        if (askings > 0) {
            EXPECT_EQ(asked.begin()->second.size(), askings) << name;
        }
        EXPECT_LT(asked.begin()->second.size(), 152U) << name << ": once a minute";
        for (std::size_t i = 1; i < asked.begin()->second.size(); ++i)
            EXPECT_GE(asked.begin()->second[i] - asked.begin()->second[i - 1], 1min) << name;
        EXPECT_EQ(t.imagesOf("20061115").size(), filed) << name;
        EXPECT_LT(t.logged().size(), 200U) << name;
    }
}

/// The camera lists the picture but sends something else.
TEST_F(GapFillingTest, APictureThatDoesNotComeIsGivenUp) {
    const HttpReply replies[] = {FakeHttp::failed("HTTP status 404"),
                                 {true, 200, "<html>Busy</html>", ""},
                                 {true, 200, jpegLike("cut").substr(0, 30), ""}};
    for (const HttpReply& reply : replies) {
        TestStation t(at(2006, 11, 15, 8, 59));
        t.http.answer = [](const std::string&) { return FakeHttp::failed("refused"); };
        t.gapBrowser.answer = s.gapBrowser.answer;
        t.gapHttp.answer = [&](const std::string&) { return reply; };
        t.start(true);
        t.clock.runUntil(at(2006, 11, 15, 9, 29));
        EXPECT_EQ(t.gapHttp.requests, 2) << reply.body;
        EXPECT_TRUE(t.imagesOf("20061115").empty()) << reply.body;
    }
}

/// Pages of a busy camera are no answers, however many there are.
TEST_F(GapFillingTest, APageIsNoAnswer) {
    s.setSchedule("9", "17", "1");
    s.gapBrowser.answer = [&](const std::string& url) {
        return s.clock.now() < at(2006, 11, 15, 9, 21)
                   ? std::string("Busy, please wait, or try again later, thank you,")
                   : camera.search(url);
    };
    liveAnswers = false;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 4, 30));
    liveAnswers = true;
    s.clock.runUntil(at(2006, 11, 15, 9, 20, 30));
    EXPECT_EQ(fetchedLater(), 0);
    EXPECT_LE(s.gapBrowser.pages().size(), 20U);
    s.clock.runUntil(at(2006, 11, 15, 9, 23));
    EXPECT_EQ(fetchedLater(), 4);
}

/// A folder that can be written but not listed: nothing is missing as far as anybody knows.
TEST_F(GapFillingTest, NothingIsFilledOnAFolderThatCannotBeRead) {
    liveAnswers = false;
    s.unlistable = true;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 2));
    EXPECT_TRUE(s.gapBrowser.pages().empty());
    EXPECT_LT(s.listings, 200);
    EXPECT_NE(s.warnings.text.get().find("cannot be read: Permission denied"), std::string::npos);
    EXPECT_NE(s.warnings.text.get().find("No image at 09:00 and 09:30"), std::string::npos);
    liveAnswers = true;
    s.unlistable = false;
    s.clock.runUntil(at(2006, 11, 15, 10, 32));
    EXPECT_EQ(fetchedLater(), 3);
    EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
}

/// Minutes that the clock was put over never were.
TEST_F(GapFillingTest, AClockPutForwardLeavesNoGaps) {
    s.setSchedule("8", "17", "1");
    s.store.values["Settings/FillGaps"] = "0";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 10, 30));
    s.panel.chk_fill.ticked = true;
    s.clock.runUntil(at(2006, 11, 15, 9, 20, 30));
    const auto asked = s.gapBrowser.pages().size(); // for the hour before the start
    s.clock.jumpWall(1h);
    s.clock.runUntil(at(2006, 11, 15, 10, 40));
    EXPECT_EQ(s.gapBrowser.pages().size(), asked);
    EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
}

/// Whatever the store answers: only whole pictures of missed minutes are filed, once each, below
/// the data folder, and the captures keep their minutes.
TEST_F(GapFillingTest, RandomStoreFaults) {
    std::mt19937 random(11);
    s.setSchedule("0", "23", "5", "59");
    s.http.answer = [&](const std::string&) {
        return random() % 3 == 0 ? FakeHttp::picture(std::to_string(++live))
                                 : FakeHttp::failed("refused");
    };
    s.http.latency = 25s;
    s.gapBrowser.answer = [&](const std::string& url) -> std::string {
        s.gapBrowser.latency = Ticks(random() % 20'000);
        switch (random() % 6) {
        case 0:
            return {};
        case 1:
            return "1,2,r/../../evil.jpg,";
        case 2:
            return std::string(100'000, ',');
        case 3:
            return "1,2,r/20991231_235959_00.jpg,";
        default:
            return camera.search(url);
        }
    };
    s.gapHttp.answer = [&](const std::string& url) {
        HttpReply reply = camera.picture(url);
        if (random() % 3 == 0) reply.body.resize(random() % reply.body.size());
        return reply;
    };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 23, 59));
    EXPECT_GT(fetchedLater(), 20);
    std::set<std::string> minutes;
    for (const std::string& name : images()) {
        EXPECT_TRUE(minutes.insert(name.substr(0, 13)).second) << name;
        std::string bytes;
        readWholeFile(s.dataFolder() / "20061115" / name, bytes);
        EXPECT_TRUE(isWholeJpeg(bytes)) << name;
    }
    EXPECT_EQ(s.imagesOf("20061115", "Edit"), images());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(s.dataFolder()), {}), 3)
        << "the day, Edit and Ledger";
}

} // namespace
} // namespace orvane::test
