#include "imaging/JpegMarkers.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

TEST(MainLoop, FilesExactlyTheDueImagesOfADay) {
    TestStation s(at(2006, 11, 15, 8, 0));
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 17, 0, 59));
    Names expected;
    for (int hour = 9; hour < 17; ++hour)
        for (const char* minute : {"00", "30"}) {
            char name[32];
            std::snprintf(name, sizeof name, "20061115_%02d%s00_00.jpg", hour, minute);
            expected.emplace_back(name);
        }
    EXPECT_EQ(s.imagesOf("20061115"), expected);
    EXPECT_EQ(s.imagesOf("20061115", "Edit"), expected);
    EXPECT_EQ(s.countLogged("End Time"), 0);
    s.clock.run(2s);
    EXPECT_EQ(s.countLogged("End Time"), 1);
    EXPECT_EQ(s.panel.Label11.caption.get(),
              "16 sheet"); // each synchronisation starts the count anew
    s.clock.runUntil(at(2006, 11, 16, 8, 0));
    EXPECT_EQ(s.countLogged("End Time"), 1);
    EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
}

TEST(MainLoop, IntervalMeansMinutesOfTheHour) {
    struct Case {
        const char* interval;
        Names minutes;
    };
    const Case cases[] = {{"45", {"00", "45"}},
                          {"7", {"00", "07", "14", "21", "28", "35", "42", "49", "56"}},
                          {"59", {"00", "59"}},
                          {"0", {}}};
    for (const auto& [interval, minutes] : cases) {
        TestStation s(at(2006, 11, 15, 9, 30));
        s.store.values["Operation/IntervalSecond"] = "30";
        s.setSchedule("10", "12", interval);
        s.start(true);
        s.clock.runUntil(at(2006, 11, 15, 11, 0));
        Names expected;
        for (const std::string& minute : minutes)
            expected.push_back("20061115_10" + minute + "00_00.jpg");
        EXPECT_EQ(s.imagesOf("20061115"), expected) << interval;
    }
}

/// A month without drift, growth or a lost minute, for both ends of what is set.
TEST(MainLoop, VirtualMonth) {
    struct Case {
        const char *startHour, *endHour, *endMinute, *interval;
        int perDay;
        unsigned days;
        int endTimes;
    };
    const Case cases[] = {{"9", "17", "0", "30", 16, 30, 30},
                          // the window's end is the day's last minute: no minute is after it
                          {"0", "23", "59", "1", 1439, 3, 0}};
    for (const Case& c : cases) {
        TestStation s(at(2006, 11, 1));
        s.store.values["Settings/Delay"] = "15";
        s.setSchedule(c.startHour, c.endHour, c.interval, c.endMinute);
        s.start(true);
        std::size_t waiting = 0;
        for (unsigned day = 1; day <= c.days; ++day) {
            const WallTime midnight = at(2006, 11, day) + 24h;
            s.clock.runUntil(midnight);
            char digits[16];
            std::snprintf(digits, sizeof digits, "200611%02u", day);
            const Names images = s.imagesOf(digits);
            ASSERT_EQ(images.size(), static_cast<std::size_t>(c.perDay)) << digits;
            for (const std::string& name : images)
                EXPECT_TRUE(name.ends_with("00_00.jpg")) << name;
            if (day == 1) waiting = s.clock.pending();
            EXPECT_EQ(s.clock.pending(), waiting);
            std::filesystem::remove_all(s.dataFolder() / digits);
            std::filesystem::remove_all(s.dataFolder() / "Edit");
        }
        EXPECT_EQ(s.http.requests, c.days * static_cast<unsigned>(c.perDay));
        EXPECT_EQ(s.countLogged("End Time"), c.endTimes);
        EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
    }
}

TEST(MainLoop, FailedFetchIsTriedAgainWithinItsMinute) {
    TestStation s(at(2006, 11, 15, 9, 29));
    int answers = 0;
    s.http.answer = [&](const std::string&) {
        return ++answers <= 3 ? FakeHttp::failed("HTTP status 503")
                              : FakeHttp::picture(std::to_string(answers));
    };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 59));
    EXPECT_EQ(s.imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
    EXPECT_EQ(s.countLogged("DownLoad Error"), 3);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Recording Standby");
    EXPECT_TRUE(s.panel.Command2.enabled);
    EXPECT_EQ(s.http.urls.back(), "http://192.168.0.10:80/Images/full.jpg");
}

