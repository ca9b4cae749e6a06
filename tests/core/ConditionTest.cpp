#include "core/Causes.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

/// The station records from 09:00 to 17:00 every 30 minutes, and its camera fails while `fails`.
struct Outage : TestStation {
    explicit Outage(WallTime start = at(2006, 11, 15, 9, 29)) : TestStation(start) {
        http.answer = [this](const std::string&) {
            if (fails) return FakeHttp::failed("no answer from the camera");
            return FakeHttp::picture(std::to_string(http.requests) +
                                     std::to_string(clock.now().time_since_epoch().count()));
        };
    }
    /// The banner's first line.
    std::string banner() const {
        const auto& notices = condition.notices.get();
        return notices.empty() ? "" : notices.front().text;
    }
    std::string title() const { return condition.title; }
    Grade sign() const { return panel.sgn_status.grade; }

    bool fails = true;
};

TEST(Condition, AnOutageIsToldFromItsFirstMinuteUntilThePictureComes) {
    Outage s;
    s.start(true);
    s.clock.run(2s);
    EXPECT_EQ(s.title(), "Orvane - recording");
    EXPECT_EQ(s.sign(), Grade::Well);
    s.clock.runUntil(at(2006, 11, 15, 9, 32));
    EXPECT_EQ(s.title(), "Orvane - recording") << "a single miss is no trouble yet";
    EXPECT_EQ(s.sign(), Grade::Attention);
    EXPECT_EQ(s.panel.lbl_fault.caption.get(), "09:30: no answer from the camera");
    EXPECT_EQ(s.condition.begun.get(), 0);

    s.clock.runUntil(at(2006, 11, 15, 10, 31, 5));
    EXPECT_EQ(s.title(), "Orvane - no image since 09:30");
    EXPECT_EQ(s.sign(), Grade::Trouble);
    EXPECT_EQ(s.panel.sgn_status.words.get(), "Trouble: no image since 09:30");
    ASSERT_EQ(s.condition.notices.get().size(), 1U);
    const Notice outage = s.condition.notices.get().front();
    EXPECT_EQ(outage.text, "No image since 09:30, 3 missed: no answer from the camera.");
    EXPECT_EQ(outage.remedy, Remedy::TestFetch);
    EXPECT_TRUE(outage.advice.starts_with("Check the camera's power")) << outage.advice;
    EXPECT_EQ(s.condition.begun.get(), 1) << "it has come up once";

    s.fails = false;
    s.clock.runUntil(at(2006, 11, 15, 11, 0, 4)); // in the pause after the capture
    EXPECT_EQ(s.title(), "Orvane - recording");
    EXPECT_EQ(s.sign(), Grade::Well);
    EXPECT_EQ(s.panel.lbl_fault.caption.get(), "");
    EXPECT_EQ(s.banner(), "Pictures arrive again since 11:00. 3 were missed from 09:30.");
    EXPECT_EQ(s.condition.notices.get().front().grade, Grade::Well);
    s.clock.runUntil(at(2006, 11, 15, 11, 9, 50));
    EXPECT_FALSE(s.banner().empty());
    s.clock.runUntil(at(2006, 11, 15, 11, 10, 10));
    EXPECT_EQ(s.banner(), "");
}

TEST(Condition, WhatIsOverGoesWhenItIsClosedOrComesAgain) {
    Outage s;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 2));
    s.warnings.set(Cause::Mail, "No mail can be sent: x. Please see Tools > Alerts.");
    s.fails = false;
    s.clock.runUntil(at(2006, 11, 15, 10, 30, 5));
    const auto& notices = s.condition.notices.get();
    ASSERT_EQ(notices.size(), 2U);
    EXPECT_EQ(notices[0].grade, Grade::Well) << "news goes before a lesser warning";
    EXPECT_EQ(notices[1].text, "Since 10:02: No mail can be sent: x.");
    s.condition.closeOver();
    ASSERT_EQ(s.condition.notices.get().size(), 1U);

    s.warnings.clear(Cause::Mail);
    s.clock.run(1s);
    EXPECT_EQ(s.banner(), "Over since 10:30: alerts are not mailed.");
    s.warnings.set(Cause::Mail, "No mail can be sent: y.");
    s.clock.run(1s);
    ASSERT_EQ(s.condition.notices.get().size(), 1U);
    EXPECT_EQ(s.banner(), "Since 10:30: No mail can be sent: y.");
}

