#include "core/Recording.h"

#include "archive/DataFolder.h"
#include "platform/Conversions.h"
#include "station/PanelSchedule.h"

#include <array>

namespace orvane {

namespace {

/// The schedule fields that recording and `chk_auto` lock; the interval's hour and second stay.
constexpr std::array<std::size_t, 5> kLockedFields{0, 1, 2, 3, 5};
constexpr std::size_t kEndHour = 2;
constexpr std::size_t kIntervalMinute = 5;
constexpr std::array<std::size_t, 4> kWindowFields{0, 1, 2, 3};
constexpr std::size_t kIntervalSecond = 6;

constexpr std::array<const char*, 10> kMessages{
    "Please set up 'hour' of a StartTime correctly.",
    "Please set up 'minute' of a StartTime correctly.",
    "Please set up 'hour' of a EndTime correctly.",
    "Please set up 'minute' of a EndTime correctly.",
    "Please set up 'hour' of a Recording Interval correctly.",
    "Please set up 'minute' of a Recording Interval correctly.",
    "Please set up 'Second' of a Recording Interval correctly.",
    "'00:00' cannot be set as a Recording Interval.",
    "Start Time and End Time cannot be set to the same time.",
    "You must be Start Time < End Time."};

constexpr int kSameTime = 8;
constexpr int kStartAfterEnd = 9;
constexpr int kNoInterval = 7;

/// The field in which a fault can be mended.
std::size_t fieldOf(int code) {
    if (code == kNoInterval) return kIntervalMinute;
    return code < kNoInterval ? static_cast<std::size_t>(code) : kEndHour;
}

bool inRange(const TextBox& field, std::size_t index) {
    const double value = leadingNumber(field.text.get());
    return value >= 0 && value <= OperationPanel::kFieldLimits[index];
}

/// The code of the first field that is empty or out of its range, or of an interval of nothing. The
/// interval's hour and second are never checked.
std::optional<int> fieldFault(const OperationPanel& panel) {
    for (const std::size_t index : kLockedFields) {
        const TextBox& field = panel.Text1[index];
        if (field.text.get().empty() || !inRange(field, index)) return static_cast<int>(index);
    }
    if (leadingNumber(panel.Text1[5].text.get()) == 0 &&
        leadingNumber(panel.Text1[6].text.get()) == 0)
        return kNoInterval;
    return std::nullopt;
}

std::optional<int> windowFault(const Schedule& schedule) {
    if (schedule.StartTime == schedule.EndTime) return kSameTime;
    if (schedule.StartTime > schedule.EndTime) return kStartAfterEnd;
    return std::nullopt;
}

} // namespace

Task<> Recording::Command1_Click() {
    panel_.Command1.enabled = false;
    mnuRecordingStart = false;
    faultyField = std::nullopt;
    enableInputs(false);
    panel_.UpDown1[kIntervalSecond].enabled = false;
    log_.write("Start Recording");
    panel_.Label7.caption = "Start Recording...";
    if (!settings_.writeSetup()) log_.write("writeSetup:Settings cannot be stored");

    if (const auto code = validate()) {
        module_.RecordFlg = false;
        const std::string message = kMessages[static_cast<std::size_t>(*code)];
        log_.write(message);
        op_.beep();
        co_await op_.tell(message);
        panel_.Label7.caption = "Ready";
        ready();
        faultyField = fieldOf(*code);
        co_return;
    }
    module_.RecordFlg = true;
    module_.RecDoneFlg = false;
    panel_.Command1.enabled = false;
    panel_.Command2.enabled = true;
    mnuRecordingStop = true;
    schedules_.begin();
    status_.runSync(true);
    status_.NumberOfRec();
    panel_.Label7.caption = "Recording Standby";
    ++starts_;
}

void Recording::Command2_Click() {
    module_.RecordFlg = false;
    status_.runSync(false);
    ready();
    log_.write("Stop Recording");
    module_.RecCount = 0;
    panel_.Label7.caption = "Ready";
    panel_.lbl_start.caption = std::string();
}

Task<> Recording::mnuRecordingStop_Click() {
    if (module_.capturing) {
        Task<bool> waiting = wishes_.toStop();
        if (!co_await waiting) co_return;
    }
    if (module_.RecordFlg) Command2_Click();
}

Task<> Recording::chooseDataFolder(std::filesystem::path folder) {
    if (const auto place = archivePlace(folder)) {
        std::string question = *place + ". Pictures would be filed in folders of their own inside "
                                        "it. Use it as the data folder all the same?";
        Task<bool> asking = op_.confirm(std::move(question));
        const bool wanted = co_await asking;
        if (!wanted || module_.RecordFlg) co_return;
    }
    settings_.selectDataFolder(folder);
}

void Recording::ready() {
    panel_.Command1.enabled = true;
    panel_.Command2.enabled = false;
    mnuRecordingStart = true;
    mnuRecordingStop = false;
    enableInputs(true);
}

/// Everything that is locked while recording, except the interval-second spinner: once recording
/// has been started it stays locked until the program ends.
void Recording::enableInputs(bool enabled) {
    for (const std::size_t index : kLockedFields) {
        panel_.UpDown1[index].enabled = enabled;
        panel_.Text1[index].enabled = enabled;
    }
    panel_.Dir1[0].enabled = enabled;
    panel_.Command3.enabled = enabled;
    panel_.Frame3[1].enabled = enabled;
    panel_.chk_sun.enabled = enabled;
    lockTimes();
}

/// While the window follows the sun, the typed times only wait for a day without one.
void Recording::lockTimes() {
    if (!panel_.chk_sun.ticked) return;
    for (const std::size_t index : kWindowFields) {
        panel_.UpDown1[index].enabled = false;
        panel_.Text1[index].enabled = false;
    }
}

/// The code of the first fault, or nothing. Makes the schedule's times on the way.
std::optional<int> Recording::validate() {
    if (const auto code = fieldFault(panel_)) return code;
    using namespace std::chrono;
    Schedule& schedule = module_.schedule;
    schedule = scheduleOf(panel_);
    schedule.NextRecTime =
        createNextRecTime(schedule.StartTime, schedule.EndTime, schedule.IntervalTime,
                          floor<seconds>(timeOfDay(clock_.now())));
    return windowFault(schedule);
}

std::optional<Recording::ScheduleFault> Recording::scheduleFault() const {
    auto code = fieldFault(panel_);
    if (!code) code = windowFault(scheduleOf(panel_));
    if (!code) return std::nullopt;
    return ScheduleFault{kMessages[static_cast<std::size_t>(*code)], fieldOf(*code)};
}

void Recording::Text1_Change(std::size_t index) {
    if (inRange(panel_.Text1[index], index))
        panel_.UpDown1[index].value =
            static_cast<int>(leadingNumber(panel_.Text1[index].text.get()));
}

void Recording::Text1_LostFocus(std::size_t index) {
    if (!inRange(panel_.Text1[index], index)) panel_.Text1[index].text = std::string();
}

void Recording::UpDown1_Change(std::size_t index) {
    panel_.Text1[index].text = std::to_string(panel_.UpDown1[index].value.get());
}

void Recording::chk_auto_Click() {
    const bool unlocked = !panel_.chk_auto.ticked;
    for (const std::size_t index : kLockedFields) {
        panel_.Text1[index].enabled = unlocked;
        panel_.UpDown1[index].enabled = unlocked;
    }
    panel_.chk_sun.enabled = unlocked && !module_.RecordFlg;
    lockTimes();
}

/// It is locked together with the time fields.
void Recording::chk_sun_Click() {
    for (const std::size_t index : kWindowFields) {
        panel_.Text1[index].enabled = true;
        panel_.UpDown1[index].enabled = true;
    }
    lockTimes();
    schedules_.follow();
    if (!settings_.keepFollowSun()) log_.write("Follow the sun:The setting cannot be stored");
}

} // namespace orvane
