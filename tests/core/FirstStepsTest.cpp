#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

/// The camera asked once as recording is switched on.
struct StartTests : StationDay {
    StartTests() {
        start(at(2006, 11, 15, 9, 10));
        s->station.startTest = &s->startTest;
        answerWith(whole);
    }
    void answerWith(const HttpReply& reply) {
        s->http.answer = [reply](const std::string&) { return reply; };
    }
    std::string line() const { return s->panel.lbl_start.caption; }

    const HttpReply whole{true, 200, encoded(gradient(1280, 960)), ""};
};

TEST_F(StartTests, TellsWhatTheCameraAnswers) {
    const std::string end = " Recording goes on trying.";
    const std::pair<HttpReply, std::string> cases[] = {
        {FakeHttp::failed("no answer from the camera"), "The camera does not answer: no answer."},
        {{false, 401, "", "HTTP status 401"}, "The camera sends no picture: HTTP status 401."},
        {{true, 200, "<html>", ""},
         "The camera sends no picture: not a picture: the answer is not a whole JPEG picture."}};
    s->start(false);
    s->clock.run(1s);
    EXPECT_EQ(s->http.requests, 0);
    s->press(&Recording::Command1_Click);
    s->clock.run(1s);
    EXPECT_TRUE(line().starts_with("The camera answers: 1280 x 960, ")) << line();
    EXPECT_TRUE(line().ends_with(" kB")) << line();
    for (const auto& [reply, text] : cases) {
        s->recording.Command2_Click();
        EXPECT_EQ(line(), "");
        answerWith(reply);
        s->press(&Recording::Command1_Click);
        s->clock.run(1s);
        EXPECT_EQ(line(), text + end);
        EXPECT_EQ(looks(), "Recording Standby, stop");
    }
    EXPECT_EQ(s->http.requests, 4) << "once each time, however quickly";
    EXPECT_FALSE(std::filesystem::exists(s->module.programFolder / "full.jpg"));
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(s->views.latest.empty() && s->op.told.empty() && !s->module.lastAttempt);
}

TEST_F(StartTests, TheFirstCaptureTellsMore) {
    recordUntil(9, 10, 1);
    EXPECT_TRUE(line().starts_with("The camera answers:")) << line();
    s->http.answer = failing("no answer from the camera");
    runUntil(9, 30, 20);
    EXPECT_EQ(line(), "No picture at 09:30: no answer. Recording goes on trying.");
    answerWith(FakeHttp::picture("1"));
    s->clock.run(20s);
    EXPECT_EQ(line(), "First picture taken at 09:30");
    answerWith(FakeHttp::picture("2"));
    runUntil(10, 0, 30);
    EXPECT_EQ(line(), "") << "the station shows by itself that it works";
    s->recording.Command2_Click();
    answerWith(FakeHttp::picture("3"));
    runUntil(10, 30, 2);
    const auto requests = s->http.requests;
    s->press(&Recording::Command1_Click);
    runUntil(10, 30, 10);
    EXPECT_EQ(s->http.requests, requests + 1) << "none beside a minute that is due";
}

TEST_F(StartTests, ACaptureTakesOver) {
    s->http.latency = 9s;
    runUntil(9, 29, 56);
    recordUntil(9, 29, 58);
    EXPECT_EQ(line(), "Asking the camera...");
    EXPECT_FALSE(s->busy.active());
    runUntil(9, 30, 2);
    EXPECT_EQ(line(), "");
    runUntil(9, 30, 12);
    EXPECT_EQ(s->http.requests, 2);
    EXPECT_EQ(count(), 1);
    s->recording.Command2_Click();
    runUntil(9, 31, 5);
    s->tasks.spawn(s->camera.Command8_Click());
    s->press(&Recording::Command1_Click);
    s->clock.run(20s);
    EXPECT_EQ(s->http.cancelled, 0) << "it waits for a test fetch";
    EXPECT_TRUE(line().starts_with("The camera answers:")) << line();
}

TEST_F(StartTests, ARunAndAStopEndIt) {
    s->http.latency = 9s;
    s->browser1.answer = [](const std::string&) { return "1,2,r/20061115_090007_00.jpg,"; };
    recordUntil(9, 10, 1);
    s->tasks.spawn(s->imageStore.Test_DL());
    s->clock.run(200ms);
    EXPECT_EQ(line(), "");
    s->clock.run(11s);
    EXPECT_EQ(s->imagesOf("20061115"), Names{"20061115_090007_00.jpg"});
    s->recording.Command2_Click();
    s->press(&Recording::Command1_Click);
    s->clock.run(1s);
    EXPECT_EQ(line(), "Asking the camera...");
    s->recording.Command2_Click();
    EXPECT_EQ(line(), "");
    s->clock.run(1s);
    EXPECT_FALSE(s->http.running());
}

struct FirstStepsTest : StartTests {
    FirstStepsTest() {
        start(at(2006, 11, 15, 8, 0));
        answerWith(whole);
    }
    void begin() {
        s->start(false);
        s->clock.run(1s);
    }
    /// "Done: Answered at 08:00 (txtIp)"
    std::string step(std::size_t index) {
        constexpr const char* kStates[] = {"Open: ", "Done: ", "Wrong: "};
        const FirstSteps::Step step = s->steps.look().steps[index];
        return kStates[static_cast<int>(step.state)] + step.text + " (" + step.control + ")";
    }
    std::string camera() { return step(0); }
    std::string folder() { return step(1); }
    std::string schedule() { return step(2); }
    std::string summary() { return s->steps.look().summary; }
    void testFetch() {
        s->tasks.spawn(s->camera.Command8_Click());
        s->clock.run(2s);
    }
};

