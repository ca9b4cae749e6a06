#include "tests/support/ReadMail.h"
#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

MailSettings wanted(bool warnings, bool daily) {
    MailSettings settings;
    settings.server.host = "mail.example.org";
    settings.from = "Station South <sky@example.org>";
    settings.to = "one@example.org, two@example.org";
    settings.warnings = warnings;
    settings.daily = daily;
    return settings;
}

/// A station that records every half hour from 9 to 17, and mails.
struct Mailing : TestStation {
    explicit Mailing(WallTime time, bool warns = true, bool daily = false,
                     const std::map<std::string, std::string>& stored = {})
        : TestStation(time) {
        store.values.insert(stored.begin(), stored.end());
        store.values["Settings/FillGaps"] = "0";
        saveMailSettings(store, wanted(warns, daily));
        alerts.start();
    }
    ~Mailing() { tasks.clear(); }

    void refuseMails(const std::string& fault) {
        mail.answer = [fault](const Mail&) { return MailOutcome{fault, {}}; };
    }
    ReadMail only() const {
        EXPECT_EQ(mail.sent.size(), 1U);
        return ReadMail(mail.sent.at(0).bytes);
    }
    /// Has causes come up and go in turn, each time for `span`.
    void flap(const std::vector<Cause>& causes, Ticks span, WallTime end) {
        for (bool stands = true; clock.now() < end; stands = !stands) {
            for (const Cause cause : causes)
                warnings.set(cause, stands ? "It flaps." : "");
            clock.run(span);
        }
    }
    /// No `span` held more than `most` mails.
    void expectFew(std::size_t most, Ticks span) const {
        for (std::size_t first = 0; first + most < mail.triedAt.size(); ++first)
            EXPECT_GE(mail.triedAt[first + most], mail.triedAt[first] + span) << first;
    }
};

TEST(Alerts, AnOutageBringsTwoMails) {
    Mailing s(at(2006, 11, 15, 8, 0));
    const auto camera = s.http.answer;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 10));
    s.http.answer = failing("HTTP status 503");
    s.clock.runUntil(at(2006, 11, 15, 14, 10));
    ReadMail warning = s.only();
    EXPECT_EQ(hourMinute(s.mail.triedAt[0]), "11:11");
    EXPECT_EQ(s.mail.sent[0].sender, "sky@example.org");
    EXPECT_EQ(s.mail.sent[0].recipients,
              (std::vector<std::string>{"one@example.org", "two@example.org"}));
    const std::string news = "No image at 10:30 and 11:00. Please check the camera.";
    EXPECT_EQ(warning.subject(), "Orvane warns: " + news);
    EXPECT_EQ(warning.headers["From"], "Station South <sky@example.org>");
    EXPECT_TRUE(warning.headers["Date"].starts_with("Wed, 15 Nov 2006 11:11:"));
    EXPECT_TRUE(warning.headers["Date"].ends_with(" +0900"));
    for (const char* part :
         {"Since 2006/11/15 11:01:00 the station warns:\n\nNo image at 10:30 and 11:00. Please "
          "check the camera.\n(HTTP status 503)\n\nWhat to do: Check the camera's power",
          "Today: taken 3 of 16, next at 11:30, 2 missed\n", "Recording: on\n", " GB free",
          "Last picture: 20061115_100000_00.jpg\n"})
        EXPECT_TRUE(has(warning.text(), part));
    ASSERT_EQ(warning.parts.size(), 2U);
    EXPECT_EQ(warning.parts[1].bytes,
              contentsOf(s.dataFolder() / "20061115" / "20061115_100000_00.jpg"));
    s.http.answer = camera;
    s.mail.answer = [](const Mail&) {
        return MailOutcome{std::nullopt, {"two@example.org: 550 no such user"}};
    };
    s.clock.runUntil(at(2006, 11, 16, 8, 0));
    ASSERT_EQ(s.mail.sent.size(), 2U) << "those who have it do not get it again";
    EXPECT_EQ(s.warnings.standing().at(Cause::Mail).text,
              "The mail server refused a recipient: two@example.org: 550 no such user");
    ReadMail over(s.mail.sent[1].bytes);
    EXPECT_EQ(over.subject(), "Orvane, over: " + news);
    EXPECT_TRUE(has(over.text(), "stood from 2006/11/15 11:01:00 and went at 2006/11/15 14:3"));
    EXPECT_EQ(s.countLogged("Mail sent: " + over.subject()), 1);
}

