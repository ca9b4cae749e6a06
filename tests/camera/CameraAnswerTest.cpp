#include "camera/CameraAnswer.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(CameraAnswer, SaysWhatCameOrWhyNot) {
    JumpingClock clock{at(2006, 11, 15)};
    LibjpegImageControl control(clock);
    const std::string picture = encoded(gradient(640, 48));
    const std::string large = picture + std::string((std::size_t{5} << 20) - picture.size(), 'x');
    const std::string kilos = std::to_string((picture.size() + 512) / 1024) + " kB";
    const std::string noPicture = "not a picture: the answer is not a whole JPEG picture";
    struct Case {
        HttpReply reply;
        Ticks took;
        std::string text;
        bool answered;
    };
    const Case cases[] = {
        {{true, 200, picture, ""}, 249ms, "640 x 48, " + kilos + ", 0.2 s", true},
        {{true, 200, large, ""}, 12950ms, "640 x 48, 5.0 MB, 13.0 s", true},
        {{false, 0, "", "no answer from the camera"}, 10s, "no answer", false},
        {{false, 0, "", "no connection to the camera"}, 1ms, "no connection", false},
        {{false, 404, "", "HTTP status 404"}, 1ms, "HTTP status 404", true},
        {{false, 200, "", "the answer is empty"}, 1ms, "the answer is empty", true},
        {{true, 200, "<html>Please wait</html>", ""}, 1ms, noPicture, true},
        {{true, 200, picture.substr(0, 500), ""}, 1ms, noPicture, true},
    };
    for (const auto& [reply, took, text, answered] : cases) {
        const CameraAnswer answer = finish(clock, judgeAnswer(control, reply, took));
        EXPECT_EQ(answer.text(), text);
        EXPECT_EQ(answer.answered, answered) << text;
        EXPECT_EQ(answer.isPicture(), answer.bytes > 0) << text;
    }
    HttpReply damaged{true, 200, picture, ""};
    damaged.body.replace(picture.size() / 2, 40, std::string(40, '\0'));
    const CameraAnswer answer = finish(clock, judgeAnswer(control, damaged, 1ms));
    EXPECT_TRUE(answer.text().starts_with("the picture is damaged: ")) << answer.text();
}

/// The line below the camera's buttons.
struct CameraLine : testing::Test {
    TestStation s{at(2006, 11, 15, 8, 0)};

    void SetUp() override {
        s.start(false);
        s.clock.run(1s);
    }
    std::string line() const { return s.panel.lbl_camera.caption; }
    void testFetch() { s.tasks.spawn(s.camera.Command8_Click()); }
    void answerWith(const HttpReply& reply) {
        s.http.answer = [reply](const std::string&) { return reply; };
    }
};

TEST_F(CameraLine, TellsWhatATestFetchBrought) {
    answerWith({true, 200, encoded(gradient(1280, 960)), ""});
    testFetch();
    EXPECT_EQ(line(), "testing...");
    s.clock.run(1s);
    EXPECT_TRUE(line().starts_with("1280 x 960, ")) << line();
    EXPECT_TRUE(line().ends_with(" kB, 0.1 s")) << line(); // 50 ms
    EXPECT_EQ(s.views.latest.filename(), "full.jpg");
    answerWith({false, 503, "", "HTTP status 503"});
    testFetch();
    s.clock.run(1s);
    EXPECT_EQ(line(), "HTTP status 503");
    ASSERT_EQ(s.op.told.size(), 1U);
    EXPECT_TRUE(s.op.told[0].starts_with("The camera sent no picture: HTTP status 503.\n"));
    s.panel.txtIp.text = "10.0.0.7";
    s.camera.txtIp_Change();
    EXPECT_EQ(line(), "") << "that was another camera's";
}

TEST_F(CameraLine, ATestFetchThatGivesWaySaysSo) {
    s.http.latency = 20s;
    testFetch();
    s.clock.run(5s);
    {
        const Busy::Hold run(s.busy);
        EXPECT_FALSE(s.panel.Command8.enabled) << "it would do nothing";
        testFetch();
        EXPECT_EQ(line(), "testing...");
        s.clock.run(20s);
        EXPECT_EQ(line(), "not tested: the station is busy");
    }
    EXPECT_TRUE(s.panel.Command8.enabled);
    EXPECT_TRUE(s.op.told.empty());
    EXPECT_TRUE(s.views.latest.empty());
}

TEST_F(CameraLine, TellsWhatBecameOfTheRecordingSwitch) {
    s.switches.latency = 1s;
    s.camera.Command5_Click();
    s.camera.Command7_Click();
    EXPECT_EQ(line(), "switching...");
    s.clock.run(1500ms);
    EXPECT_EQ(line(), "recording switched on");
    s.switches.answer = [](const std::string&) {
        return FakeHttp::failed("no answer from the camera");
    };
    s.clock.run(1s);
    EXPECT_EQ(line(), "no answer");
    EXPECT_EQ(s.switches.urls,
              (std::vector<std::string>{"http://192.168.0.10:80/cgi/live_s_hide2.cgi?rec=1",
                                        "http://192.168.0.10:80/cgi/live_s_hide2.cgi?rec=0"}));
}

TEST_F(CameraLine, ALiveViewWithoutACameraSaysSoOnce) {
    const std::vector<std::string> logged = s.logged();
    const auto answerFor = [&](std::chrono::seconds span, const HttpReply& reply) {
        answerWith(reply);
        s.clock.run(span);
        return line();
    };
    s.clock.runUntil(at(2006, 11, 15, 8, 1, 0));
    s.panel.chkLive.ticked = true;
    EXPECT_EQ(answerFor(2s, FakeHttp::failed("no connection to the camera")),
              "live view: no connection since 08:01:00");
    EXPECT_EQ(s.views.liveText, line());
    s.camera.Command5_Click();
    s.clock.run(30s);
    EXPECT_EQ(line(), "recording switched on") << "told once";
    const HttpReply silence = FakeHttp::failed("no answer from the camera");
    EXPECT_EQ(answerFor(6s, silence), "live view: no answer since 08:01:00");
    EXPECT_EQ(answerFor(6s, FakeHttp::picture("1")), "");
    EXPECT_EQ(s.views.liveText, "");
    EXPECT_EQ(answerFor(6s, silence).substr(0, 27), "live view: no answer since ");
    s.panel.chkLive.ticked = false;
    s.clock.run(1s);
    EXPECT_EQ(line(), "");
    EXPECT_TRUE(s.op.told.empty());
    EXPECT_EQ(s.logged(), logged);
}

TEST_F(CameraLine, APastedAddressGoesIntoBothFields) {
    const auto edit = [&](const char* text) {
        s.panel.txtIp.text = text;
        s.camera.txtIp_Change();
        return s.panel.txtIp.text.get() + " " + s.panel.txtPort.text.get();
    };
    EXPECT_EQ(edit(""), " 80");
    EXPECT_EQ(edit("http://10.0.0.7:8080/Images/full.jpg"), "10.0.0.7 8080");
    EXPECT_EQ(line(), "");
    EXPECT_EQ(edit("https://camera"), "camera 80");
    EXPECT_EQ(line(), "not https: the camera is asked over plain HTTP");
    EXPECT_EQ(edit("camera "), "camera  80") << "typing is left alone";
    testFetch();
    EXPECT_EQ(s.http.urls.back(), "http://camera :80/Images/full.jpg") << "as the fields stand";
    s.camera.address_LostFocus();
    EXPECT_EQ(s.panel.txtIp.text.get(), "camera");
}

} // namespace
} // namespace orvane::test
