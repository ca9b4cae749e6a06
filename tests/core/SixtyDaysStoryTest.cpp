#include "tests/support/FakeCameraStore.h"
#include "tests/support/SampleArchive.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr std::chrono::local_days kLastDay{std::chrono::days(13467)}; // 2006/11/15

/// The sample archive's story, lived through by a station: what that leaves in its folders is what
/// the sample archive holds.
class SixtyDaysStory : public testing::Test {
  protected:
    WallTime momentOf(const SampleEvent& event) const {
        return WallTime(sample.day(event.day).date) + std::chrono::minutes(event.minute);
    }
    void happen(const SampleEvent& event);
    void start(WallTime time, bool recording);
    void setSchedule(const SampleSchedule& schedule);
    void fill(const SampleDay& day);
    void putClock(WallTime moment, int minutes);
    std::string ledgerOf(const SampleDay& day) const {
        return contentsOf(data / "Ledger" / (day.digits + ".csv"));
    }
    std::set<std::string> filed(const SampleDay& day) const {
        std::set<std::string> names;
        if (!std::filesystem::exists(data / day.digits)) return names;
        for (const auto& entry : std::filesystem::directory_iterator(data / day.digits))
            names.insert(entry.path().filename().string());
        return names;
    }

    TempFolder folder;
    std::filesystem::path data = folder.path() / "data";
    SampleArchive sample{folder.path(), kLastDay, SampleArchive::paintGrey};
    std::unique_ptr<TestStation> s;
    SampleSchedule schedule = kSampleSchedule;
    std::chrono::minutes offset{60};
    std::string fault; ///< of each capture; empty: none
    int pictures = 0;
    FakeCameraStore camera;
};

void SixtyDaysStory::start(WallTime time, bool recording) {
    s = std::make_unique<TestStation>(time);
    s->store.values["DataPath/PathDataFile"] = utf8FromPath(data);
    s->utcOffset = offset;
    setSchedule(schedule);
    s->gapHttp.answer = [this](const std::string& url) { return camera.picture(url); };
    s->http.answer = [this](const std::string&) {
        return fault.empty() ? FakeHttp::picture(std::to_string(++pictures))
                             : FakeHttp::failed(fault);
    };
    s->start(recording);
}

void SixtyDaysStory::setSchedule(const SampleSchedule& wanted) {
    schedule = wanted;
    const int numbers[] = {
        wanted.first / 60, wanted.first % 60, wanted.end / 60, wanted.end % 60, 0, wanted.every};
    const char* keys[] = {"StartHour", "StartMinute",  "EndHour",
                          "EndMinute", "IntervalHour", "IntervalMinute"};
    for (std::size_t i = 0; i < std::size(numbers); ++i) {
        s->store.values["Operation/" + std::string(keys[i])] = std::to_string(numbers[i]);
        s->panel.Text1[i].text = std::to_string(numbers[i]);
    }
}

/// The camera's store has answered nothing so far.
void SixtyDaysStory::fill(const SampleDay& day) {
    for (const std::string& name : day.filed)
        if (name.ends_with("07_00.jpg")) camera.names.insert(name);
    s->gapBrowser.answer = [this](const std::string& url) { return camera.search(url); };
    s->clock.run(3min);
    s->gapBrowser.answer = nullptr;
}

void SixtyDaysStory::putClock(WallTime moment, int minutes) {
    s->clock.runUntil(moment - 1ms);
    s->clock.jumpWall(std::chrono::minutes(minutes));
    s->utcOffset = offset += std::chrono::minutes(minutes);
}

void SixtyDaysStory::happen(const SampleEvent& event) {
    const WallTime moment = momentOf(event) + 30s;
    if (event.what == Happens::Forward) return putClock(momentOf(event), 60);
    if (event.what == Happens::Back) return putClock(momentOf(event), -60);
    if (s) s->clock.runUntil(moment);
    if (event.what == Happens::Start) start(moment, true);
    if (event.what == Happens::StartOff) start(moment, false);
    if (event.what == Happens::End) s->ledger.end();
    if (event.what == Happens::End || event.what == Happens::Kill) s.reset();
    if (event.what == Happens::Off) s->recording.Command2_Click();
    if (event.what == Happens::On) setSchedule(event.schedule);
    if (event.what == Happens::On) s->press(&Recording::Command1_Click);
    if (event.what == Happens::Fails) fault = event.text;
    if (event.what == Happens::Works) fault.clear();
    if (event.what == Happens::Late) s->http.latency = std::chrono::minutes(event.number) + 50ms;
    if (event.what == Happens::Fill) fill(sample.day(event.day));
}

TEST_F(SixtyDaysStory, LeavesTheSampleArchive) {
    std::filesystem::create_directory(data);
    for (const SampleEvent& event : sampleStory())
        if (event.day < ORVANE_STORY_DAYS) happen(event);
    s->clock.runUntil(WallTime(sample.day(ORVANE_STORY_DAYS - 1).date) + 24h);
    s.reset();
    for (int number = 0; number < ORVANE_STORY_DAYS; ++number) {
        const SampleDay& day = sample.day(number);
        EXPECT_EQ(filed(day), day.filed) << day.digits;
        EXPECT_EQ(ledgerOf(day), day.ledger) << day.digits;
    }
}

} // namespace
} // namespace orvane::test