TEST(Alerts, WhatDoesNotStandTenMinutesIsNoNews) {
    Mailing s(at(2006, 11, 15, 8, 0));
    s.flap({Cause::NoImage, Cause::DiskSpace}, 9min, at(2006, 11, 15, 14, 18));
    s.warnings.set(Cause::NoImage, "Gone and back between two looks.");
    s.clock.run(9min);
    s.warnings.clear(Cause::NoImage);
    s.warnings.set(Cause::NoImage, "Gone and back between two looks.");
    s.clock.run(9min);
    EXPECT_EQ(s.mail.tries, 0);
    s.clock.run(2min);
    EXPECT_EQ(s.mail.tries, 1);
}

const std::vector<Cause> kMany = {Cause::NoImage, Cause::DataFolder, Cause::DiskSpace,
                                  Cause::SunTimes, Cause::ErrorLog};

/// A cause that comes and goes brings one mail an hour; many of them bring no more than 24 a day in
/// all, and the day's report is among them.
TEST(Alerts, FlappingCausesBringABoundedNumber) {
    const std::tuple<std::vector<Cause>, Ticks, bool, std::size_t> cases[] = {
        {{Cause::NoImage}, 13min, false, 60},
        {{Cause::NoImage}, 31min, false, 60},
        {kMany, 13min, true, 90},
        {kMany, 2h, false, 96}};
    for (const auto& [causes, span, daily, leastOfFourDays] : cases) {
        Mailing s(at(2006, 11, 15), true, daily);
        s.flap(causes, span, at(2006, 11, 19));
        s.expectFew(Alerts::kMostADay, 24h);
        if (causes.size() == 1) s.expectFew(1, 1h);
        EXPECT_GE(s.mail.sent.size(), leastOfFourDays);
        EXPECT_LE(s.mail.sent.size(), 4 * Alerts::kMostADay);
        const auto reports = std::ranges::count_if(s.mail.sent, [](const Mail& mail) -> bool {
            return has(ReadMail(mail.bytes).subject(), "well");
        });
        EXPECT_GE(reports, daily ? 4 : 0);
    }
}

/// A mail server that is gone for more than a day costs no capture. The pauses grow to an hour, the
/// mails wait for a day, and the window tells of it; that is never mailed.
TEST(Alerts, AMailServerThatIsGoneForADay) {
    Mailing s(at(2006, 11, 15, 8, 0));
    s.setSchedule("0", "23", "30", "59");
    s.mail.latency = 110s;
    s.refuseMails("no connection to the mail server");
    s.start(true);
    s.warnings.set(Cause::ClockSetting, "The clock.");
    s.clock.run(13min);
    EXPECT_EQ(s.warnings.standing().at(Cause::Mail).text,
              "No mail can be sent: no connection to the mail server. Please see Tools > Alerts.");
    s.clock.runUntil(at(2006, 11, 16, 9, 50));
    EXPECT_EQ(s.imagesOf("20061115").size(), 32U);
    const auto& tries = s.mail.triedAt;
    ASSERT_GT(tries.size(), 8U);
    int expected = 1;
    for (std::size_t next = 1; next < tries.size(); ++next) {
        const auto pause = (tries[next] - tries[next - 1] - 110s) / 1s;
        EXPECT_NEAR(static_cast<double>(pause), expected * 60, 1) << next;
        expected = std::min(2 * expected, 60);
    }
    EXPECT_NEAR(static_cast<double>((tries.back() - tries.front()) / 1h), 23, 1);
    EXPECT_EQ(s.countLogged("Alerts:Given up, not sent: Orvane warns: The clock."), 1);
    EXPECT_TRUE(s.mail.sent.empty());
    EXPECT_TRUE(s.warnings.stands(Cause::Mail));
    s.mail.answer = nullptr;
    s.warnings.clear(Cause::ClockSetting);
    s.clock.run(5min);
    EXPECT_EQ(s.only().subject(), "Orvane, over: The clock.");
    EXPECT_FALSE(s.warnings.stands(Cause::Mail));
}

/// The oldest give way, and the rest arrives in its order.
TEST(Alerts, TheQueueIsBounded) {
    Mailing s(at(2006, 11, 15));
    s.refuseMails("the mail server refused the mail: 452 full");
    s.flap(kMany, 30min, at(2006, 11, 15, 9));
    const auto isDropped = [](const auto& line) { return line.starts_with("Alerts:Too many "); };
    EXPECT_EQ(std::ranges::count_if(s.logged(), isDropped), 4);
    s.mail.answer = nullptr;
    s.clock.run(1h + 2min);
    EXPECT_EQ(s.mail.sent.size(), MailQueue::kMost);
    const auto dateOf = [](const Mail& mail) {
        return ReadMail(mail.bytes).headers["Date"].substr(17, 8);
    };
    EXPECT_TRUE(std::ranges::is_sorted(s.mail.sent, {}, dateOf));
}

