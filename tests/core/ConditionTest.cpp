#include "core/Causes.h"
#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

TEST(Warnings, KnowSinceWhenACauseStands) {
    JumpingClock clock(at(2006, 11, 15, 9));
    Warnings warnings(clock);
    EXPECT_EQ(warnings.since(Cause::NoImage), std::nullopt);
    warnings.set(Cause::NoImage, "No image at 08:00 and 08:30.");
    clock.run(30min);
    warnings.set(Cause::DiskSpace, "Little space.");
    warnings.set(Cause::NoImage, "No image at 08:30 and 09:00.");
    EXPECT_EQ(warnings.since(Cause::NoImage), at(2006, 11, 15, 9)) << "another text only";
    EXPECT_EQ(warnings.since(Cause::DiskSpace), at(2006, 11, 15, 9, 30));
    EXPECT_EQ(warnings.standing().size(), 2U);
    warnings.clear(Cause::NoImage);
    EXPECT_EQ(warnings.since(Cause::NoImage), std::nullopt);
    clock.run(1min);
    warnings.set(Cause::NoImage, "No image at 09:00 and 09:30.");
    EXPECT_EQ(warnings.since(Cause::NoImage), at(2006, 11, 15, 9, 31)) << "it came again";
    EXPECT_EQ(warnings.text.get(), "No image at 09:00 and 09:30.\nLittle space.");
}

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
    s->warnings.set(Cause::Mail, "No mail can be sent: x. Please see Tools > Alerts.");
    mend();
    runUntil(10, 30, 5);
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
}

TEST_F(ConditionTest, TheGravestOfSeveralCausesComesFirst) {
    begin(at(2006, 11, 15, 18, 0));
    s->start(false);
    const std::tuple<Cause, const char*, const char*> causes[] = {
        {Cause::SunTimes, "The sun times of the site cannot be computed: polar day.",
         "Orvane - no sun times"},
        {Cause::DiskSpace, "The disk is nearly full: 6 days are left. Please free space.",
         "Orvane - disk is nearly full"},
        {Cause::DataFolder, "No processed copy of 20061115_093000_00.jpg: No space left.",
         "Orvane - no processed copy of 20061115_093000_00.jpg"}};
    for (const auto& [cause, text, title] : causes) {
        s->warnings.set(cause, text);
        s->clock.run(1s);
        EXPECT_EQ(s->condition.title.get(), title);
    }
    ASSERT_EQ(notices().size(), 3U);
    EXPECT_EQ(notices()[0].remedy, Remedy::SelectFolder);
    EXPECT_FALSE(notices()[0].isLocked);
    EXPECT_EQ(notices()[2].remedy, Remedy::CorrectSite);
    s->press(&Recording::Command1_Click);
    s->clock.run(1s);
    EXPECT_TRUE(notices()[0].isLocked) << "the folder is chosen while not recording";
    s->clock.runUntil(at(2006, 11, 16, 8, 0));
    EXPECT_TRUE(notices()[0].text.starts_with("Since 2006/11/15 18:00: ")) << notices()[0].text;
}

/// The ledger tells what was recorded and missed before a restart.
TEST_F(ConditionTest, AnOutageIsToldUntilThePictureComesOverARestart) {
    recordUntil(9, 32);
    EXPECT_EQ(told(), "recording (Attention) ") << "a single miss is no trouble yet";
    EXPECT_EQ(lastFault(), "09:30: no answer from the camera");
    runUntil(10, 5);
    begin(at(2006, 11, 15, 10, 10));
    recordUntil(11, 2);
    s->http.answer = failing("refused");
    runUntil(11, 5);
    EXPECT_EQ(told(), "no image since 09:30 (Trouble) No image since 09:30, 4 missed: no answer "
                      "from the camera.");
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
    s->recording.Command2_Click();
    s->clock.run(2s);
    EXPECT_EQ(told(), "ready (Off) ") << "no news";
}

TEST(Causes, HaveTheirWordsEach) {
    const int last = static_cast<int>(Cause::Mail);
    EXPECT_EQ(allCauses().size(), static_cast<std::size_t>(last) + 1);
    for (int cause = 0; cause <= last; ++cause)
        EXPECT_EQ(wordsOn(static_cast<Cause>(cause)).cause, static_cast<Cause>(cause)) << cause;
}

} // namespace
} // namespace orvane::test