TEST(MainLoop, ANewDataFolderIsLogged) {
    TestStation s(at(2006, 11, 15, 8, 0));
    s.start(false);
    s.panel.Dir1[0].path = s.folder.path() / "other";
    s.clock.run(1s);
    EXPECT_EQ(s.logged().back(), "Data folder: " + utf8FromPath(s.folder.path() / "other"));
    EXPECT_EQ(s.logged().size(), 2U);
}

/// What is not a whole new picture is never filed, whatever the transfer says.
TEST(MainLoop, RefusesWhatIsNotANewPicture) {
    const std::string whole = jpegLike("x");
    const std::string cases[] = {"", "<html><body>Busy</body></html>",
                                 whole.substr(0, whole.size() - 2), whole.substr(0, 12)};
    for (const std::string& body : cases) {
        TestStation s(at(2006, 11, 15, 9, 29));
        s.http.answer = [&](const std::string&) { return HttpReply{true, 200, body, ""}; };
        s.start(true);
        s.clock.runUntil(at(2006, 11, 15, 9, 31));
        EXPECT_TRUE(s.imagesOf("20061115").empty()) << body;
        EXPECT_EQ(s.countLogged("DownLoad Error"), s.http.requests);
        EXPECT_GT(s.http.requests, 10);
    }
}

TEST(MainLoop, RefusesAPictureThatWasSentBefore) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.http.answer = [](const std::string&) { return FakeHttp::picture("frozen"); };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 1));
    EXPECT_EQ(s.imagesOf("20061115"), Names{"20061115_093000_00.jpg"});

    // a restarted station knows the newest picture from the disk
    TestStation restarted(at(2006, 11, 15, 10, 29));
    restarted.store.values["DataPath/PathDataFile"] = s.dataFolder().string();
    restarted.http.answer = s.http.answer;
    restarted.start(true);
    restarted.clock.runUntil(at(2006, 11, 15, 10, 31));
    EXPECT_EQ(s.imagesOf("20061115").size(), 1U);
    EXPECT_GT(restarted.countLogged("DownLoad Error"), 1);
}

/// Two pictures in turn are as frozen as one, also across midnight and a restart.
TEST(MainLoop, RefusesPicturesThatComeInTurn) {
    TestStation s(at(2006, 11, 15, 23, 20));
    s.setSchedule("0", "23", "10", "59");
    int answers = 0;
    s.http.answer = [&](const std::string&) {
        ++answers;
        return FakeHttp::picture(answers <= 3 ? std::to_string(answers)
                                              : std::to_string(answers % 2));
    };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 16, 0, 40));
    EXPECT_EQ(s.imagesOf("20061115").size(), 4U) << "1, 2, 3, and 0 was new";
    EXPECT_TRUE(s.imagesOf("20061116").empty());

    TestStation restarted(at(2006, 11, 17, 8, 59));
    restarted.store.values["DataPath/PathDataFile"] = utf8FromPath(s.dataFolder());
    restarted.http.answer = [](const std::string&) { return FakeHttp::picture("2"); };
    restarted.start(true);
    restarted.clock.runUntil(at(2006, 11, 17, 9, 31));
    EXPECT_TRUE(s.imagesOf("20061117").empty());
}

/// What came and is damaged is a failed fetch, tried again within its minute.
TEST(MainLoop, ADamagedPictureIsTriedAgain) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.imageControl.unsound = "Corrupt JPEG data: premature end of data segment";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 20));
    EXPECT_TRUE(s.imagesOf("20061115").empty());
    EXPECT_GT(s.countLogged("DownLoad Error"), 3);
    s.imageControl.unsound.clear();
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_EQ(s.imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
}

/// A power cut some seconds after filing used to leave files without a byte that counted as taken.
TEST(MainLoop, AnEmptyFileIsNoPicture) {
    TestStation s(at(2006, 11, 15, 9, 29));
    const auto dated = s.dataFolder() / "20061115";
    std::filesystem::create_directory(dated);
    std::ofstream(dated / "20061115_090000_00.jpg").close();
    std::ofstream(dated / "20061115_093000_00.jpg").close();
    s.gapBrowser.answer = [](const std::string& url) {
        return url.find("from_hour=9&from_min=0&") != std::string::npos
                   ? "1,2,record/20061115_090000_00.jpg,"
                   : "NO_DATA";
    };
    s.gapHttp.answer = [](const std::string&) { return FakeHttp::picture("stored"); };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_EQ(s.imagesOf("20061115"), (Names{"20061115_090000_00.jpg", "20061115_093000_00.jpg"}));
    for (const std::string& name : s.imagesOf("20061115"))
        EXPECT_TRUE(isWholePicture(dated / name)) << name;
    EXPECT_EQ(s.days.plan().missed, 0);
}

