#include "tests/support/StationDay.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

/// The station records from 09:00 to 17:00 every 30 minutes, and its camera does not answer.
struct ConditionTest : StationDay {
    ConditionTest() { begin(at(2006, 11, 15, 9, 29)); }
    void begin(WallTime time) {
        start(time);
        camera = s->http.answer;
        s->http.answer = failing("no answer from the camera");
    }
    void mend() { s->http.answer = camera; }
    const std::vector<Notice>& notices() const { return s->condition.notices.get(); }
    /// "recording (Well) The banner's first line."
    std::string told() const {
        constexpr const char* kGrades[] = {" (Off) ", " (Well) ", " (Attention) ", " (Trouble) "};
        const std::string title = s->condition.title;
        EXPECT_TRUE(title.starts_with("Orvane - "));
        return title.substr(9) + kGrades[static_cast<int>(s->panel.sgn_status.grade.get())] +
               (notices().empty() ? "" : notices().front().text);
    }
    std::string lastFault() const { return s->panel.lbl_fault.caption; }

    std::function<HttpReply(const std::string&)> camera;
};

TEST_F(ConditionTest, WhatIsOverGoesWhenItIsClosedOrComesAgain) {
    recordUntil(10, 2);
    s->warnings.set(Cause::Mail, "No mail can be sent: w.");
    mend();
    runUntil(10, 30, 5);
    s->warnings.set(Cause::Mail, "No mail can be sent: x. Please see Tools > Alerts.");
    s->clock.run(1s);
    ASSERT_EQ(notices().size(), 2U);
    EXPECT_EQ(notices()[0].grade, Grade::Well) << "news goes before a lesser warning";
    EXPECT_EQ(notices()[1].text, "Since 10:02: No mail can be sent: x.");
    s->condition.closeOver();
    ASSERT_EQ(notices().size(), 1U);
    s->warnings.clear(Cause::Mail);
    s->clock.run(1s);
    EXPECT_EQ(told(), "recording (Well) Over since 10:30: alerts are not mailed.");
    s->warnings.set(Cause::Mail, "No mail can be sent: y.");
    s->clock.run(1s);
    ASSERT_EQ(notices().size(), 1U);
    EXPECT_EQ(notices()[0].text, "Since 10:30: No mail can be sent: y.");
    s->tasks.spawn(s->imageStore.Test_DL()); // no page is answered
    s->clock.run(2s);
    EXPECT_EQ(s->panel.Label7.caption.get(), "DownLoad Error ?");
    EXPECT_EQ(lastFault(), "10:30: no answer");
    s->browser1.answer = [](const std::string&) { return "NO_DATA"; };
    s->tasks.spawn(s->imageStore.Test_DL());
    s->clock.run(2s);
    EXPECT_EQ(lastFault(), "") << "a run that ended well";
    s->browser1.answer = {};
    s->tasks.spawn(s->imageStore.Test_DL());
    s->clock.run(2s);
}

TEST_F(ConditionTest, TheGravestOfSeveralCausesComesFirst) {
    begin(at(2006, 11, 15, 18, 0));
    s->start(false);
    for (const auto& [cause, text, title] :
         {std::tuple{Cause::SunTimes, "The sun times of the site cannot be computed: polar day.",
                     "Orvane - no sun times"},
          {Cause::DiskSpace, "The disk is nearly full: 6 days are left. Please free space.",
           "Orvane - disk is nearly full"},
          {Cause::DataFolder, "No processed copy of 20061115_093000_00.jpg: No space left.",
           "Orvane - no processed copy of 20061115_093000_00.jpg"}}) {
        s->warnings.set(cause, text);
        s->clock.run(1s);
        EXPECT_EQ(s->condition.title.get(), title);
    }
    ASSERT_EQ(notices().size(), 3U);
    EXPECT_TRUE(has(s->warnings.text, "Please free space.\nThe sun times of the site"));
    EXPECT_EQ(notices()[2].remedy, Remedy::CorrectSite);
    s->clock.runUntil(at(2006, 11, 16, 8, 0));
    EXPECT_TRUE(notices().at(0).text.starts_with("Since 2006/11/15 18:00: "));
}

