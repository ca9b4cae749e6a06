#include "core/Shutdown.h"

namespace orvane {

namespace {

/// Pixels as twips, at 15 twips per pixel, in the way single-precision numbers are written.
std::string twips(int pixels) {
    return std::to_string(pixels * 15);
}

} // namespace

Task<bool> Shutdown::MDIForm_QueryUnload(UnloadMode mode) {
    settings_.writeSetup();
    if (busy_.active()) {
        const bool refused = mode == UnloadMode::User;
        if (refused) op_.beep();
        co_return !refused;
    }
    if (asking_) co_return false;
    const Scope asking(asking_);
    std::string question = "Program End ? ";
    const bool mayClose = co_await op_.ask(std::move(question));
    co_return mayClose;
}

void Shutdown::MDIForm_Unload(std::optional<WindowPlace> place) {
    if (place) {
        store_.SaveSetting("Settings", "MainLeft", twips(place->left));
        store_.SaveSetting("Settings", "MainTop", twips(place->top));
        store_.SaveSetting("Settings", "MainWidth", twips(place->width));
        store_.SaveSetting("Settings", "MainHeight", twips(place->height));
    }
    endProgram_();
}

} // namespace orvane