/// A short answer over a longer old working picture must not bring the old tail into the archive.
TEST(MainLoop, FilesExactlyTheBytesThatTheCameraSent) {
    TestStation s(at(2006, 11, 15, 9, 29));
    int pictures = 0;
    s.http.answer = [&](const std::string&) {
        return FakeHttp::picture(++pictures == 1 ? std::string(5000, 'l') : "short");
    };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 1));
    std::string bytes;
    readWholeFile(s.dataFolder() / "20061115" / "20061115_100000_00.jpg", bytes);
    EXPECT_EQ(bytes, jpegLike("short"));
}

/// Slow answers and long delays cost no minute and bring no minute twice.
TEST(MainLoop, EveryMinuteOfAOneMinuteInterval) {
    for (const auto& [delay, latency] : {std::pair{"0", 0ms}, {"15", 20000ms}, {"5", 50000ms}}) {
        TestStation s(at(2006, 11, 15, 9, 0));
        s.store.values["Settings/Delay"] = delay;
        s.http.latency = latency;
        s.setSchedule("10", "12", "1");
        s.start(true);
        s.clock.runUntil(at(2006, 11, 15, 12, 1));
        EXPECT_EQ(s.imagesOf("20061115").size(), 120U) << delay;
    }
}

TEST(MainLoop, StopDuringThePauseEndsItAndStaysStopped) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 1));
    EXPECT_EQ(s.panel.Label7.caption.get(), "Recording Now...");
    EXPECT_FALSE(s.panel.Command2.enabled);
    EXPECT_FALSE(s.busy.mnuFileOpen);
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 10));
    EXPECT_TRUE(s.panel.Command2.enabled); // the pause can be stopped
    EXPECT_TRUE(s.busy.mnuFileOpen);
    s.recording.Command2_Click();
    s.clock.run(2s);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
    EXPECT_EQ(s.panel.Label11.caption.get(), "");
    EXPECT_FALSE(s.panel.Command2.enabled);
    EXPECT_TRUE(s.panel.Command1.enabled);
    s.clock.runUntil(at(2006, 11, 15, 12, 0));
    EXPECT_EQ(s.imagesOf("20061115").size(), 1U);
}

TEST(MainLoop, TwoMissedMinutesRaiseAWarningThatGoesWithTheNextImage) {
    TestStation s(at(2006, 11, 15, 9, 29));
    const auto picture = s.http.answer;
    s.http.answer = [](const std::string&) { return FakeHttp::failed("HTTP status 404"); };
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 0, 59));
    EXPECT_TRUE(s.warnings.text.get().empty());
    s.clock.run(3s);
    const std::string warning = "No image at 09:30 and 10:00. Please check the camera.\n"
                                "(HTTP status 404)";
    EXPECT_EQ(s.warnings.text.get(), warning);
    s.http.answer = [](const std::string&) { return FakeHttp::failed("refused"); };
    s.clock.runUntil(at(2006, 11, 15, 10, 32));
    EXPECT_EQ(s.warnings.text.get(), warning); // a new text would open the window again
    s.http.answer = picture;
    s.clock.runUntil(at(2006, 11, 15, 10, 59, 59));
    EXPECT_EQ(s.warnings.text.get(), warning);
    s.clock.run(4s); // in the pause after the capture
    EXPECT_TRUE(s.warnings.text.get().empty()) << "it goes with the picture, not a minute later";
}

TEST(MainLoop, LiveViewShowsWithoutFilingAndYieldsToCaptures) {
    TestStation s(at(2006, 11, 15, 9, 28));
    s.start(true);
    s.clock.run(1s);
    s.panel.chkLive.ticked = true;
    s.clock.run(21s);
    EXPECT_EQ(s.views.live, 5);
    s.http.latency = 55s; // a camera that hangs while it is asked for the live view
    s.clock.runUntil(at(2006, 11, 15, 9, 29, 50));
    s.http.latency = 50ms;
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 3));
    EXPECT_EQ(s.imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
    EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
}