TEST_F(ConditionTest, AnOutageIsToldUntilThePictureComesOverARestart) {
    recordUntil(9, 32);
    EXPECT_EQ(told(), "recording (Attention) ") << "a single miss is no trouble yet";
    EXPECT_EQ(lastFault(), "09:30: no answer from the camera");
    runUntil(10, 5);
    begin(at(2006, 11, 15, 10, 10));
    s->http.answer = failing("refused");
    recordUntil(10, 12);
    runUntil(11, 5);
    EXPECT_EQ(told(), "no image since 09:30 (Trouble) No image since 09:30, 4 missed: refused.");
    EXPECT_EQ(s->panel.sgn_status.words.get(), "Trouble: no image since 09:30");
    EXPECT_EQ(notices().at(0).remedy, Remedy::TestFetch);
    EXPECT_TRUE(notices()[0].advice.starts_with("Check the camera's power")) << notices()[0].advice;
    EXPECT_EQ(s->condition.begun.get(), 1) << "it has come up once";
    mend();
    runUntil(11, 30, 4); // in the pause after the capture
    EXPECT_EQ(lastFault(), "");
    for (const int minute : {30, 39}) {
        runUntil(11, minute, 50);
        EXPECT_EQ(told(), "recording (Well) Pictures arrive again since 11:30. 4 were missed from "
                          "09:30.");
    }
    runUntil(11, 40, 10);
    EXPECT_EQ(told(), "recording (Well) ");
    s->http.answer = failing("refused");
    runUntil(12, 35);
    EXPECT_TRUE(told().starts_with("no image since 12:00 (Trouble)")) << told();
    s->http.answer = failing("HTTP status 404");
    runUntil(13, 5);
    EXPECT_EQ(s->warnings.text.get(),
              "No image at 12:00 and 12:30. Please check the camera.\n(refused)")
        << "a new text would open the window again";
    s->recording.Command2_Click();
    s->clock.run(2s);
    EXPECT_EQ(told(), "ready (Off) ") << "no news";
}

/// A station that records every half hour from 9 to 17 and is started at 8:50.
struct StatusFileTest : StationDay {
    StatusFileTest() { begin(at(2006, 11, 15, 8, 50)); }
    void begin(WallTime time) {
        start(time);
        s->tellsStatus = true;
    }
    std::string bytesOf(const char* name) const {
        return contentsOf(s->module.programFolder / name);
    }
    /// Empty when the file is not there or not whole.
    QJsonObject status() const {
        return QJsonDocument::fromJson(QByteArray::fromStdString(bytesOf("status.json"))).object();
    }
    /// The values of "state, today.due", in their order; "null" for a null.
    std::string told(const QString& names) const {
        QStringList values;
        for (const QString& name : names.split(", ")) {
            QJsonValue value = status();
            for (const QString& part : name.split("."))
                value = value[part];
            values += value.isNull() ? "null" : value.toVariant().toString();
        }
        return values.join(", ").toStdString();
    }
    std::string causes() const {
        QString all;
        for (const QJsonValue& each : status()["warnings"].toArray())
            all += each[u"cause"].toString() + "@" + each[u"since"].toString().mid(11, 5) + " ";
        return all.toStdString();
    }
    bool warns() const { return s->warnings.stands(Cause::StatusFile); }
};

