#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using State = FirstSteps::State;

struct FirstStepsTest : testing::Test {
    TestStation s{at(2006, 11, 15, 8, 0)};
    enum : std::size_t { Camera, Folder, Schedule };

    void SetUp() override {
        s.http.answer = [](const std::string&) {
            return HttpReply{true, 200, encoded(gradient(1280, 960)), ""};
        };
    }
    void start() {
        s.start(false);
        s.clock.run(1s);
    }
    FirstSteps::Step step(std::size_t index) { return s.steps.look().steps[index]; }
    void testFetch() {
        s.tasks.spawn(s.camera.Command8_Click());
        s.clock.run(2s);
    }
};

TEST_F(FirstStepsTest, SaysNothingBeforeTheSettingsAreLoaded) {
    const FirstSteps::Look look = s.steps.look();
    EXPECT_EQ(look.summary, "");
    EXPECT_EQ(look.steps[Folder].text, "");
}

TEST_F(FirstStepsTest, FollowsTheCamera) {
    start();
    EXPECT_EQ(step(Camera).state, State::Open);
    EXPECT_EQ(s.steps.look().summary, "Before pictures can be recorded");
    testFetch();
    EXPECT_EQ(step(Camera).state, State::Done);
    EXPECT_EQ(step(Camera).text.substr(0, 28), "Answered at 08:00: 1280 x 96");
    EXPECT_EQ(s.steps.look().summary, "Ready to record: press Start Recording");
    s.http.answer = [](const std::string&) {
        return FakeHttp::failed("no answer from the camera");
    };
    s.clock.runUntil(at(2006, 11, 15, 8, 5));
    testFetch();
    EXPECT_EQ(step(Camera).state, State::Wrong);
    EXPECT_EQ(step(Camera).text, "Tried at 08:05: no answer");
    EXPECT_EQ(step(Camera).control, "txtIp");
    s.panel.txtPort.text = "8080";
    EXPECT_EQ(step(Camera).state, State::Open) << "that was another camera's answer";
}

TEST_F(FirstStepsTest, TriesTheFolderWithoutMakingOne) {
    s.settings.initOperation(); // the main loop would bring the chosen folder back
    EXPECT_EQ(step(Folder).state, State::Done);
    EXPECT_EQ(step(Folder).text, "Pictures go to " + utf8FromPath(s.dataFolder()));
    EXPECT_EQ(listing(s.dataFolder()), std::vector<std::string>{}) << "the trial is taken away";

    const std::filesystem::path file = s.folder.path() / "file";
    writeFile(file, "no folder");
    s.panel.Dir1[0].path = file / "below";
    const FirstSteps::Step wrong = step(Folder);
    EXPECT_EQ(wrong.state, State::Wrong);
    EXPECT_EQ(wrong.control, "Command3");
    EXPECT_TRUE(wrong.text.starts_with("Cannot be written: ")) << wrong.text;

    // mended: seen within half a minute, not at every look
    std::filesystem::remove(file);
    std::filesystem::create_directories(file / "below");
    EXPECT_EQ(step(Folder).state, State::Wrong);
    for (int second = 0; second < 31; ++second) {
        s.clock.run(1s);
        s.steps.look();
    }
    EXPECT_EQ(step(Folder).state, State::Done);

    // broken again: seen when somebody comes back to look, and at a start
    std::filesystem::remove_all(file);
    EXPECT_EQ(step(Folder).state, State::Done);
    s.clock.run(1min);
    EXPECT_EQ(step(Folder).state, State::Wrong);
    std::filesystem::create_directories(file / "below");
    s.press(&Recording::Command1_Click);
    EXPECT_EQ(step(Folder).state, State::Done);
}

TEST_F(FirstStepsTest, TheDefaultFolderCountsAsTheOneAboveIt) {
    s.store.values.erase("DataPath/PathDataFile");
    start();
    const std::filesystem::path folder = s.folder.path() / "pictures" / "Orvane";
    EXPECT_EQ(step(Folder).state, State::Done);
    EXPECT_EQ(step(Folder).text, "Pictures go to " + utf8FromPath(folder));
    EXPECT_FALSE(std::filesystem::exists(folder.parent_path()));
    s.panel.Dir1[0].path = s.dataFolder();
    s.steps.look();
    writeFile(s.folder.path() / "pictures", "in the way");
    s.panel.Dir1[0].path = folder;
    EXPECT_EQ(step(Folder).state, State::Wrong);
}

