#include "tests/support/TestStation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

/// A station that records every half hour from 9 to 17 and is started at 8:50.
class StatusFileTest : public testing::Test {
  protected:
    StatusFileTest() { start(at(2006, 11, 15, 8, 50)); }
    /// A program of its own, which finds the data folder of the one before.
    void start(WallTime time) {
        const auto before = kept.path() / "data";
        if (s) std::filesystem::rename(s->dataFolder(), before);
        s = std::make_unique<TestStation>(time);
        if (std::filesystem::exists(before)) {
            std::filesystem::remove(s->dataFolder());
            std::filesystem::rename(before, s->dataFolder());
        }
        s->tellsStatus = true;
        s->store.values["Settings/FillGaps"] = "0";
    }
    std::string bytesOf(const char* name) const {
        std::string bytes;
        readWholeFile(s->module.programFolder / name, bytes);
        return bytes;
    }
    /// Empty when the file is not there or not whole.
    QJsonObject status() const {
        return QJsonDocument::fromJson(QByteArray::fromStdString(bytesOf("status.json"))).object();
    }
    std::string text(const char* name) const { return status()[name].toString().toStdString(); }
    std::string text(const char* object, const char* name) const {
        return status()[object].toObject()[name].toString().toStdString();
    }
    int today(const char* name) const { return status()["today"].toObject()[name].toInt(-1); }
    std::string causes() const {
        QString all;
        for (const auto& warning : status()["warnings"].toArray())
            all += warning.toObject()["cause"].toString() + "@" +
                   warning.toObject()["since"].toString().mid(11, 5) + " ";
        return all.toStdString();
    }
    void failFrom(const std::string& fault) {
        s->http.answer = [fault](const std::string&) { return FakeHttp::failed(fault); };
    }
    void succeed(const std::string& content) {
        s->http.answer = [content](const std::string& url) {
            return FakeHttp::picture(content + url);
        };
    }
    void runUntil(int hour, int minute, int second = 0) {
        s->clock.runUntil(at(2006, 11, 15, hour, minute, second));
    }

    TempFolder kept;
    std::unique_ptr<TestStation> s;
};

/// 15 November 2006, 09:00 at +09:00 is 00:00 universal: day 13467 since 1970.
constexpr std::int64_t kNineOClock = std::int64_t{13467} * 86400;

TEST_F(StatusFileTest, TellsADayWithFailuresStopsAndARestart) {
    s->start(true);
    runUntil(8, 55, 2);
    EXPECT_EQ(text("state"), "recording");
    EXPECT_EQ(text("alive"), "2006-11-15T08:55:00+09:00");
    EXPECT_EQ(status()["aliveUtc"].toInteger(), kNineOClock - 300);
    EXPECT_EQ(text("started"), "2006-11-15T08:50:00+09:00");
    EXPECT_EQ(text("version"), "0.1.0");
    EXPECT_EQ(text("nextDue"), "2006-11-15T09:00:00+09:00");
    EXPECT_TRUE(status()["lastPicture"].isNull());
    EXPECT_TRUE(status()["lastAttempt"].isNull());
    EXPECT_EQ(text("schedule", "start") + text("schedule", "end"), "09:0017:00");
    EXPECT_EQ(status()["schedule"].toObject()["intervalMinutes"].toInt(), 30);
    runUntil(9, 0, 5);
    EXPECT_EQ(text("lastPicture", "name"), "20061115_090000_00.jpg");
    EXPECT_EQ(text("lastPicture", "time"), "2006-11-15T09:00:00+09:00");
    EXPECT_TRUE(status()["lastAttempt"].toObject()["filed"].toBool());
    EXPECT_EQ(text("nextDue"), "2006-11-15T09:30:00+09:00");
    failFrom("HTTP status 503");
    runUntil(9, 30, 10);
    EXPECT_FALSE(status()["lastAttempt"].toObject()["filed"].toBool(true));
    EXPECT_EQ(text("lastAttempt", "fault"), "HTTP status 503");
    EXPECT_EQ(today("missed"), 0) << "its minute is not over";
    runUntil(10, 1, 2);
    EXPECT_EQ(today("missed"), 2);
    EXPECT_EQ(causes(), "no image@10:01 ");
    EXPECT_EQ(status()["lastPicture"].toObject()["ageSeconds"].toInt(), 61 * 60 + 1);
    s->recording.Command2_Click();
    s->clock.run(2s);
    EXPECT_EQ(text("state"), "stopped");
    EXPECT_TRUE(status()["schedule"].isNull());
    EXPECT_TRUE(status()["nextDue"].isNull());
    EXPECT_EQ(causes(), "") << "nobody waits for a picture";
    start(at(2006, 11, 15, 12, 5));
    s->start(true);
    s->clock.run(3s);
    EXPECT_EQ(text("lastPicture", "name"), "20061115_090000_00.jpg") << "also of an earlier start";
    EXPECT_EQ(today("due"), 16);
    EXPECT_EQ(today("taken"), 1);
    EXPECT_EQ(today("missed"), 2);
    EXPECT_EQ(today("notRecorded"), 4); // 10:30 to 12:00
    EXPECT_EQ(today("toCome"), 9);
    runUntil(17, 10);
    EXPECT_EQ(text("nextDue"), "2006-11-16T09:00:00+09:00");
    s->statusFile.end();
    EXPECT_EQ(text("state"), "ended");
    EXPECT_EQ(text("alive"), "2006-11-15T17:10:00+09:00");
    s->clock.run(5min);
    EXPECT_EQ(text("alive"), "2006-11-15T17:10:00+09:00");
}