TEST(MainLoop, SunTimesFollowTheDate) {
    // by the ephemeris of tests/imaging/SunTable.h, to two minutes: 5:15 and 18:36, then 5:12 and
    // 18:38, March being taken for a day later
    TestStation s(at(2024, 2, 29, 23, 59));
    s.start(false);
    s.clock.run(30s);
    EXPECT_EQ(s.panel.lbl_sunrise.caption.get(), "5:15:00");
    EXPECT_EQ(s.panel.lbl_sunset.caption.get(), "18:36:00");
    s.clock.run(1min);
    EXPECT_EQ(s.panel.lbl_sunrise.caption.get(), "5:12:00");
    EXPECT_EQ(s.panel.lbl_sunset.caption.get(), "18:38:00");
}

/// The sun rises before the local day begins: no such time of day, and no reason not to record.
TEST(MainLoop, ASiteWithoutSunTimesIsWarnedOfAndRecords) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.store.values["Operation/Longitude"] = "-60"; // the sun rises at 10 o'clock, universal time
    s.store.values["Operation/Tz"] = "-720";
    s.module.sun.SunriseText = "5:00:00";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_EQ(s.exitCode, -1);
    EXPECT_TRUE(s.op.told.empty());
    EXPECT_EQ(s.module.image.JpegTyp, 98) << "the rest of the start-up";
    EXPECT_EQ(s.imagesOf("20061115"), Names{"20061115_093000_00.jpg"});
    EXPECT_EQ(s.panel.lbl_sunrise.caption.get(), "");
    EXPECT_EQ(s.panel.lbl_sunset.caption.get(), "");
    EXPECT_EQ(s.module.sun.SunriseText, "5:00:00");
    const std::string warning = s.warnings.text;
    EXPECT_TRUE(warning.starts_with("The sun times of the site cannot be computed")) << warning;
    EXPECT_EQ(s.countLogged(warning), 1);
    s.clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_NE(s.logged().back(), warning) << "another day, another impossible time";
    EXPECT_EQ(s.logged().back(), s.warnings.text.get());
    s.panel.txt_tz.text = "9"; // the operator corrects it
    EXPECT_TRUE(s.settings.txt_tz_Change());
    s.clock.run(2min);
    EXPECT_TRUE(s.warnings.text.get().empty());
    EXPECT_FALSE(s.panel.lbl_sunset.caption.get().empty());
}

/// Random faults for some virtual days: only whole new pictures are filed, and every good minute
/// after a bad one brings its image.
TEST(MainLoop, RandomFaultsForDays) {
    constexpr unsigned kDays = 3;
    TestStation s(at(2006, 11, 1));
    s.setSchedule("0", "23", "10", "59");
    std::mt19937 random(7);
    s.http.answer = [&](const std::string&) {
        s.http.latency = std::chrono::milliseconds(random() % 60'000);
        const std::string whole = jpegLike(std::to_string(random()));
        switch (random() % 8) {
        case 0:
            return FakeHttp::failed("refused");
        case 1:
            return HttpReply{true, 200, whole.substr(0, random() % whole.size()), ""};
        case 2:
            return HttpReply{true, 200, "<html></html>", ""};
        case 3:
            return HttpReply{false, 500, "", "HTTP status 500"};
        case 4:
            return FakeHttp::picture("stale");
        default:
            return HttpReply{true, 200, whole, ""};
        }
    };
    s.start(true);
    s.clock.run(24h * kDays);
    std::size_t filed = 0;
    for (unsigned day = 1; day <= kDays; ++day) {
        const std::string digits = "2006110" + std::to_string(day);
        EXPECT_EQ(s.imagesOf(digits, "Edit"), s.imagesOf(digits));
        for (const std::string& name : s.imagesOf(digits)) {
            std::string bytes;
            readWholeFile(s.dataFolder() / digits / name, bytes);
            EXPECT_TRUE(isWholeJpeg(bytes)) << name;
            ++filed;
        }
    }
    EXPECT_GT(filed, kDays * 144 / 2);
    // each attempt filed a picture or logged one line; the last may still be under way
    const auto ended = static_cast<std::int64_t>(filed) + s.countLogged("DownLoad Error");
    EXPECT_GE(s.http.requests, ended);
    EXPECT_LE(s.http.requests, ended + 1);
}

} // namespace
} // namespace orvane::test
