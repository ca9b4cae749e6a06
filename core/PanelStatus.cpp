#include "core/PanelStatus.h"

#include "platform/Conversions.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane {

namespace {

constexpr std::int16_t kSyncTicks = 180; // of ten seconds: half an hour
constexpr std::chrono::minutes kShortestSpan{30};

void countUp(std::int16_t& ticks) {
    if (ticks < std::numeric_limits<std::int16_t>::max()) ++ticks;
}

} // namespace

PanelStatus::PanelStatus(Module1& module, OperationPanel& panel, Clock& clock, Faults& faults)
    : Timer1(
          clock, 1000ms, [this] { Timer1_Timer(); }, faults.reporter("Timer1")),
      Tim_sync(
          clock, 10000ms, [this] { Tim_sync_Timer(); }, faults.reporter("Tim_sync")),
      module_(module), panel_(panel), clock_(clock) {}

void PanelStatus::initStatus() {
    Timer1.enable();
    panel_.Label11.caption = std::string();
    panel_.Label13.caption = std::string();
    panel_.Label7.caption = "Ready";
    panel_.Label12.caption = dateText(clock_.now());
    panel_.lbl_dlcnt.caption = "0";
    panel_.lbl_sync.caption = std::to_string(kShortestSpan.count());
    module_.plannedRecords = 0;
    module_.RecCount = 0;
}

void PanelStatus::Timer1_Timer() {
    countUp(module_.replyTicks); // first: waits end by them, whatever a label does
    countUp(module_.searchTicks);
    const WallTime now = clock_.now();
    const auto day = std::chrono::floor<std::chrono::days>(now);
    if (std::exchange(shownDay_, day) != day) panel_.Label12.caption = dateText(now);
    panel_.Label13.caption = timeText(now);
}

void PanelStatus::Tim_sync_Timer() {
    countUp(module_.syncTicks);
    if (module_.syncTicks >= kSyncTicks) module_.syncElapsed = true;
    if (!module_.lastRunEnd) return;
    using std::chrono::minutes;
    const minutes since = std::chrono::floor<minutes>(clock_.ticks() - *module_.lastRunEnd);
    panel_.lbl_sync.caption = std::to_string(std::max(since, kShortestSpan).count());
}

void PanelStatus::runSync(bool enabled) {
    module_.syncTicks = 0;
    module_.syncElapsed = false;
    if (enabled) {
        Tim_sync.enable();
    } else {
        Tim_sync.disable();
    }
}

void PanelStatus::NumberOfRec() {
    using namespace std::chrono;
    const auto window = floor<minutes>(module_.schedule.EndTime - module_.schedule.StartTime);
    const auto interval = module_.schedule.IntervalTime % 1h;
    if (interval > 0s)
        module_.plannedRecords = static_cast<std::int32_t>(seconds(window) / interval + 1);
    showCount();
}

void PanelStatus::showCount() {
    panel_.Label11.caption = std::to_string(module_.RecCount) + " sheet";
}

} // namespace orvane