/// Whoever reads at any moment finds a whole object, the same for the page, not older than a
/// minute, with the counts of the files that are in the folder.
TEST_F(StatusFileTest, IsWholeFreshAndTrueAtEveryMoment) {
    s->setSchedule("9", "17", "7");
    s->start(true);
    s->clock.run(2s);
    int passes = 0;
    while (s->clock.now() < at(2006, 11, 15, 10, 30)) {
        const auto minute = minuteOfDay(s->clock.now());
        minute / 4 % 3 == 0 ? failFrom("no answer") : succeed(std::to_string(passes));
        s->http.latency = minute % 3 == 0 ? 20s : 50ms;
        s->clock.run(700ms);
        ++passes;
        const std::string bytes = bytesOf("status.json");
        QJsonParseError error{};
        const auto told = QJsonDocument::fromJson(QByteArray::fromStdString(bytes), &error);
        ASSERT_EQ(error.error, QJsonParseError::NoError) << bytes;
        ASSERT_EQ(bytesOf("status.js"),
                  "var orvaneStatus = " + bytes.substr(0, bytes.size() - 1) + ";\n");
        const auto age = universalSeconds(s->clock.now(), 540min) - told["aliveUtc"].toInteger();
        ASSERT_GE(age, 0);
        ASSERT_LE(age, 61);
        const auto files = s->imagesOf("20061115");
        const auto counted = static_cast<int>(files.size());
        const int taken = told["today"]["taken"].toInt();
        // a second may pass between the file and the figure
        if (taken != counted) s->clock.run(1001ms);
        ASSERT_EQ(today("taken"), counted) << timeText(s->clock.now());
        ASSERT_EQ(text("lastPicture", "name"), files.empty() ? "" : files.back());
    }
    EXPECT_GT(s->imagesOf("20061115").size(), 6U);
    EXPECT_GT(today("missed"), 0);
}

/// A capture that takes long and the pause after it hold the main loop, but not this.
TEST_F(StatusFileTest, StaysAliveWhileACaptureLasts) {
    s->store.values["Settings/Delay"] = "300";
    s->start(true);
    for (int minute = 0; minute < 5; ++minute) {
        runUntil(9, minute, 2);
        EXPECT_EQ(text("alive").substr(11, 6), "09:0" + std::to_string(minute) + ":");
    }
}

TEST_F(StatusFileTest, IsWrittenOncePerMinuteWhileNothingChanges) {
    s->start(false);
    runUntil(8, 51, 30);
    s->statusFiles.steps.clear();
    runUntil(8, 55, 30);
    EXPECT_EQ(std::ranges::count(s->statusFiles.steps, "rename"), 4 * 2); // two files each
}

/// As on Windows while somebody reads it.
TEST_F(StatusFileTest, ARefusedReplacementIsTriedAgainAndToldAfterAMinute) {
    s->start(true);
    runUntil(8, 55, 30);
    s->statusFiles.failing = "rename";
    runUntil(8, 56, 30);
    EXPECT_EQ(text("alive"), "2006-11-15T08:55:00+09:00") << "the old one is whole";
    EXPECT_FALSE(s->warnings.stands(Cause::StatusFile));
    s->statusFiles.failing.clear();
    s->clock.run(1s);
    EXPECT_EQ(text("alive").substr(0, 17), "2006-11-15T08:56:");
    s->statusFiles.failing = "rename";
    runUntil(8, 58, 1);
    EXPECT_TRUE(s->warnings.stands(Cause::StatusFile));
    EXPECT_EQ(s->warnings.text.get(), "The status page cannot be kept up to date: status.json: No "
                                      "space left on device.");
    runUntil(9, 1);
    EXPECT_EQ(s->imagesOf("20061115").size(), 1U) << "no capture is disturbed";
    EXPECT_EQ(s->countLogged("StatusFile:status.json: No space left on device"), 1);
    s->statusFiles.failing.clear();
    runUntil(9, 2, 3);
    EXPECT_FALSE(s->warnings.stands(Cause::StatusFile));
    EXPECT_EQ(causes(), "");
    for (const char* part : {".status.json.part", ".status.js.part", ".status.html.part"})
        EXPECT_FALSE(std::filesystem::exists(s->module.programFolder / part));
}

