#include "station/SunWindow.h"

#include "archive/DayPlan.h"

#include <cmath>

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using std::chrono::local_days;
using std::chrono::minutes;
using std::chrono::sys_seconds;

local_days dayOf2025(int number) {
    return local_days(std::chrono::year(2025) / 1 / 1) + std::chrono::days(number);
}

OffsetAt always(minutes offset) {
    return [offset](sys_seconds) { return offset; };
}

/// "05:19-17:33"; empty: no window.
std::string textOf(const std::optional<SunWindow>& window) {
    return window ? minuteText(window->begin) + "-" + minuteText(window->end) : "";
}

/// By Spencer's series for the equation of time and the declination, for a sun at -0.5 degrees.
TEST(SunWindow, AgreesWithAnIndependentSun) {
    const struct {
        const char* place;
        double latitude, longitude;
        int offset; ///< of the PC, minutes
        int day;    ///< of 2025
        const char* window;
    } cases[] = {
        {"Japan", 35.7, 139.3, 540, 14, "05:54-17:50"},
        {"Japan", 35.7, 139.3, 540, 195, "03:40-19:57"},
        {"Japan", 35.7, 139.3, 540, 287, "04:50-18:06"},
        {"half-hour zone", 19.1, 72.9, 330, 14, "06:16-19:19"},
        {"half-hour zone", 19.1, 72.9, 330, 171, "05:03-20:17"},
        {"far east", -18.1, 178.4, 720, 14, "04:44-19:47"},
        {"far east", -18.1, 178.4, 720, 171, "05:38-18:38"},
        {"far west", -13.8, -171.8, -660, 14, "05:12-20:00"},
        {"far west", -13.8, -171.8, -660, 287, "05:02-19:23"},
        {"beyond the date line", -13.8, -171.8, 780, 14, "05:12-20:00"},
        {"beyond the date line", -13.8, -171.8, 780, 171, "05:51-19:06"},
        {"far north", 69.6, 19, 60, 250, "03:32-19:51"},
        {"far north", 69.6, 19, 60, 171, ""},
        {"far north", 69.6, 19, 60, 350, ""},
        {"the pole", 90, 0, 0, 100, ""},
        {"the other pole", -90, 0, 0, 100, ""},
        {"nowhere", std::nan(""), 0, 0, 100, ""},
    };
    const auto minuteOf = [](const char* text) {
        return std::atoi(text) * 60 + std::atoi(text + 3);
    };
    for (const auto& c : cases) {
        // the zone is none that the place would have: it plays no part
        const auto window =
            sunWindow({c.latitude, c.longitude, -600}, dayOf2025(c.day), always(minutes(c.offset)));
        SCOPED_TRACE(std::string(c.place) + ", " + c.window + ": " + textOf(window));
        ASSERT_EQ(window.has_value(), *c.window != 0);
        if (!window) continue;
        EXPECT_NEAR(window->begin, minuteOf(c.window), 4);
        EXPECT_NEAR(window->end, minuteOf(c.window + 6), 4);
    }
}

/// Published for Tokyo on 21 June 2025: 4:25 and 19:00, of the sun's upper edge behind the air,
/// which is two minutes beside ours.
TEST(SunWindow, IsThatOfThePcsClockAndIsCutToTheDay) {
    const auto at = [](minutes offset) {
        return sunWindow({35.68, 139.77, 540}, dayOf2025(171), always(offset));
    };
    const auto here = at(9h);
    ASSERT_TRUE(here);
    EXPECT_NEAR(here->begin, 3 * 60 + 25, 4) << textOf(here);
    EXPECT_NEAR(here->end, 20 * 60, 4) << textOf(here);
    const auto begin = [&](int later) { return minuteText(here->begin + later); };
    const auto end = [&](int later) { return minuteText(here->end + later); };
    // the PC's clock runs three hours ahead of the site's, four behind it, on universal time
    EXPECT_EQ(textOf(at(12h)), begin(180) + "-" + end(180));
    EXPECT_EQ(textOf(at(8h)), begin(-60) + "-" + end(-60));
    EXPECT_EQ(textOf(at(5h)), "00:00-" + end(-240));
    EXPECT_EQ(textOf(at(0h)), "00:00-" + end(-540));
    // of the day whose noon it is: at 18 o'clock there
    EXPECT_EQ(textOf(at(-8h)), begin(-17 * 60 + 1440) + "-23:59");
}

/// Berlin's summer time begins on 30 March 2025 at 1:00 universal time: each end of a window has
/// the offset of its own moment.
TEST(SunWindow, EachEndHasTheOffsetOfItsMoment) {
    const local_days march = local_days(std::chrono::year(2025) / 3 / 30);
    const SiteValues berlin{52.5, 13.4, 60};
    const auto winter = sunWindow(berlin, march, always(1h));
    ASSERT_TRUE(winter);
    const auto changingAt = [&](minutes moment) {
        const sys_seconds change = std::chrono::sys_days(march.time_since_epoch()) + moment;
        return textOf(sunWindow(berlin, march,
                                [change](sys_seconds time) { return time < change ? 1h : 2h; }));
    };
    const std::string summersEnd = "-" + minuteText(winter->end + 60);
    EXPECT_EQ(changingAt(60min), minuteText(winter->begin + 60) + summersEnd);
    // half an hour before the sunrise: the window has begun by the old time
    EXPECT_EQ(changingAt(minutes(winter->begin - 60 + 30)), minuteText(winter->begin) + summersEnd);
}

} // namespace
} // namespace orvane::test
