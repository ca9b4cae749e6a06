#include "station/RepeatingTimer.h"

#include <algorithm>

namespace orvane {

void RepeatingTimer::enableAt(Ticks due) {
    if (enabled_) return;
    enabled_ = true;
    due_ = due;
    task_ = run(); // drops what an earlier disable() left waiting
    task_.start();
}

Task<> RepeatingTimer::run() {
    while (true) {
        co_await clock_.sleepUntil(due_);
        if (!enabled_) co_return;
        try {
            tick_();
        } catch (...) {
            onFault_(std::current_exception());
        }
        if (!enabled_) co_return;
        // after a suspended PC one tick is enough
        due_ = std::max(due_ + interval_, clock_.ticks());
    }
}

} // namespace orvane
