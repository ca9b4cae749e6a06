#include "core/Shutdown.h"

namespace orvane {

namespace {

/// Pixels as twips, at 15 twips per pixel, in the way single-precision numbers are written.
std::string twips(int pixels) {
    return std::to_string(pixels * 15);
}

constexpr const char* kSection = "Station";
constexpr const char* kMaximised = "MainMaximised";

} // namespace

Task<bool> Shutdown::MDIForm_QueryUnload(UnloadMode mode) {
    bool stored = saveSettings();
    if (parts_.busy.active() && mode == UnloadMode::User) {
        parts_.op.beep();
        if (asking_) co_return false;
        Task<bool> waiting = parts_.wishes.toClose();
        if (!co_await waiting) co_return false;
        stored = saveSettings();
    } else if (parts_.busy.active() && stored) {
        co_return true;
    }
    if (asking_) co_return false;
    const Scope asking(asking_);
    if (!parts_.busy.active()) {
        std::string question = "Program End ? ";
        Task<bool> ending = parts_.op.ask(std::move(question));
        if (!co_await ending) co_return false;
    }
    if (stored) co_return true;
    std::string question = "The settings cannot be stored: what was changed since the program's "
                           "start is lost. To keep it, cancel and see to the disk that they are "
                           "stored on. Close anyway?";
    Task<bool> losing = parts_.op.ask(std::move(question));
    const bool mayClose = co_await losing;
    co_return mayClose;
}

bool Shutdown::wasMaximised() const {
    return parts_.store.GetSetting(kSection, kMaximised, "0") == "1";
}

void Shutdown::end(const std::string& reason, std::optional<WindowPlace> place) {
    if (left_) return;
    saveSettings();
    leave(place, "Orvane Ending (" + reason + ")");
}

bool Shutdown::saveSettings() {
    const bool stored = parts_.settings.writeSetup();
    if (!stored) parts_.log.write("writeSetup:Settings cannot be stored");
    return stored;
}

/// Once: several signals may come, and a window's close request after the session's end.
void Shutdown::leave(std::optional<WindowPlace> place, const std::string& line) {
    if (std::exchange(left_, true)) return;
    if (place) {
        parts_.store.SaveSetting(kSection, kMaximised, place->maximised ? "1" : "0");
        parts_.store.SaveSetting("Settings", "MainLeft", twips(place->left));
        parts_.store.SaveSetting("Settings", "MainTop", twips(place->top));
        parts_.store.SaveSetting("Settings", "MainWidth", twips(place->width));
        parts_.store.SaveSetting("Settings", "MainHeight", twips(place->height));
    }
    parts_.log.write(line);
    parts_.endProgram();
}

} // namespace orvane
