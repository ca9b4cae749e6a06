#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// Who shares the one transfer of pictures: captures, the test fetch, the live view and runs. Every
/// answer takes twenty seconds.
struct Turns : testing::Test {
    TestStation s{at(2006, 11, 15, 9, 29)};

    void SetUp() override {
        s.setSchedule("9", "17", "30");
        s.store.values["Settings/FillGaps"] = "0";
        s.http.latency = 20s;
        s.start(true);
        s.clock.run(1s);
    }
    void runUntil(int hour, int minute, int second) {
        s.clock.runUntil(at(2006, 11, 15, hour, minute, second));
    }
    void testFetch() { s.tasks.spawn(s.camera.Command8_Click()); }
};

TEST_F(Turns, AllButCapturesWaitForEachOther) {
    testFetch();
    testFetch();
    s.clock.run(30s);
    EXPECT_EQ(s.http.requests, 2);
    s.clock.run(15s);
    EXPECT_FALSE(s.views.latest.empty());
    runUntil(9, 32, 0);
    const auto before = s.http.requests;
    s.browser1.answer = [](const std::string&) { return "1,2,r/20061115_092007_00.jpg,"; };
    testFetch();
    s.panel.chkLive.ticked = true;
    s.tasks.spawn(s.imageStore.Test_DL());
    s.clock.run(19s);
    EXPECT_EQ(s.http.requests, before + 1);
    s.clock.run(2min);
    EXPECT_EQ(s.imagesOf("20061115").front(), "20061115_092007_00.jpg");
    EXPECT_GT(s.views.live, 1);
    EXPECT_EQ(s.http.cancelled, 0);
    EXPECT_TRUE(s.op.told.empty());
}

TEST_F(Turns, ACaptureEndsATestFetchAndTheLiveView) {
    runUntil(9, 29, 58);
    testFetch();
    runUntil(9, 30, 40);
    EXPECT_EQ(s.http.cancelled, 1);
    EXPECT_TRUE(s.op.told.empty()) << "taken over, not refused";
    s.panel.chkLive.ticked = true;
    runUntil(10, 0, 40);
    EXPECT_EQ(s.imagesOf("20061115"),
              (std::vector<std::string>{"20061115_093000_00.jpg", "20061115_100000_00.jpg"}));
    EXPECT_EQ(s.countLogged("DownLoad Error"), 0);
}

TEST_F(Turns, ACaptureWaitsForARunsPictureInTransfer) {
    FakeCameraStore camera;
    camera.record("20061115", 9, 10);
    s.browser1.answer = [&](const std::string& url) { return camera.search(url); };
    s.panel.Text1[5].text = "15";
    runUntil(9, 29, 55);
    s.tasks.spawn(s.imageStore.Test_DL());
    runUntil(9, 30, 10);
    EXPECT_TRUE(s.imageStore.transferring());
    EXPECT_EQ(s.http.requests, 1);
    runUntil(9, 30, 30);
    EXPECT_EQ(s.http.requests, 2);
    EXPECT_TRUE(s.http.urls.back().ends_with("full.jpg")) << "it goes before the run's next one";
    s.clock.run(1min);
    EXPECT_EQ(s.http.cancelled, 0);
    EXPECT_EQ(s.http.requests, 3);
    EXPECT_EQ(s.imagesOf("20061115"),
              (std::vector<std::string>{"20061115_091507_00.jpg", "20061115_091607_00.jpg",
                                        "20061115_093000_00.jpg"}));
}

} // namespace
} // namespace orvane::test