/// New settings are tried at once; switched off, nothing is sent or warned of any more.
TEST(Alerts, NewSettingsHoldAtOnce) {
    Mailing s(at(2006, 11, 15, 8, 0));
    s.refuseMails("the mail server refused the log-in: 535 no");
    s.warnings.set(Cause::DiskSpace, "Little space.");
    s.clock.run(50min);
    s.mail.answer = nullptr;
    MailSettings better = wanted(true, false);
    better.server.password = "right";
    better.server.user = "sky";
    EXPECT_FALSE(s.alerts.use(better));
    s.clock.run(5s);
    EXPECT_EQ(s.mail.sent.size(), 1U);
    EXPECT_EQ(s.mail.lastServer.password, "right");
    EXPECT_FALSE(s.warnings.stands(Cause::Mail));
    s.refuseMails("no");
    s.warnings.clear(Cause::DiskSpace);
    s.clock.run(50min);
    EXPECT_TRUE(s.warnings.stands(Cause::Mail));
    s.alerts.use(wanted(false, false));
    EXPECT_FALSE(s.warnings.stands(Cause::Mail));
    s.mail.answer = nullptr;
    s.warnings.set(Cause::DiskSpace, "Little space.");
    s.clock.run(48h);
    EXPECT_EQ(s.mail.sent.size(), 1U);
    for (const std::string& line : s.logged())
        EXPECT_EQ(line.find("right"), std::string::npos) << "the password";
}

TEST(Alerts, TheDayIsReportedOnce) {
    std::map<std::string, std::string> stored;
    {
        Mailing s(at(2006, 11, 15, 8, 0), false, false);
        s.start(true);
        s.alerts.use(wanted(false, true));
        s.clock.runUntil(at(2006, 11, 15, 18, 0));
        ReadMail read = s.only();
        EXPECT_EQ(hourMinute(s.mail.triedAt[0]), "17:10");
        EXPECT_EQ(read.subject(), "Orvane, 2006/11/15: all is well, 16 of 16 pictures taken");
        EXPECT_TRUE(has(read.text(), "Due: 16\nTaken: 16\nFetched later: 0\nMissed: 0\n"));
        ASSERT_EQ(read.parts.size(), 3U);
        EXPECT_TRUE(has(read.parts[1].headers["Content-Type"], "20061115_163000_00.jpg"));
        EXPECT_TRUE(has(read.parts[2].headers["Content-Type"], "keogram.jpg"));
        stored = s.store.values;
    }
    Mailing s(at(2006, 11, 15, 19, 0), false, true, stored);
    s.start(true);
    s.clock.runUntil(at(2006, 11, 16, 10, 10));
    EXPECT_TRUE(s.mail.sent.empty());
    s.http.answer = failing("no answer");
    s.clock.runUntil(at(2006, 11, 17));
    ReadMail read = s.only();
    EXPECT_EQ(read.subject(), "Orvane, 2006/11/16: not all is well, 3 of 16 pictures taken");
    EXPECT_TRUE(has(read.text(), "- 13 pictures missed.\n"));
    EXPECT_TRUE(has(read.text(), "- since 2006/11/16 11:01:00: No image at "));
}

/// A window up to midnight is reported on behind it, and a report that could not be sent in time
/// follows after a restart.
TEST(Alerts, TheReportOfADayThatIsOver) {
    std::map<std::string, std::string> stored;
    {
        Mailing s(at(2006, 11, 15, 22, 30), false, false);
        s.setSchedule("22", "23", "30", "59");
        s.start(true);
        s.alerts.use(wanted(false, true));
        s.refuseMails("no connection");
        s.clock.runUntil(at(2006, 11, 16, 0, 8));
        EXPECT_EQ(s.mail.tries, 0);
        s.clock.runUntil(at(2006, 11, 16, 1, 0));
        EXPECT_GT(s.mail.tries, 0);
        stored = s.store.values;
    }
    Mailing s(at(2006, 11, 16, 1, 30), false, true, stored);
    s.start(true);
    s.clock.runUntil(at(2006, 11, 16, 22, 0));
    EXPECT_TRUE(has(s.only().subject(), "Orvane, 2006/11/15: "));
}

