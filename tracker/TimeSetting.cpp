#include "tracker/TimeSetting.h"

#include "camera/CameraPanel.h"
#include "platform/Conversions.h"

namespace orvane {

namespace {

constexpr std::int16_t kClockSetLink = 4;
constexpr int kClockDigits = 12;

std::string dateAndTime(WallTime time) {
    return dateText(time) + " " + timeText(time);
}

/// What an exchange that switches the sun tracking is logged as. The text of a missing answer says
/// OFF for both directions.
void logSunRunning(ErrorLog& log, Exchange result, const std::string& name) {
    switch (result) {
    case Exchange::Done:
        return;
    case Exchange::NoReply:
        log.write("SunRunning OFF:Recive[ACK]");
        return;
    case Exchange::NotAcknowledged:
        log.write(name + ":Except[ACK]");
        return;
    case Exchange::WrongEcho:
        log.write(name + ":Except[CMD]");
        return;
    }
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

TimeSetting::TimeSetting(TimeSettingForm& form, Module1& module, OperationPanel& panel,
                         TrackerCommands& commands, WebBrowser& wbSystemTm, ErrorLog& log,
                         Operator& op, Clock& clock, Busy& busy)
    : form_(form), module_(module), panel_(panel), commands_(commands), wbSystemTm_(wbSystemTm),
      log_(log), op_(op), clock_(clock), busy_(busy) {}

Task<> TimeSetting::activate() {
    const Running running(*this);
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
    wbSystemTm_.navigate(cameraBaseUrl(panel_) + "/cgi/conf_sys_inp.cgi" +
                         form_.txtSystemQuery.text.get());
    co_await clock_.sleep(7000ms);
    form_.Label2[0].caption = "カメラ時刻校正:" + dateAndTime(target);
    form_.Label2[0].blue = true;
    wbSystemTm_.navigate(cameraBaseUrl(panel_) + "/cgi/live_s_hide2.cgi?rec=1");
    co_await clock_.sleep(3000ms);
}

Task<bool> TimeSetting::setTrackerClock(bool automatic) {
    if (target_ == WallTime{}) target_ = clock_.now();
    bool confirmed = false;
    {
        const Running running(*this);
        Task<bool> exchanging = exchangeClock();
        confirmed = co_await exchanging;
    }
    form_.Label2[1].caption =
        confirmed ? "トラッカー時刻校正:" + dateAndTime(target_) : lastMessage_;
    form_.Label2[1].blue = confirmed;
    // told when the port is closed: a box may stay open for days
    std::string message = told_;
    if (!automatic && !message.empty()) co_await op_.tell(std::move(message));
    co_return confirmed;
}

/// Stops the sun tracking, sets the clock and starts the tracking again, whatever came of it.
Task<bool> TimeSetting::exchangeClock() {
    told_.clear();
    lastMessage_ = "The tracker did not take the time. See ERROR.LOG.";
    putClock(std::span(commands_.buffer).subspan<1, kClockDigits>(), target_);
    module_.linkState = kClockSetLink;
    if (!commands_.open()) {
        lastMessage_ = told_ = "Initialization of a communication port went wrong.";
        co_return false;
    }
    commands_.buffer[1] = 0;
    Task<Exchange> stopping = commands_.exchange(TrackerCommand::SunRunning, 1);
    const Exchange stopped = co_await stopping;
    logSunRunning(log_, stopped, "SunRunning OFF");

    putClock(std::span(commands_.buffer).subspan<1, kClockDigits>(), target_);
    Task<Exchange> setting = commands_.exchange(TrackerCommand::ClockSet, kClockDigits);
    const Exchange set = co_await setting;
    noteClockSet(set);

    commands_.buffer[1] = 1;
    Task<Exchange> starting = commands_.exchange(TrackerCommand::SunRunning, 1);
    const Exchange started = co_await starting;
    logSunRunning(log_, started, "SunRunning ON");
    commands_.close();
    co_return set == Exchange::Done;
}

void TimeSetting::noteClockSet(Exchange result) {
    if (result == Exchange::Done) return;
    if (result == Exchange::NoReply) told_ = "Communication is unusual. Please check connection.";
    if (result == Exchange::WrongEcho) told_ = "A time setup at the appointed time went wrong.";
    if (!told_.empty()) lastMessage_ = told_;
    log_.write(result == Exchange::NoReply ? "CLOCK SET:Racive Error" : "CLOCK SET:Except[ACK]");
}

Task<> TimeSetting::Command1_Click() {
    target_ = clock_.now();
    Task<bool> setting = setTrackerClock(false);
    co_await setting;
}

void TimeSetting::setRunning(bool running) {
    running_ = running;
    form_.Command1.enabled = !running;
    form_.Command3.enabled = !running;
}

} // namespace orvane
