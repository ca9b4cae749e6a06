#include "simulators/sample-archive/SampleArchive.h"
#include "tests/support/FakeCameraStore.h"
#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using namespace samplearchive;

constexpr std::chrono::local_days kLastDay{std::chrono::days(13467)}; // 2006/11/15

/// The sample archive's story, lived through by a station: what that leaves in its folders is what
/// the sample archive holds.
struct SixtyDaysStory : testing::Test {
    void begin(WallTime time, bool recording) {
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
    void setSchedule(const SampleSchedule& wanted) {
        schedule = wanted;
        const std::pair<const char*, int> fields[] = {{"StartHour", wanted.first / 60},
                                                      {"StartMinute", wanted.first % 60},
                                                      {"EndHour", wanted.end / 60},
                                                      {"EndMinute", wanted.end % 60},
                                                      {"IntervalHour", 0},
                                                      {"IntervalMinute", wanted.every}};
        for (std::size_t index = 0; const auto& [key, number] : fields) {
            s->store.values[std::string("Operation/") + key] = std::to_string(number);
            s->panel.Text1[index++].text = std::to_string(number);
        }
    }
    /// The camera's store has answered nothing so far.
    void fill(const SampleDay& day) {
        for (const std::string& name : day.filed)
            if (name.ends_with("07_00.jpg")) camera.names.insert(name);
        s->gapBrowser.answer = [this](const std::string& url) { return camera.search(url); };
        s->clock.run(3min);
        s->gapBrowser.answer = nullptr;
    }
    void putClock(WallTime moment, std::chrono::minutes by) {
        s->clock.runUntil(moment - 1ms);
        s->clock.jumpWall(by);
        s->utcOffset = offset += by;
    }
    void happen(const SampleEvent& event) {
        const SampleDay& day = sample.day(event.day);
        const WallTime minute = WallTime(day.date) + std::chrono::minutes(event.minute);
        if (event.what == Happens::Forward) return putClock(minute, 60min);
        if (event.what == Happens::Back) return putClock(minute, -60min);
        if (s) s->clock.runUntil(minute + 30s);
        switch (event.what) {
        case Happens::Start:
            return begin(minute + 30s, true);
        case Happens::StartOff:
            return begin(minute + 30s, false);
        case Happens::End:
            s->ledger.end();
            [[fallthrough]];
        case Happens::Kill:
            return s.reset();
        case Happens::Off:
            return s->recording.Command2_Click();
        case Happens::On:
            setSchedule(event.schedule);
            return s->press(&Recording::Command1_Click);
        case Happens::Late:
            s->http.latency = std::chrono::minutes(event.number) + 50ms;
            return;
        case Happens::Fill:
            return fill(day);
        default: // Fails with a text, Works without
            fault = event.text;
        }
    }
    std::set<std::string> filed(const SampleDay& day) const {
        if (!std::filesystem::exists(data / day.digits)) return {};
        const auto names = listing(data / day.digits);
        return {names.begin(), names.end()};
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

TEST_F(SixtyDaysStory, LeavesTheSampleArchive) {
    std::filesystem::create_directory(data);
    for (const SampleEvent& event : sampleStory())
        if (event.day < ORVANE_STORY_DAYS) happen(event);
    s->clock.runUntil(WallTime(sample.day(ORVANE_STORY_DAYS - 1).date) + 24h);
    s.reset();
    for (int number = 0; number < ORVANE_STORY_DAYS; ++number) {
        const SampleDay& day = sample.day(number);
        EXPECT_EQ(filed(day), day.filed) << day.digits;
        EXPECT_EQ(contentsOf(data / "Ledger" / (day.digits + ".csv")), day.ledger) << day.digits;
    }
}

} // namespace
} // namespace orvane::test
