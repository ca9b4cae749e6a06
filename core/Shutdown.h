#pragma once

#include "core/PanelSettings.h"
#include "core/Wishes.h"
#include "platform/Operator.h"
#include "station/ErrorLog.h"

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
    bool maximised = false;
};

/// What happens when the program is to end: save, ask or refuse, store the window's place, end.
class Shutdown {
  public:
    struct Parts {
        PanelSettings& settings;
        SettingsStore& store;
        Busy& busy;
        Wishes& wishes;
        Operator& op;
        ErrorLog& log;
        std::function<void()> endProgram;
    };

    explicit Shutdown(Parts parts) : parts_(std::move(parts)) {}

    /// True: the window may close. While the station is busy the close box is refused, with a beep,
    /// and taken for a wish: the question follows as soon as it may. One question at a time; a
    /// second request meanwhile is false. Settings that cannot be stored are told last.
    Task<bool> MDIForm_QueryUnload(UnloadMode mode);
    /// Stores `place` (nothing while the window is minimised) and ends the program.
    void MDIForm_Unload(std::optional<WindowPlace> place) { leave(place, "Orvane Ending"); }
    /// "Exit": saves. The caller then closes the window, with mode `Other`.
    void mnuFileExit_Click() { parts_.settings.writeSetup(); }
    /// Whether the window filled the screen when it was closed.
    bool wasMaximised() const;
    /// The operating system ends the program for `reason`, such as "SIGTERM". Stores the settings
    /// and `place` and ends it; nobody is asked.
    void end(const std::string& reason, std::optional<WindowPlace> place);

  private:
    bool saveSettings();
    void leave(std::optional<WindowPlace> place, const std::string& line);

    Parts parts_;
    bool asking_ = false;
    bool left_ = false;
};

} // namespace orvane