TEST_F(StatusFileTest, TellsADayWithFailuresStopsAndARestart) {
    recordUntil(8, 55, 2);
    EXPECT_EQ(told("state, alive, started, version, nextDue, lastPicture, lastAttempt"),
              "recording, 2006-11-15T08:55:00+09:00, 2006-11-15T08:50:00+09:00, 0.1.0, "
              "2006-11-15T09:00:00+09:00, null, null");
    // 9:00 at +09:00 is midnight, universal time: day 13467 since 1970
    EXPECT_EQ(status()["aliveUtc"].toInteger(), std::int64_t{13467} * 86400 - 300);
    EXPECT_EQ(told("schedule.start, schedule.end, schedule.intervalMinutes"), "09:00, 17:00, 30");
    runUntil(9, 0, 5);
    EXPECT_EQ(told("lastPicture.name, lastPicture.time, lastAttempt.filed, nextDue"),
              "20061115_090000_00.jpg, 2006-11-15T09:00:00+09:00, true, 2006-11-15T09:30:00+09:00");
    EXPECT_EQ(told("today.taken"), "1");
    const std::string object = bytesOf("status.json");
    EXPECT_EQ(bytesOf("status.js"),
              "var orvaneStatus = " + object.substr(0, object.size() - 1) + ";\n");
    s->http.answer = failing("HTTP status 503");
    runUntil(9, 30, 10); // its minute is not over
    EXPECT_EQ(told("lastAttempt.filed, lastAttempt.fault, today.missed"),
              "false, HTTP status 503, 0");
    runUntil(10, 1, 2);
    EXPECT_EQ(told("today.missed, lastPicture.ageSeconds"), "2, 3661");
    EXPECT_EQ(causes(), "no image@10:01 ");
    s->recording.Command2_Click();
    s->clock.run(2s);
    EXPECT_EQ(told("state, schedule, nextDue"), "stopped, null, null");
    EXPECT_EQ(causes(), "") << "nobody waits for a picture";
    begin(at(2006, 11, 15, 12, 6));
    s->store.values["Settings/Delay"] = "300";
    recordUntil(12, 6, 3);
    EXPECT_EQ(told("lastPicture.name"), "20061115_090000_00.jpg") << "also of an earlier start";
    EXPECT_EQ(told("today.due, today.taken, today.missed, today.notRecorded, today.toCome"),
              "16, 1, 2, 4, 9"); // not recorded: 10:30 to 12:00
    // by the almanac of the site: about 6:20 and 16:34, and 36 degrees at noon
    EXPECT_EQ(told("sun.sunrise").substr(0, 4) + told("sun.sunset").substr(0, 4), "06:216:3");
    EXPECT_NEAR(status()["sun"][u"elevation"].toDouble(), 35.8, 1);
    runUntil(12, 34, 2);
    EXPECT_EQ(told("alive").substr(11, 6), "12:34:") << "a capture holds the main loop, not this";
    runUntil(17, 10);
    EXPECT_EQ(told("nextDue"), "2006-11-16T09:00:00+09:00");
    s->statusFile.end();
    s->clock.run(5min);
    EXPECT_EQ(told("state, alive"), "ended, 2006-11-15T17:10:00+09:00");
}

/// As on Windows while somebody reads it.
TEST_F(StatusFileTest, ARefusedReplacementIsTriedAgainAndToldAfterAMinute) {
    writeFile(s->module.programFolder / "status.html", "an older page");
    recordUntil(8, 51, 30);
    EXPECT_EQ(bytesOf("status.html"), "<!DOCTYPE html><title>Page</title>");
    s->statusFiles.steps.clear();
    runUntil(8, 55, 30);
    EXPECT_EQ(std::ranges::count(s->statusFiles.steps, "rename"), 4 * 2) << "two a minute";
    s->statusFiles.failing = "rename";
    runUntil(8, 56, 30);
    EXPECT_EQ(told("alive"), "2006-11-15T08:55:00+09:00") << "the old one is whole";
    EXPECT_FALSE(warns());
    s->statusFiles.failing.clear();
    s->clock.run(1s);
    EXPECT_EQ(told("alive").substr(0, 17), "2006-11-15T08:56:");
    s->statusFiles.failing = "rename";
    runUntil(8, 58, 1);
    EXPECT_TRUE(warns());
    EXPECT_EQ(s->warnings.text.get(), "The status page cannot be kept up to date: status.json: No "
                                      "space left on device.");
    runUntil(9, 1);
    EXPECT_EQ(count(), 1) << "no capture is disturbed";
    EXPECT_EQ(s->countLogged("StatusFile:status.json: No space left on device"), 1);
    s->statusFiles.failing.clear();
    runUntil(9, 2, 3);
    EXPECT_FALSE(warns());
    EXPECT_EQ(causes(), "");
    for (const char* part : {".status.json.part", ".status.js.part", ".status.html.part"})
        EXPECT_FALSE(std::filesystem::exists(s->module.programFolder / part));
}

