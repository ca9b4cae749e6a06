#include "core/Wishes.h"

namespace orvane {

namespace {
constexpr Ticks kLook = 50ms; // shorter than the main loop's rest between two attempts
}

Task<bool> Wishes::toStop() {
    return wait(stop_, [this] { return !parts_.module.capturing; });
}

Task<bool> Wishes::toClose() {
    return wait(close_, [this] { return !parts_.busy.active(); });
}

Task<bool> Wishes::wait(bool& wish, std::function<bool()> possible) {
    if (wish) co_return false;
    const Scope standing([this, &wish](bool on) {
        wish = on;
        text = describe();
    });
    cutShort();
    while (wish && !possible())
        co_await parts_.clock.sleep(kLook);
    co_return wish;
}

Task<> Wishes::sleepUntil(Ticks end) {
    if (standing()) co_return;
    Signal woken(parts_.clock);
    const Scope sleeping([&](bool on) { sleeper_ = on ? &woken : nullptr; });
    Task<> waking = wakeAt(woken, end);
    waking.start();
    co_await woken;
}

Task<> Wishes::wakeAt(Signal& sleeper, Ticks end) {
    co_await parts_.clock.sleepUntil(end);
    sleeper.fire();
}

/// The waits end at their next look.
void Wishes::drop() {
    stop_ = close_ = false;
    text = describe();
}

/// What a run has in transfer while a capture waits for it is not the capture's.
void Wishes::cutShort() {
    if (sleeper_ != nullptr) sleeper_->fire();
    if (parts_.module.capturing && !parts_.store.transferring()) parts_.http.cancel();
    if (close_) parts_.store.Command6_Click();
}

std::string Wishes::describe() const {
    if (!standing()) return {};
    if (!close_) return "Recording stops after this picture.";
    return parts_.module.capturing ? "Orvane closes after this picture."
                                   : "Orvane closes after the work in progress.";
}

} // namespace orvane
