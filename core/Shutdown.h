#pragma once

#include "core/PanelSettings.h"
#include "platform/Operator.h"
#include "station/Busy.h"

#include <functional>
#include <optional>

namespace orvane {

/// How the closing of the main window was asked for.
enum class UnloadMode {
    User, ///< the window's close box or system menu
    Other ///< the Exit menu, the operating system
};

/// A window's place in pixels.
struct WindowPlace {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// What happens when the main window is closed: save, ask or refuse, store the place, end.
class Shutdown {
  public:
    Shutdown(PanelSettings& settings, SettingsStore& store, Busy& busy, Operator& op,
             std::function<void()> endProgram)
        : settings_(settings), store_(store), busy_(busy), op_(op),
          endProgram_(std::move(endProgram)) {}

    /// True: the window may close. One question at a time; a second request meanwhile is false.
    Task<bool> MDIForm_QueryUnload(UnloadMode mode);
    /// Stores `place` (nothing while the window is minimised) and ends the program.
    void MDIForm_Unload(std::optional<WindowPlace> place);
    /// "Exit": saves. The caller then closes the window, with mode `Other`.
    void mnuFileExit_Click() { settings_.writeSetup(); }

  private:
    PanelSettings& settings_;
    SettingsStore& store_;
    Busy& busy_;
    Operator& op_;
    std::function<void()> endProgram_;
    bool asking_ = false;
};

} // namespace orvane