/// A clock that was wrong, far ahead or a while back, does not silence the reports. A window that
/// follows the sun has an end of its own.
TEST(Alerts, ReportsGoOnAfterAWrongClock) {
    Mailing s(at(2006, 11, 15, 8, 0), false, true,
              {{"Station/MailDailyDone", "20991231"}, {"Station/FollowSun", "1"}});
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 18, 0));
    ASSERT_EQ(s.mail.sent.size(), 2U) << "yesterday's and today's";
    const TimeOfDay end = s.module.schedule.EndTime;
    EXPECT_GT(end, 17h);
    EXPECT_EQ(hourMinute(s.mail.triedAt[1]), hourMinute(at(2006, 11, 15) + end + 10min));
    s.clock.jumpWall(-3h);
    s.clock.run(5h);
    EXPECT_EQ(s.mail.sent.size(), 2U) << "the same day is not over twice";
}

TEST(Alerts, ATestTellsWhatBecameOfIt) {
    Mailing s(at(2006, 11, 15, 8, 0), false, false);
    const auto test = [&](const MailSettings& settings) {
        return finish(s.clock, s.alerts.test(settings));
    };
    EXPECT_EQ(test(wanted(false, false)), "The mail server has taken the mail.");
    EXPECT_EQ(s.only().subject(), "Orvane: test of the alerts");
    s.refuseMails("the mail server refused the log-in: 535 no");
    EXPECT_EQ(test(wanted(true, true)),
              "No mail was sent: the mail server refused the log-in: 535 no. Please correct that "
              "and test again.");
    MailSettings wrong = wanted(true, true);
    wrong.to = "nobody";
    EXPECT_EQ(test(wrong), "No mail was sent: Please enter the recipients' mail addresses, with "
                           "commas between them. Please correct that and test again.");
    EXPECT_FALSE(s.warnings.stands(Cause::Mail)) << "he has been told";
}

TEST(MailSettings, AreStoredAndTakenBack) {
    FakeStore store;
    EXPECT_FALSE(loadMailSettings(store).settings.wanted()) << "off at first";
    EXPECT_EQ(loadMailSettings(store).settings.server.port, 587);
    MailSettings settings = wanted(true, false);
    settings.server = {"mail.example.org", 2525,           MailSecurity::Tls, "sky",
                       "pä\"ss;wörd ",     "C:/Süd/ca.pem"};
    EXPECT_FALSE(saveMailSettings(store, settings));
    const LoadedMailSettings loaded = loadMailSettings(store);
    EXPECT_EQ(loaded.settings, settings);
    EXPECT_FALSE(loaded.fault);
    store.values["Station/MailPort"] = "70000";
    store.values["Station/MailSecurity"] = "some";
    EXPECT_EQ(loadMailSettings(store).settings.server.port, 587);
    EXPECT_EQ(loadMailSettings(store).settings.server.security, MailSecurity::StartTls)
        << "never less secure by a mistake";
    store.readOnly = true;
    EXPECT_EQ(saveMailSettings(store, settings),
              "The settings cannot be stored: see whether their disk is full.");
}

TEST(MailSettings, MistakesAreFound) {
    const auto mistake = [](auto change) -> std::optional<MailField> {
        MailSettings settings = wanted(true, true);
        change(settings);
        const auto found = mistakeIn(settings);
        return found ? std::optional(found->field) : std::nullopt;
    };
    EXPECT_EQ(mistake([](auto&) {}), std::nullopt);
    for (const char* host : {"", "a b", "mail.example.org/x", "user@mail", "http://mail", "mäil"})
        EXPECT_EQ(mistake([=](auto& s) { s.server.host = host; }), MailField::Host) << host;
    EXPECT_EQ(mistake([](auto& s) { s.server.host = "::1"; }), std::nullopt);
    EXPECT_EQ(mistake([](auto& s) { s.server.user = "sky"; }), MailField::Password);
    EXPECT_EQ(mistake([](auto& s) { s.server.caFile = "no/such.pem"; }), MailField::CaFile);
    EXPECT_EQ(mistake([](auto& s) { s.from = "sky"; }), MailField::From);
    for (const char* to : {"", "one@example.org,two", "one@example.org two@example.org",
                           "a@b.c,a@b.c,a@b.c,a@b.c,a@b.c,a@b.c,a@b.c,a@b.c,a@b.c,a@b.c,a@b.c"})
        EXPECT_EQ(mistake([=](auto& s) { s.to = to; }), MailField::To) << to;
}

} // namespace
} // namespace orvane::test
