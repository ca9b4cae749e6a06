#include "core/AutoStart.h"

namespace orvane {

namespace {
constexpr std::int16_t kLastTick = 99;
}

AutoStart::AutoStart(Module1& module, SettingsStore& store, Clock& clock, Exits exits,
                     FaultHandler onFault)
    : module_(module), store_(store), exits_(std::move(exits)),
      timer_(
          clock, 105ms, [this] { Timer1_Timer(); }, std::move(onFault)) {}

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
