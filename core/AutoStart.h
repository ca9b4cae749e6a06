#pragma once

#include "platform/SettingsStore.h"
#include "station/Module1.h"
#include "station/RepeatingTimer.h"
#include "station/Value.h"

#include <exception>
#include <functional>

namespace orvane {

/// The countdown behind `Frm_AutoStart`: after 99 ticks of 105 ms it starts recording by itself.
/// Every exit stops the timer first, closes the dialog, and happens once.
class AutoStart {
  public:
    struct Exits {
        std::function<void()> closeDialog;
        std::function<void()> enterMainLoop;
        std::function<void()> endProgram;
        /// What nobody foresaw at the countdown's end; without it, it goes on to the timer.
        std::function<void(const std::exception_ptr&)> fail = nullptr;
    };

    AutoStart(Module1& module, SettingsStore& store, Clock& clock, Exits exits);

    void Form_Load() { timer_.enable(); }
    void Timer1_Timer();
    /// "Cancel": starts the program without recording.
    void Command1_Click() { leave(exits_.enterMainLoop); }
    /// "End": ends the program.
    void Command2_Click() { leave(exits_.endProgram); }

    Value<int> PBar1{100}; ///< 0 to 100

  private:
    void tick();
    void leave(const std::function<void()>& exit);

    Module1& module_;
    SettingsStore& store_;
    Exits exits_;
    RepeatingTimer timer_;
    std::int16_t counter_ = 0;
};

} // namespace orvane