TEST_F(StatusFileTest, TellsWhatIsWarnedOf) {
    s->start(true);
    s->files.failing = "write";
    runUntil(9, 0, 30);
    EXPECT_EQ(causes(), "data folder@09:00 ");
    s->files.failing.clear();
    runUntil(9, 1, 10);
    EXPECT_EQ(causes(), "");
    s->warnings.set(Cause::Settings, "A \"quote\", a \\, a tab\t,\nand \xFF no text");
    s->clock.run(1s);
    EXPECT_EQ(status()["warnings"][0]["text"].toString(),
              QString::fromUtf8("A \"quote\", a \\, a tab\t,\nand \xEF\xBF\xBD no text"));
}

TEST_F(StatusFileTest, KeepsACopyOfTheLatestPictureWhenThatIsOn) {
    s->start(true);
    runUntil(9, 5);
    EXPECT_EQ(bytesOf("latest.jpg"), "");
    EXPECT_TRUE(status()["latestCopy"].isNull());
    s->settings.keepLatestCopy(true);
    s->clock.run(1s);
    const auto picture = [&](const char* name) {
        std::string bytes;
        readWholeFile(s->dataFolder() / "20061115" / name, bytes);
        return bytes;
    };
    EXPECT_EQ(bytesOf("latest.jpg"), picture("20061115_090000_00.jpg"));
    EXPECT_EQ(text("latestCopy"), "20061115_090000_00.jpg");
    runUntil(9, 30, 5);
    EXPECT_EQ(bytesOf("latest.jpg"), picture("20061115_093000_00.jpg"));
    EXPECT_EQ(text("latestCopy"), "20061115_093000_00.jpg");
    EXPECT_EQ(s->store.values["Station/LatestCopy"], "1");
    s->settings.keepLatestCopy(false);
    s->clock.run(1s);
    EXPECT_FALSE(std::filesystem::exists(s->module.programFolder / "latest.jpg"));
    EXPECT_TRUE(status()["latestCopy"].isNull());
}

/// The last picture lies on a drive that has gone: no copy, no warning, and the rest is told.
TEST_F(StatusFileTest, APictureThatCannotBeReadIsAskedForOnce) {
    s->store.values["Station/LatestCopy"] = "1";
    s->start(true);
    runUntil(9, 5);
    s->module.lastImage = s->dataFolder() / "20061115" / "20061115_090100_00.jpg";
    runUntil(9, 8, 2);
    EXPECT_EQ(text("latestCopy"), "20061115_090000_00.jpg");
    EXPECT_EQ(text("alive").substr(11, 5), "09:08");
    EXPECT_FALSE(s->warnings.stands(Cause::StatusFile));
    runUntil(9, 30, 5);
    EXPECT_EQ(text("latestCopy"), "20061115_093000_00.jpg");
}

TEST_F(StatusFileTest, BringsItsPage) {
    ASSERT_FALSE(writeToFinalName("an older page", s->module.programFolder / "status.html"));
    s->start(false);
    s->clock.run(2s);
    EXPECT_EQ(bytesOf("status.html"), "<!DOCTYPE html><title>Page</title>");
}

TEST_F(StatusFileTest, TellsOfTheDailyClocks) {
    s->store.values["Settings/AdjTime"] = "1";
    s->port.openable = false;
    s->start(true);
    s->clock.run(2s);
    EXPECT_TRUE(status()["clocks"].toObject()["daily"].toBool());
    EXPECT_TRUE(status()["clocks"].toObject()["lastSetting"].isNull());
    runUntil(8, 58);
    EXPECT_EQ(text("clocks", "lastSetting").substr(0, 14), "2006-11-15T08:");
    EXPECT_NE(text("clocks", "fault"), "");
    EXPECT_EQ(causes().substr(0, 14), "clock setting@");
}

/// The site's own almanac: on 15 November in Tokyo's west the sun rises at about 6:20 and sets at
/// about 16:34; at noon it stands 36 degrees high.
TEST_F(StatusFileTest, TellsOfTheSun) {
    s->start(true);
    runUntil(12, 0, 5);
    const QJsonObject sun = status()["sun"].toObject();
    EXPECT_EQ(sun["sunrise"].toString().left(4), QString("06:2"));
    EXPECT_EQ(sun["sunset"].toString().left(4), QString("16:3"));
    EXPECT_NEAR(sun["elevation"].toDouble(), 35.8, 1);
}

} // namespace
} // namespace orvane::test