TEST_F(FirstStepsTest, FollowsTheCamera) {
    EXPECT_EQ(summary(), "") << "the settings are not loaded yet";
    EXPECT_EQ(s->steps.look().steps[1].text, "");
    begin();
    const std::string open =
        "Open: Not tried yet. Enter its address, then press Test fetch. (txtIp)";
    EXPECT_EQ(camera(), open);
    EXPECT_EQ(summary(), "Before pictures can be recorded");
    testFetch();
    EXPECT_TRUE(camera().starts_with("Done: Answered at 08:00: 1280 x 96")) << camera();
    EXPECT_EQ(summary(), "Ready to record: press Start Recording");
    s->http.answer = failing("no answer from the camera");
    runUntil(8, 5);
    testFetch();
    EXPECT_EQ(camera(), "Wrong: Tried at 08:05: no answer (txtIp)");
    s->panel.txtPort.text = "8080";
    EXPECT_EQ(camera(), open) << "that was another camera's answer";
}

TEST_F(FirstStepsTest, TriesTheFolderWithoutMakingOne) {
    s->settings.initOperation(); // the main loop would bring the chosen folder back
    EXPECT_EQ(folder(), "Done: Pictures go to " + utf8FromPath(s->dataFolder()) + " (Command3)");
    EXPECT_EQ(listing(s->dataFolder()), Names{}) << "the trial is taken away";
    const std::filesystem::path file = s->folder.path() / "file";
    writeFile(file, "no folder");
    s->panel.Dir1[0].path = file / "below";
    EXPECT_TRUE(folder().starts_with("Wrong: Cannot be written: ")) << folder();
    const auto isDone = [&] { return folder().starts_with("Done"); };
    std::filesystem::remove(file);
    std::filesystem::create_directories(file / "below");
    EXPECT_FALSE(isDone()) << "not looked for at every look";
    for (int second = 0; second < 31; ++second) {
        s->clock.run(1s);
        s->steps.look();
    }
    EXPECT_TRUE(isDone());
    std::filesystem::remove_all(file);
    EXPECT_TRUE(isDone());
    s->clock.run(1min);
    EXPECT_FALSE(isDone()) << "somebody comes back to look";
    std::filesystem::create_directories(file / "below");
    s->press(&Recording::Command1_Click);
    EXPECT_TRUE(isDone()) << "at a start at once";
    s->panel.Dir1[0].path = s->module.defaultDataFolder; // made with the first picture
    EXPECT_TRUE(isDone());
    EXPECT_FALSE(std::filesystem::exists(s->module.defaultDataFolder.parent_path()));
}

TEST_F(FirstStepsTest, SaysWhatAStartWouldSay) {
    begin();
    const struct {
        const char *endHour, *minute, *second, *told;
    } cases[] = {
        {"9", "30", "0",
         "Wrong: Start Time and End Time cannot be set to the same time. (Text1_2)"},
        {"17", "0", "30", "Wrong: No minute is ever due: 09:00 to 17:00 every 00 min (Text1_5)"},
        {"17", "30", "0", "Done: 09:00 to 17:00 every 30 min (Text1_0)"}};
    for (const auto& c : cases) {
        s->panel.Text1[2].text = c.endHour;
        s->panel.Text1[5].text = c.minute;
        s->panel.Text1[6].text = c.second;
        EXPECT_EQ(schedule(), c.told);
    }
    s->panel.chk_auto.ticked = true;
    s->recording.chk_auto_Click();
    EXPECT_TRUE(schedule().ends_with("(chk_auto)")) << "first the lock";
    s->panel.chk_auto.ticked = false;
    s->panel.chk_sun.ticked = true;
    s->recording.chk_sun_Click();
    s->clock.run(1s);
    const std::string window = s->panel.lbl_window.caption; // "today 05:21 to 17:35"
    EXPECT_EQ(schedule(), "Done: Follows the sun, " + window + " every 30 min (chk_sun)");
}

TEST_F(FirstStepsTest, TellsWhenTheFirstPictureIsDue) {
    s->station.startTest = &s->startTest;
    recordUntil(8, 0, 1);
    EXPECT_EQ(summary(), "Recording: the first picture is due at 09:00");
    EXPECT_TRUE(folder().ends_with("()")) << "locked while recording";
    EXPECT_TRUE(schedule().ends_with("()"));
    s->http.latency = 5s;
    runUntil(9, 0, 3);
    EXPECT_EQ(summary(), "Recording: a picture is being taken");
    runUntil(9, 1, 3);
    EXPECT_EQ(summary(), "Recording: the next picture is due at 09:30");
    EXPECT_EQ(camera(), "Done: Answered at 09:00 (txtIp)") << "a capture is an answer, too";
    runUntil(20, 0, 3);
    EXPECT_EQ(summary(), "Recording: the next picture is due tomorrow at 09:00");
}

} // namespace
} // namespace orvane::test
