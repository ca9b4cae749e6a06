#include "core/FirstSteps.h"

#include "archive/Ledger.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr Ticks kTryAgain = 30s;
constexpr Ticks kAway = 10s; ///< so long without a look, and nobody has looked

/// Writes a small file and takes it away again. Folders that are made with the first picture are
/// not made: the one counts in which they will be.
Fault writeFault(std::filesystem::path folder, bool willBeMade) {
    std::error_code error;
    while (willBeMade && !std::filesystem::exists(folder, error) && folder.has_relative_path())
        folder = folder.parent_path();
    const std::filesystem::path trial = folder / ".orvane-trial";
    if (Fault fault = writeToFinalName("Can this folder be written?", trial)) return fault;
    std::filesystem::remove(trial, error);
    if (error) return error.message();
    return std::nullopt;
}

} // namespace

FirstSteps::Look FirstSteps::look() {
    Look look;
    if (parts_.panel.Dir1[0].path.get().empty()) return look; // the settings are not loaded yet
    look.steps = {camera(), folder(), schedule()};
    lookedAt_ = parts_.clock.ticks();
    look.isReady =
        std::ranges::all_of(look.steps, [](const Step& step) { return step.state == State::Done; });
    look.summary = summary(look.isReady);
    return look;
}

/// An answer of another address than the present one counts for nothing.
FirstSteps::Step FirstSteps::camera() const {
    const auto& seen = parts_.camera.lastSeen();
    if (!seen || seen->camera != cameraBaseUrl(parts_.panel))
        return {State::Open, "Not tried yet. Enter its address, then press Test fetch.", "txtIp"};
    const std::string at = "at " + hourMinute(seen->at);
    const CameraAnswer& answer = seen->answer;
    if (!answer.isPicture()) return {State::Wrong, "Tried " + at + ": " + answer.fault, "txtIp"};
    return {State::Done, "Answered " + at + (answer.bytes == 0 ? "" : ": " + answer.picture()),
            "txtIp"};
}

FirstSteps::Step FirstSteps::folder() {
    const std::filesystem::path& folder = parts_.panel.Dir1[0].path;
    if (isTrialDue()) {
        fault_ = writeFault(folder, folder == parts_.module.defaultDataFolder);
        tried_ = folder;
        starts_ = parts_.recording.starts();
        triedAt_ = parts_.clock.ticks();
    }
    const std::string control = parts_.panel.Command3.enabled ? "Command3" : "";
    const std::string name = utf8FromPath(folder);
    if (fault_) return {State::Wrong, "Cannot be written: " + *fault_ + ": " + name, control};
    return {State::Done, "Pictures go to " + name, control};
}

bool FirstSteps::isTrialDue() const {
    const Ticks now = parts_.clock.ticks();
    return parts_.panel.Dir1[0].path.get().native() != tried_.native() ||
           parts_.recording.starts() != starts_ || now - lookedAt_ >= kAway ||
           (fault_ && now - triedAt_ >= kTryAgain);
}

FirstSteps::Step FirstSteps::schedule() const {
    constexpr std::size_t kStartHour = 0;
    constexpr std::size_t kIntervalMinute = 5;
    const auto fault = parts_.recording.scheduleFault();
    if (fault) return {State::Wrong, fault->message, fieldName(fault->field)};
    const bool followsSun = parts_.panel.chk_sun.ticked;
    const auto today = std::chrono::floor<std::chrono::days>(parts_.clock.now());
    const Schedule schedule = parts_.schedules.of(today);
    const std::string text = scheduleText(schedule);
    if (dueMinutesPerDay(schedule) == 0)
        return {State::Wrong,
                (followsSun ? "No minute is due today: " : "No minute is ever due: ") + text,
                fieldName(kIntervalMinute)};
    return {State::Done, (followsSun ? "Follows the sun, today " : "") + text,
            fieldName(kStartHour)};
}

/// The field, or the box that locks it.
std::string FirstSteps::fieldName(std::size_t index) const {
    if (parts_.panel.Text1[index].enabled) return "Text1_" + std::to_string(index);
    if (parts_.module.RecordFlg) return {};
    return parts_.panel.chk_auto.ticked ? "chk_auto" : "chk_sun";
}

std::string FirstSteps::summary(bool isReady) const {
    if (parts_.module.capturing) return "Recording: a picture is being taken";
    if (parts_.module.RecordFlg) return "Recording: " + nextText();
    if (isReady) return "Ready to record: press Start Recording";
    return "Before pictures can be recorded";
}

std::string FirstSteps::nextText() const {
    const DayPlan& plan = parts_.days.plan();
    if (!plan.next) return "no picture is ever due";
    const char* which = parts_.module.lastImage.empty() ? "the first" : "the next";
    return which + std::string(" picture is due ") + (plan.nextIsToday ? "at " : "tomorrow at ") +
           minuteText(*plan.next);
}

} // namespace orvane
