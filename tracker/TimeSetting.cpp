#include "tracker/TimeSetting.h"

#include "camera/CameraPanel.h"
#include "platform/Conversions.h"

namespace orvane {

namespace {

constexpr int kClockDigits = 12;
/// What the operator hears of a refusal that only ERROR.LOG tells in full; no box shows it.
constexpr const char* kNotTaken = "The tracker did not take the time. See ERROR.LOG.";

std::string dateAndTime(WallTime time) {
    return dateText(time) + " " + timeText(time);
}

} // namespace

std::string clockQuery(WallTime target) {
    const auto date = dayOf(target);
    const auto seconds = timeOfDay(target) / 1s;
    const std::pair<const char*, long long> fields[] = {
        {"i_year", static_cast<int>(date.year())},
        {"i_mon", static_cast<unsigned>(date.month())},
        {"i_day", static_cast<unsigned>(date.day())},
        {"i_hour", seconds / 3600},
        {"i_min", seconds / 60 % 60},
        {"i_sec", seconds % 60}};
    std::string query;
    for (const auto& [name, value] : fields)
        query += (query.empty() ? "?" : "&") + std::string(name) + "=" + std::to_string(value);
    return query;
}

TimeSetting::TimeSetting(TimeSettingForm& form, OperationPanel& panel, TrackerCommands& commands,
                         HttpTransfer& wbSystemTm, ErrorLog& log, Operator& op, Clock& clock,
                         Busy& busy)
    : form_(form), panel_(panel), commands_(commands), wbSystemTm_(wbSystemTm), log_(log), op_(op),
      clock_(clock), busy_(busy) {}

Task<> TimeSetting::activate() {
    const Busy::Hold busy(busy_);
    const Scope running([this](bool on) { setRunning(on); });
    for (TimeSettingForm::StatusLabel& label : form_.Label2) {
        label.caption = std::string();
        label.blue = false;
    }
    form_.txtSystemQuery.text = std::string();
    const WallTime target = clock_.now();
    target_ = target;
    log_.write("Adjust Time : " + dateAndTime(clock_.now()));
    co_await clock_.sleep(1000ms);
    form_.txtSystemQuery.text = clockQuery(target);
    request("/cgi/conf_sys_inp.cgi" + form_.txtSystemQuery.text.get());
    co_await clock_.sleep(7000ms);
    form_.Label2[0].caption = "カメラ時刻校正:" + dateAndTime(target);
    form_.Label2[0].blue = true;
    request("/cgi/live_s_hide2.cgi?rec=1");
    co_await clock_.sleep(3000ms);
}

/// A request that has no answer yet is given up for the next one.
void TimeSetting::request(const std::string& path) {
    request_ = wbSystemTm_.get(cameraBaseUrl(panel_) + path, Wanted::Nothing);
    request_.start();
}

Task<std::optional<std::string>> TimeSetting::setTrackerClock(bool automatic) {
    if (target_ == WallTime{}) target_ = clock_.now();
    std::optional<std::string> fault;
    {
        const Busy::Hold busy(busy_);
        const Scope running([this](bool on) { setRunning(on); });
        Task<std::optional<std::string>> exchanging = exchangeClock();
        fault = co_await exchanging;
    }
    form_.Label2[1].caption = fault ? *fault : "トラッカー時刻校正:" + dateAndTime(target_);
    form_.Label2[1].blue = !fault;
    // told when the port is closed: a box may stay open for days
    if (!automatic && fault && *fault != kNotTaken) {
        std::string message = *fault;
        co_await op_.tell(std::move(message));
    }
    co_return fault;
}

/// Stops the sun tracking, sets the clock and starts the tracking again, whatever came of it.
Task<std::optional<std::string>> TimeSetting::exchangeClock() {
    putClock(std::span(commands_.buffer).subspan<1, kClockDigits>(), target_);
    const OpenPort port = commands_.open();
    if (!port) co_return "Initialization of a communication port went wrong.";
    Task<> stopping = switchTracking(false);
    co_await stopping;

    putClock(std::span(commands_.buffer).subspan<1, kClockDigits>(), target_);
    Task<Exchange> setting = commands_.exchange(TrackerCommand::ClockSet, kClockDigits);
    const Exchange set = co_await setting;
    std::optional<std::string> fault = faultOf(set);

    Task<> starting = switchTracking(true);
    co_await starting;
    co_return fault;
}

/// Starts or stops the sun tracking; a failure is only logged. The text of a missing answer says
/// OFF for both directions.
Task<> TimeSetting::switchTracking(bool on) {
    const std::string name = on ? "SunRunning ON" : "SunRunning OFF";
    commands_.buffer[1] = on ? 1 : 0;
    Task<Exchange> exchanging = commands_.exchange(TrackerCommand::SunRunning, 1);
    const Exchange result = co_await exchanging;
    if (result == Exchange::NoReply) log_.write("SunRunning OFF:Recive[ACK]");
    if (result == Exchange::NotAcknowledged) log_.write(name + ":Except[ACK]");
    if (result == Exchange::WrongEcho) log_.write(name + ":Except[CMD]");
}

/// Why the tracker did not take the time, logged; nothing when it did.
std::optional<std::string> TimeSetting::faultOf(Exchange clockSet) {
    if (clockSet == Exchange::Done) return std::nullopt;
    const bool silent = clockSet == Exchange::NoReply;
    log_.write(silent ? "CLOCK SET:Racive Error" : "CLOCK SET:Except[ACK]");
    if (silent) return "Communication is unusual. Please check connection.";
    if (clockSet == Exchange::WrongEcho) return "A time setup at the appointed time went wrong.";
    return kNotTaken;
}

Task<> TimeSetting::Command1_Click() {
    target_ = clock_.now();
    Task<std::optional<std::string>> setting = setTrackerClock(false);
    co_await setting;
}

void TimeSetting::setRunning(bool running) {
    running_ = running;
    form_.Command1.enabled = !running;
    form_.Command3.enabled = !running;
}

} // namespace orvane
