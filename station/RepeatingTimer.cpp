#include "station/RepeatingTimer.h"

#include <algorithm>

namespace orvane {

void RepeatingTimer::enable() {
    if (enabled_) return;
    enabled_ = true;
    task_ = run(); // drops what an earlier disable() left waiting
    task_.start();
}

Task<> RepeatingTimer::run() {
    const Ticks now = clock_.ticks();
    const bool wholeSeconds = interval_ % 1s == Ticks(0);
    Ticks due = interval_ + (wholeSeconds ? std::chrono::floor<std::chrono::seconds>(now) : now);
    while (true) {
        co_await clock_.sleepUntil(due);
        if (!enabled_) co_return;
        try {
            tick_();
        } catch (...) {
            onFault_(std::current_exception());
        }
        if (!enabled_) co_return;
        // after a suspended PC one tick is enough
        due = std::max(due + interval_, clock_.ticks());
    }
}

} // namespace orvane