TEST(Condition, TheGravestOfSeveralCausesComesFirst) {
    Outage s(at(2006, 11, 15, 18, 0));
    s.start(false);
    s.clock.run(2s);
    EXPECT_EQ(s.title(), "Orvane - ready");
    EXPECT_EQ(s.sign(), Grade::Off);
    const std::tuple<Cause, const char*, const char*> causes[] = {
        {Cause::SunTimes, "The sun times of the site cannot be computed: polar day.",
         "Orvane - no sun times"},
        {Cause::DiskSpace,
         "The disk of the data folder is nearly full: less than 1 GB or 7 days "
         "are left. Please free space or choose another data folder.",
         "Orvane - disk is nearly full"},
        {Cause::DataFolder, "No processed copy of 20061115_093000_00.jpg: No space left.",
         "Orvane - no processed copy of 20061115_093000_00.jpg"},
        {Cause::DataFolder, "The data folder cannot be written: No space left.",
         "Orvane - data folder cannot be written"}};
    for (const auto& [cause, text, title] : causes) {
        s.warnings.set(cause, text);
        s.clock.run(1s);
        EXPECT_EQ(s.title(), title);
    }
    const auto& notices = s.condition.notices.get();
    ASSERT_EQ(notices.size(), 3U);
    EXPECT_EQ(notices[0].remedy, Remedy::SelectFolder);
    EXPECT_FALSE(notices[0].isLocked);
    EXPECT_EQ(notices[1].text, "Since 18:00: The disk of the data folder is nearly full: less than "
                               "1 GB or 7 days are left.");
    EXPECT_EQ(notices[2].remedy, Remedy::CorrectSite);
    EXPECT_EQ(s.condition.begun.get(), 3);
    s.press(&Recording::Command1_Click);
    s.clock.run(1s);
    EXPECT_TRUE(s.condition.notices.get()[0].isLocked)
        << "the folder is chosen while not recording";
    s.clock.runUntil(at(2006, 11, 16, 8, 0));
    EXPECT_TRUE(s.banner().starts_with("Since 2006/11/15 18:00: ")) << s.banner();
}

TEST(Condition, SwitchingRecordingOffEndsAnOutageWithoutNews) {
    Outage s;
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 10, 5));
    EXPECT_EQ(s.title(), "Orvane - no image since 09:30");
    s.recording.Command2_Click();
    s.clock.run(2s);
    EXPECT_EQ(s.title(), "Orvane - ready");
    EXPECT_EQ(s.sign(), Grade::Off);
    EXPECT_EQ(s.banner(), "");
}

/// The ledger tells what was recorded and missed before the restart.
TEST(Condition, AnOutageGoesOnOverARestart) {
    Outage before;
    before.start(true);
    before.clock.runUntil(at(2006, 11, 15, 10, 5));
    Outage after(at(2006, 11, 15, 10, 10));
    after.store.values["DataPath/PathDataFile"] = utf8FromPath(before.dataFolder());
    after.start(true);
    after.clock.runUntil(at(2006, 11, 15, 11, 2));
    EXPECT_EQ(after.title(), "Orvane - no image since 09:30");
    EXPECT_EQ(after.banner(), "No image since 09:30, 4 missed: no answer from the camera.");
    after.fails = false;
    after.clock.runUntil(at(2006, 11, 15, 11, 30, 5));
    EXPECT_EQ(after.banner(), "Pictures arrive again since 11:30. 4 were missed from 09:30.");
}

TEST(Condition, ARunThatWasGivenUpIsToldUntilTheNextOutcome) {
    Outage s(at(2006, 11, 15, 9, 40));
    s.fails = false;
    s.start(true);
    s.clock.run(1s);
    s.tasks.spawn(s.imageStore.Test_DL()); // no page is answered
    s.clock.run(2s);
    EXPECT_EQ(s.panel.Label7.caption.get(), "DownLoad Error ?");
    EXPECT_EQ(s.panel.lbl_fault.caption.get(), "09:40: no answer");
    s.clock.runUntil(at(2006, 11, 15, 10, 0, 5));
    EXPECT_EQ(s.panel.lbl_fault.caption.get(), "") << "a capture has succeeded since";
    EXPECT_EQ(s.sign(), Grade::Well);
}

TEST(Condition, EveryCauseHasItsWords) {
    const int last = static_cast<int>(Cause::Mail);
    EXPECT_EQ(allCauses().size(), static_cast<std::size_t>(last) + 1);
    for (int cause = 0; cause <= last; ++cause)
        EXPECT_EQ(wordsOn(static_cast<Cause>(cause)).cause, static_cast<Cause>(cause)) << cause;
}

} // namespace
} // namespace orvane::test