TEST_F(StatusFileTest, TellsWhatIsWarnedOf) {
    s->store.values["Settings/AdjTime"] = "1";
    s->port.openable = false;
    recordUntil(8, 50, 2);
    EXPECT_EQ(told("clocks.daily, clocks.lastSetting, clocks.fault"), "true, null, null");
    runUntil(8, 58);
    EXPECT_EQ(told("clocks.lastSetting").substr(0, 14), "2006-11-15T08:");
    EXPECT_GT(told("clocks.fault").size(), 4U);
    EXPECT_EQ(causes().substr(0, 14), "clock setting@");
    s->warnings.clear(Cause::ClockSetting);
    s->files.failing = "write";
    runUntil(9, 0, 30);
    EXPECT_EQ(causes(), "data folder@09:00 ");
    EXPECT_TRUE(has(s->warnings.text, "The data folder cannot be written"));
    EXPECT_GT(s->http.requests, 5) << "tried again within the minute";
    s->files.failing.clear();
    runUntil(9, 1, 10);
    EXPECT_EQ(causes(), "");
    EXPECT_EQ(count(), 1);
    s->warnings.set(Cause::Settings, "A \"quote\", a \\, a tab\t,\nand \xFF no text");
    s->clock.run(1s);
    EXPECT_EQ(status()["warnings"][0]["text"].toString(),
              QString::fromUtf8("A \"quote\", a \\, a tab\t,\nand \xEF\xBF\xBD no text"));
}

/// A picture on a drive that has gone is asked for once: no copy, no warning, and the rest is told.
TEST_F(StatusFileTest, KeepsACopyOfTheLatestPictureWhenThatIsOn) {
    const auto expectCopyOf = [&](const std::string& name) {
        EXPECT_EQ(bytesOf("latest.jpg"), contentsOf(s->dataFolder() / "20061115" / name));
        EXPECT_EQ(told("latestCopy"), name);
    };
    recordUntil(9, 5);
    EXPECT_EQ(bytesOf("latest.jpg"), "");
    EXPECT_EQ(told("latestCopy"), "null");
    s->settings.keepLatestCopy(true);
    s->clock.run(1s);
    expectCopyOf("20061115_090000_00.jpg");
    EXPECT_EQ(s->store.values["Station/LatestCopy"], "1");
    s->module.lastImage = s->dataFolder() / "20061115" / "20061115_090100_00.jpg";
    runUntil(9, 8, 2);
    expectCopyOf("20061115_090000_00.jpg");
    EXPECT_EQ(told("alive").substr(11, 5), "09:08");
    const auto isOfIt = [](auto& line) { return line.starts_with("StatusFile:20061115_0901"); };
    EXPECT_EQ(std::ranges::count_if(s->logged(), isOfIt), 1);
    EXPECT_FALSE(warns());
    runUntil(9, 30, 5);
    expectCopyOf("20061115_093000_00.jpg");
    s->settings.keepLatestCopy(false);
    s->clock.run(1s);
    EXPECT_FALSE(std::filesystem::exists(s->module.programFolder / "latest.jpg"));
    EXPECT_EQ(told("latestCopy"), "null");
}

} // namespace
} // namespace orvane::test
