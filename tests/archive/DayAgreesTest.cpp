#include "archive/DayPlan.h"
#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A day with an outage that the camera's store covers in part, a restart, a changed schedule and a
/// synchronisation: what the drawing says of it is what lies in the folder, and who recorded.
class EventfulDay : public testing::Test {
  protected:
    EventfulDay() {
        camera.record("20061115", 0, 24);
        for (auto name = camera.names.lower_bound("20061115_1030"); // ten minutes are lost
             name != camera.names.lower_bound("20061115_1040");)
            name = camera.names.erase(name);
    }
    std::unique_ptr<TestStation> station(WallTime start) {
        auto s = std::make_unique<TestStation>(start);
        s->store.values["DataPath/PathDataFile"] = data.string();
        s->store.values["Settings/Delay"] = "15";
        const auto search = [this](const std::string& url) { return camera.search(url); };
        s->gapBrowser.answer = s->browser1.answer = search;
        s->gapHttp.answer = [this](const std::string& url) { return camera.picture(url); };
        s->http.answer = [this, clock = &s->clock](const std::string& url) {
            if (!url.ends_with("full.jpg")) return camera.picture(url);
            const auto now = timeOfDay(clock->now());
            return now > 10h && now < 11h ? FakeHttp::failed("refused")
                                          : FakeHttp::picture(std::to_string(++live));
        };
        return s;
    }
    /// Whether the folder has a file of that minute; `seconds` is "00" for captures.
    bool has(int minute, const std::string& seconds) const {
        char name[64];
        std::snprintf(name, sizeof name, "20061115_%02d%02d%s_00.jpg", minute / 60, minute % 60,
                      seconds.c_str());
        return std::filesystem::exists(data / "20061115" / name);
    }

    TempFolder folder;
    std::filesystem::path data = folder.path() / "pictures";
    FakeCameraStore camera;
    int live = 0;
};

TEST_F(EventfulDay, IsShownAsItIsInTheFolder) {
    std::filesystem::create_directory(data);
    auto s = station(at(2006, 11, 15, 8, 55));
    s->setSchedule("9", "17", "10");
    s->start(true);
    s->clock.runUntil(at(2006, 11, 15, 11, 45));
    s.reset(); // the PC restarts; 11:50 and 12:00 go by
    s = station(at(2006, 11, 15, 12, 5));
    s->setSchedule("9", "17", "10");
    s->store.values["Settings/FillGaps"] = "0";
    s->start(true);
    s->clock.runUntil(at(2006, 11, 15, 14, 2));
    s->recording.Command2_Click();
    s->panel.Text1[5].text = "15";
    s->press(&Recording::Command1_Click);
    s->clock.runUntil(at(2006, 11, 15, 16, 20));

    s->days.refresh();
    const DayPlan plan = s->days.plan();
    int taken = 0, fetched = 0, missed = 0, notRunning = 0;
    for (int minute = 9 * 60; minute < 16 * 60 + 20; ++minute) {
        const DayState state = plan.states[static_cast<std::size_t>(minute)];
        const bool captured = has(minute, "00");
        const bool stored = !captured && has(minute, "07");
        const bool due = minute % (minute < 14 * 60 + 2 ? 10 : 15) == 0;
        const bool ran = minute < 11 * 60 + 45 || minute >= 12 * 60 + 5;
        const DayState expected = captured ? DayState::Taken
                                  : stored ? DayState::Fetched
                                  : !due   ? DayState::NotDue
                                  : ran    ? DayState::Missed
                                           : DayState::NotRunning;
        EXPECT_EQ(state, expected) << minuteText(minute);
        taken += due && captured;
        fetched += due && stored;
        missed += state == DayState::Missed;
        notRunning += state == DayState::NotRunning;
    }
    EXPECT_EQ(plan.taken, taken);
    EXPECT_EQ(plan.fetched, fetched);
    EXPECT_EQ(plan.missed, missed);
    EXPECT_EQ(plan.notRecorded, notRunning);
    // by hand: of the outage 10:00 was fetched and 10:30 is lost; 11:50 and 12:00 passed during the
    // restart; the minutes of the new interval were not due in the morning
    EXPECT_EQ(plan.states[10 * 60], DayState::Fetched);
    EXPECT_EQ(plan.states[10 * 60 + 30], DayState::Missed);
    EXPECT_EQ(plan.states[11 * 60 + 50], DayState::NotRunning);
    EXPECT_EQ(plan.states[12 * 60], DayState::NotRunning);
    EXPECT_EQ(plan.states[12 * 60 + 15], DayState::NotDue);
    EXPECT_EQ(plan.states[14 * 60 + 15], DayState::Taken);
    EXPECT_TRUE(plan.text.starts_with("taken ")) << plan.text;
    EXPECT_NE(plan.text.find("next at 16:30"), std::string::npos) << plan.text;
}

} // namespace
} // namespace orvane::test
