#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A camera that does not answer, and every minute due.
struct DeadCamera : testing::Test {
    TestStation s{at(2006, 11, 15, 9, 29, 59)};
    int ended = 0;
    Shutdown shutdown{{s.settings, s.store, s.busy, s.wishes, s.op, s.log, [this] { ++ended; }}};

    void SetUp() override {
        s.setSchedule("9", "17", "1");
        s.store.values["Settings/Delay"] = "15";
        s.http.latency = 60s;
        s.http.answer = [](const std::string&) {
            return FakeHttp::failed("no answer from the camera");
        };
        s.start(true);
    }
    void stop() { s.tasks.spawn(s.recording.mnuRecordingStop_Click()); }
    static Task<> close(Shutdown& shutdown, bool& mayClose) {
        Task<bool> query = shutdown.MDIForm_QueryUnload(UnloadMode::User);
        mayClose = co_await query;
    }
};

/// In the first second, in the delay, in the fetch: whatever the capture waits for.
TEST_F(DeadCamera, AStopWishCutsTheCaptureShort) {
    for (const Ticks moment : {Ticks(500ms), Ticks(9s), Ticks(40s)}) {
        s.clock.runUntil(at(2006, 11, 15, 9, 30) + moment);
        ASSERT_EQ(s.panel.Label7.caption.get(), "Recording Now...");
        ASSERT_FALSE(s.panel.Command2.enabled);
        ASSERT_TRUE(s.recording.mnuRecordingStop);
        stop();
        stop(); // an impatient one
        EXPECT_EQ(s.wishes.text.get(), "Recording stops after this picture.");
        EXPECT_FALSE(s.panel.Command2.enabled);
        s.clock.run(2s);
        EXPECT_EQ(s.wishes.text.get(), "");
        EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
        EXPECT_FALSE(s.recording.mnuRecordingStop);
        EXPECT_FALSE(s.busy.active());
        EXPECT_FALSE(s.module.RecDoneFlg) << "as if it had not been tried";
        EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
        EXPECT_EQ(s.logged().back(), "Stop Recording");
        EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
        s.press(&Recording::Command1_Click);
    }
    EXPECT_EQ(s.countLogged("Stop Recording"), 3);
}

TEST_F(DeadCamera, ACloseWishIsAskedAndACancelledQuestionGoesOn) {
    s.op.answer = false;
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 30));
    bool mayClose = true;
    s.tasks.spawn(close(shutdown, mayClose));
    EXPECT_EQ(s.wishes.text.get(), "Orvane closes after this picture.");
    EXPECT_TRUE(s.op.asked.empty());
    s.clock.run(1s);
    EXPECT_EQ(s.op.asked, std::vector<std::string>{"Program End ? "});
    s.clock.run(2s);
    EXPECT_FALSE(mayClose);
    EXPECT_TRUE(s.module.RecordFlg);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Recording Now...") << "the minute is not over";
    EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
    s.http.latency = 50ms;
    s.http.answer = [](const std::string&) { return FakeHttp::picture("new"); };
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_EQ(s.imagesOf("20061115").size(), 1U);
}

TEST_F(DeadCamera, AWishThatIsDroppedStopsNothing) {
    s.http.latency = 20s;
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 5));
    stop();
    s.wishes.drop();
    EXPECT_EQ(s.wishes.text.get(), "");
    s.clock.runUntil(at(2006, 11, 15, 9, 30, 50));
    EXPECT_TRUE(s.module.RecordFlg);
    EXPECT_EQ(s.countLogged("DownLoad Error"), 1) << "its own failure, after the fetch";
}

TEST(Wishes, APictureThatHasArrivedIsFiled) {
    TestStation s(at(2006, 11, 15, 9, 29, 59));
    s.start(true);
    ASSERT_TRUE(s.clock.runUntil([&] { return s.module.lastImage != ""; }, 10s));
    EXPECT_TRUE(s.module.capturing);
    s.tasks.spawn(s.recording.mnuRecordingStop_Click());
    s.clock.run(2s);
    EXPECT_FALSE(s.module.RecordFlg);
    EXPECT_EQ(s.imagesOf("20061115", "Edit").size(), 1U);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
}

/// As "Stop Download" would end it.
TEST(Wishes, ACloseWishEndsARun) {
    TestStation s(at(2006, 11, 15, 9, 10));
    s.start(false);
    s.browser1.answer = [](const std::string&) { return "1,2,record/20061115_090007_00.jpg,"; };
    s.http.latency = 60s;
    s.tasks.spawn(s.imageStore.Test_DL());
    s.clock.run(1s);
    ASSERT_TRUE(s.imageStore.running());
    Task<bool> waiting = s.wishes.toClose();
    waiting.start();
    s.clock.run(2s);
    ASSERT_TRUE(waiting.done());
    EXPECT_TRUE(waiting.result());
    EXPECT_FALSE(s.busy.active());
}

} // namespace
} // namespace orvane::test