TEST_F(FirstStepsTest, SaysWhatAStartWouldSay) {
    start();
    struct Case {
        const char *startHour, *endHour, *intervalMinute, *intervalSecond;
        State state;
        const char *text, *control;
    };
    const Case cases[] = {
        {"9", "17", "30", "0", State::Done, "09:00 to 17:00 every 30 min", "Text1_0"},
        {"9", "", "30", "0", State::Wrong, "Please set up 'hour' of a EndTime correctly.",
         "Text1_2"},
        {"9", "17", "60", "0", State::Wrong,
         "Please set up 'minute' of a Recording Interval correctly.", "Text1_5"},
        {"9", "17", "0", "0", State::Wrong, "'00:00' cannot be set as a Recording Interval.",
         "Text1_5"},
        {"9", "9", "30", "0", State::Wrong,
         "Start Time and End Time cannot be set to the same time.", "Text1_2"},
        {"18", "17", "30", "0", State::Wrong, "You must be Start Time < End Time.", "Text1_2"},
        {"9", "17", "0", "30", State::Wrong, "No minute is ever due: 09:00 to 17:00 every 00 min",
         "Text1_5"}};
    const orvane::Schedule before = s.module.schedule;
    for (const Case& c : cases) {
        s.panel.Text1[0].text = c.startHour;
        s.panel.Text1[2].text = c.endHour;
        s.panel.Text1[5].text = c.intervalMinute;
        s.panel.Text1[6].text = c.intervalSecond;
        const FirstSteps::Step seen = step(Schedule);
        EXPECT_EQ(seen.state, c.state) << c.text;
        EXPECT_EQ(seen.text, c.text);
        EXPECT_EQ(seen.control, c.control) << c.text;
    }
    EXPECT_EQ(s.module.schedule, before) << "looking changes nothing";
    s.panel.chk_auto.ticked = true;
    s.recording.chk_auto_Click();
    EXPECT_EQ(step(Schedule).control, "chk_auto") << "first the lock";
}

/// The typed times only wait meanwhile: neither they nor their fields are spoken of.
TEST_F(FirstStepsTest, SaysTheWindowThatFollowsTheSun) {
    start();
    s.panel.chk_sun.ticked = true;
    s.recording.chk_sun_Click();
    s.clock.run(1s);
    const std::string window = s.panel.lbl_window.caption; // "today 05:21 to 17:35"
    ASSERT_EQ(window.substr(0, 6), "today ");
    EXPECT_EQ(step(Schedule).text, "Follows the sun, " + window + " every 30 min");
    EXPECT_EQ(step(Schedule).control, "chk_sun");
}

TEST_F(FirstStepsTest, TellsWhenTheFirstPictureIsDue) {
    s.station.startTest = &s.startTest;
    s.setSchedule("9", "17", "30");
    s.start(true);
    s.clock.run(1s);
    EXPECT_EQ(s.steps.look().summary, "Recording: the first picture is due at 09:00");
    EXPECT_EQ(step(Folder).control, "") << "locked while recording";
    EXPECT_EQ(step(Schedule).control, "");
    s.http.latency = 5s;
    s.clock.runUntil(at(2006, 11, 15, 9, 0, 3));
    EXPECT_EQ(s.steps.look().summary, "Recording: a picture is being taken");
    s.clock.runUntil(at(2006, 11, 15, 9, 1, 3));
    EXPECT_EQ(s.steps.look().summary, "Recording: the next picture is due at 09:30");
    EXPECT_EQ(step(Camera).text, "Answered at 09:00") << "a capture is an answer, too";
    s.clock.runUntil(at(2006, 11, 15, 20, 0, 3));
    EXPECT_EQ(s.steps.look().summary, "Recording: the next picture is due tomorrow at 09:00");
}

} // namespace
} // namespace orvane::test
