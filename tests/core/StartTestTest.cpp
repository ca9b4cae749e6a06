#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// The camera asked once as recording is switched on, by the operator or by itself.
struct StartTests : testing::Test {
    TestStation s{at(2006, 11, 15, 9, 10)};

    void SetUp() override {
        s.station.startTest = &s.startTest;
        s.setSchedule("9", "17", "30");
        s.store.values["Settings/FillGaps"] = "0";
        answerWith({true, 200, encoded(gradient(1280, 960)), ""});
    }
    void answerWith(const HttpReply& reply) {
        s.http.answer = [reply](const std::string&) { return reply; };
    }
    std::string line() const { return s.panel.lbl_start.caption; }
};

TEST_F(StartTests, TellsWhatTheCameraAnswers) {
    const std::pair<HttpReply, const char*> cases[] = {
        {{false, 0, "", "no answer from the camera"},
         "The camera does not answer: no answer. Recording goes on trying."},
        {{false, 401, "", "HTTP status 401"},
         "The camera sends no picture: HTTP status 401. Recording goes on trying."},
        {{true, 200, "<html>", ""},
         "The camera sends no picture: not a picture: the answer is not a whole JPEG picture. "
         "Recording goes on trying."}};
    s.start(false);
    s.clock.run(1s);
    EXPECT_EQ(s.http.requests, 0);
    s.press(&Recording::Command1_Click);
    s.clock.run(1s);
    EXPECT_EQ(line().substr(0, 32), "The camera answers: 1280 x 960, ");
    EXPECT_EQ(line().substr(line().size() - 3), " kB");
    EXPECT_EQ(s.http.requests, 1);
    for (const auto& [reply, text] : cases) {
        s.recording.Command2_Click();
        EXPECT_EQ(line(), "");
        answerWith(reply);
        s.press(&Recording::Command1_Click);
        s.clock.run(1s);
        EXPECT_EQ(line(), text);
        EXPECT_EQ(s.panel.Label7.caption.get(), "Recording Standby");
    }
    EXPECT_EQ(s.http.requests, 4) << "once each time, however quickly";
    EXPECT_FALSE(std::filesystem::exists(s.module.programFolder / "full.jpg"));
    EXPECT_TRUE(s.imagesOf("20061115").empty());
    EXPECT_TRUE(s.views.latest.empty());
    EXPECT_EQ(s.views.live, 0);
    EXPECT_TRUE(s.op.told.empty());
    EXPECT_FALSE(s.module.lastAttempt);
}

TEST_F(StartTests, TheFirstCaptureTellsMore) {
    s.start(true);
    s.clock.run(1s);
    EXPECT_EQ(line().substr(0, 19), "The camera answers:");
    answerWith({false, 0, "", "no answer from the camera"});
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 20));
    EXPECT_EQ(line(), "No picture at 09:30: no answer. Recording goes on trying.");
    s.http.answer = [](const std::string&) { return FakeHttp::picture("1"); };
    s.clock.run(20s);
    EXPECT_EQ(line(), "First picture taken at 09:30");
    s.http.answer = [](const std::string&) { return FakeHttp::picture("2"); };
    s.clock.runUntil(at(2006, 11, 15, 10, 0, 30));
    EXPECT_EQ(line(), "") << "the station shows by itself that it works";
}

TEST_F(StartTests, NothingIsAskedWhenTheMinuteIsDue) {
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 5));
    s.start(true);
    s.clock.run(5s);
    EXPECT_EQ(s.http.requests, 1);
    EXPECT_EQ(s.imagesOf("20061115"), std::vector<std::string>{"20061115_093000_00.jpg"});
    EXPECT_EQ(line(), "First picture taken at 09:30");
}

TEST_F(StartTests, ACaptureTakesOver) {
    s.http.latency = 9s;
    s.clock.runUntil(at(2006, 11, 15, 9, 29, 56));
    s.start(true);
    s.clock.run(2s);
    EXPECT_EQ(line(), "Asking the camera...");
    EXPECT_FALSE(s.busy.active());
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 2));
    EXPECT_EQ(line(), "");
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 12));
    EXPECT_EQ(s.http.requests, 2);
    EXPECT_EQ(s.imagesOf("20061115"), std::vector<std::string>{"20061115_093000_00.jpg"});
}

TEST_F(StartTests, ARunAndAStopEndIt) {
    s.http.latency = 9s;
    s.browser1.answer = [](const std::string&) { return "1,2,r/20061115_090007_00.jpg,"; };
    s.start(true);
    s.clock.run(1s);
    s.tasks.spawn(s.imageStore.Test_DL());
    s.clock.run(1s);
    EXPECT_EQ(line(), "");
    EXPECT_TRUE(s.imageStore.transferring());
    s.clock.run(10s);
    EXPECT_EQ(s.imagesOf("20061115"), std::vector<std::string>{"20061115_090007_00.jpg"});

    s.recording.Command2_Click();
    s.press(&Recording::Command1_Click);
    s.clock.run(1s);
    EXPECT_EQ(line(), "Asking the camera...");
    s.recording.Command2_Click();
    EXPECT_EQ(line(), "");
    s.clock.run(1s);
    EXPECT_FALSE(s.http.running());
    s.clock.run(20s);
    EXPECT_EQ(line(), "");
}

TEST_F(StartTests, ATestFetchAndTheStartWaitForEachOther) {
    s.http.latency = 5s;
    s.start(false);
    s.tasks.spawn(s.camera.Command8_Click());
    s.press(&Recording::Command1_Click);
    s.clock.run(4s);
    EXPECT_EQ(s.http.requests, 1);
    s.clock.run(4s);
    EXPECT_EQ(s.http.requests, 2);
    s.tasks.spawn(s.camera.Command8_Click());
    s.clock.run(8s);
    EXPECT_EQ(s.http.cancelled, 0);
    EXPECT_EQ(line().substr(0, 19), "The camera answers:");
}

TEST_F(StartTests, AStartThatIsRefusedAsksNothing) {
    s.setSchedule("18", "17", "30");
    s.start(true);
    s.clock.run(10s);
    EXPECT_EQ(s.http.requests, 0);
    EXPECT_EQ(s.op.told.size(), 1U);
}

} // namespace
} // namespace orvane::test
