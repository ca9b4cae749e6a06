#include "core/AutoStart.h"

namespace orvane {

namespace {
constexpr std::int16_t kLastTick = 99;
}

AutoStart::AutoStart(Module1& module, SettingsStore& store, Clock& clock, Exits exits)
    : module_(module), store_(store), exits_(std::move(exits)),
      timer_(clock, 105ms, [this] { tick(); }) {}

/// A failure at the end of the countdown is one of the program's start.
void AutoStart::tick() {
    try {
        Timer1_Timer();
    } catch (...) {
        timer_.disable();
        if (!exits_.fail) throw;
        exits_.fail(std::current_exception());
    }
}

void AutoStart::Timer1_Timer() {
    ++counter_;
    PBar1 = 100 - counter_;
    if (counter_ < kLastTick) return;
    leave([this] {
        store_.SaveSetting("Operation", "Mode Auto", "True");
        store_.SaveSetting("Operation", "Mode Man", "False");
        module_.RecordFlg = true;
        exits_.enterMainLoop();
    });
}

void AutoStart::leave(const std::function<void()>& exit) {
    if (!timer_.enabled()) return;
    timer_.disable();
    exits_.closeDialog();
    exit();
}

} // namespace orvane
