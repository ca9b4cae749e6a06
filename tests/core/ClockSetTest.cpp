#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using Names = std::vector<std::string>;

/// By an operator, and by summer time, which begins where a minute ends.
TEST(ClockSet, AClockPutForwardBringsNoWarning) {
    for (const WallTime moment : {at(2006, 11, 15, 9, 35), at(2006, 11, 15, 10) - 1ms}) {
        TestStation s(at(2006, 11, 15, 8, 55));
        s.setSchedule("9", "17", "10");
        s.start(true);
        s.clock.runUntil(moment);
        s.clock.jumpWall(1h);
        s.clock.runUntil(at(2006, 11, 15, 11, 20, 30));
        EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
        EXPECT_EQ(s.gapBrowser.pages().size(), 0U);
        s.days.refresh();
        EXPECT_EQ(s.days.plan().missed, 0);
    }
}

/// The wall clock is set by the operator and by daylight saving; nothing filed is ever replaced.
TEST(ClockSet, SurvivesAJumpingWallClock) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.setSchedule("9", "17", "10");
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 11, 5));
    EXPECT_EQ(s.imagesOf("20061115").size(), 10U); // 9:30 to 11:00
    s.clock.jumpWall(-1h);
    s.clock.runUntil(at(2006, 11, 15, 11, 5));
    const Names images = s.imagesOf("20061115");
    EXPECT_EQ(images.size(), 16U); // 10:10 to 11:00 once more
    EXPECT_EQ(std::ranges::count(images, "20061115_103000_01.jpg"), 1);
    s.clock.jumpWall(+2h);
    s.clock.runUntil(at(2006, 11, 15, 13, 15));
    EXPECT_EQ(s.imagesOf("20061115").size(), 17U);
    s.clock.jumpWall(24h * 400);
    s.clock.run(24h);
    EXPECT_EQ(s.imagesOf("20071220").size() + s.imagesOf("20071221").size(), 48U);
    EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
}

/// Set back a little, the clock repeats minutes whose pictures are there; only those that have none
/// are due.
TEST(ClockSet, AMinuteThatComesAgainIsNotTakenTwice) {
    for (const auto back : {1min, 4min, 9min}) {
        TestStation s(at(2006, 11, 15, 8, 59));
        s.setSchedule("9", "17", "1");
        const auto picture = s.http.answer;
        s.http.answer = [&](const std::string& url) {
            const bool refused = wholeMinutes(timeOfDay(s.clock.now())) == 9 * 60 + 17;
            return refused ? FakeHttp::failed("refused") : picture(url);
        };
        s.start(true);
        s.clock.runUntil(at(2006, 11, 15, 9, 20, 30));
        EXPECT_EQ(s.imagesOf("20061115").size(), 20U); // without 9:17
        s.http.answer = picture;
        s.clock.jumpWall(-back);
        s.clock.runUntil(at(2006, 11, 15, 9, 20, 50));
        EXPECT_EQ(s.imagesOf("20061115").size(), back == 1min ? 20U : 21U)
            << testing::PrintToString(s.imagesOf("20061115"));
        s.clock.runUntil(at(2006, 11, 15, 10, 0));
        EXPECT_EQ(s.imagesOf("20061115").size(), back == 1min ? 59U : 60U) << back.count();
        EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
    }
}

/// The end of summer time repeats an hour; it is recorded again.
TEST(ClockSet, AnHourThatComesAgainIsRecordedAgain) {
    TestStation s(at(2006, 10, 29, 1, 0));
    s.setSchedule("0", "23", "1", "59");
    s.start(true);
    s.clock.runUntil(at(2006, 10, 29, 3, 0));
    s.clock.jumpWall(-1h);
    s.clock.runUntil(at(2006, 10, 29, 3, 0));
    EXPECT_EQ(s.imagesOf("20061029").size(), 180U);
}

} // namespace
} // namespace orvane::test
