#include "tests/support/SampleWalk.h"

#include <algorithm>
#include <cstdio>

namespace orvane::test {

namespace {

std::string clockText(int minutes) {
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d", minutes / 60, minutes % 60);
    return text;
}

std::string nameOf(const SampleDay& day, int minute, int second, int frame) {
    char text[64];
    std::snprintf(text, sizeof text, "_%02d%02d%02d_%02d.jpg", minute / 60, minute % 60, second,
                  frame);
    return day.digits + text;
}

std::string scheduleLine(const SampleSchedule& schedule) {
    return clockText(schedule.first) + " to " + clockText(schedule.end) + " every " +
           clockText(schedule.every).substr(3) + " min";
}

std::string quoted(const std::string& field) {
    if (field.find_first_of(",\"") == std::string::npos) return field;
    std::string text = "\"";
    for (const char c : field)
        text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
}

bool isDue(const SampleSchedule& schedule, int minute) {
    return minute >= schedule.first && minute < schedule.end && minute % 60 % schedule.every == 0;
}

} // namespace

void SampleWalk::run(int until) {
    const int last = static_cast<int>(days_.size()) - 1;
    for (day_ = 0; day_ <= last; ++day_)
        playDay(day_ == last ? until : SampleArchive::kWholeDay);
}

void SampleWalk::playDay(int until) {
    told_ = {};
    busyUntil_ = -1;
    for (minute_ = 0; minute_ < until; ++minute_) {
        if (eventIsNext(true)) {
            const bool forward = sampleStory()[next_++].what == Happens::Forward;
            minute_ += forward ? 60 : -60;
            offset_ += forward ? 60 : -60;
        }
        playMinute();
    }
}

bool SampleWalk::eventIsNext(bool clock) const {
    if (next_ == sampleStory().size()) return false;
    const SampleEvent& event = sampleStory()[next_];
    const bool isClock = event.what == Happens::Forward || event.what == Happens::Back;
    return event.day == day_ && event.minute == minute_ && isClock == clock;
}

void SampleWalk::playMinute() {
    beginMinute();
    judgeMinute();
    while (eventIsNext(false)) {
        happen(sampleStory()[next_++]);
        if (at(minute_).truth != Truth::Taken) judgeMinute();
    }
}

void SampleWalk::judgeMinute() {
    SampleMinute& minute = at(minute_);
    minute.isDue = isDue(schedule_, minute_);
    if (!minute.isDue) return;
    if (runs_ && records_) return capture();
    if (minute.truth == Truth::Nothing) minute.truth = runs_ ? Truth::Off : Truth::NotRunning;
}

/// The program looks once a minute, but for the time in which it waits for a picture.
void SampleWalk::beginMinute() {
    if (!runs_ || minute_ <= busyUntil_) return;
    if (minute_ == 0) noteSwitches(true);
    tellJudgements();
}

void SampleWalk::happen(const SampleEvent& event) {
    switch (event.what) {
    case Happens::Start:
    case Happens::StartOff:
        return startProgram(event.what == Happens::Start);
    case Happens::End:
        write(minute_, "program ended");
        runs_ = false;
        return;
    case Happens::Kill:
        runs_ = false;
        return;
    case Happens::On:
    case Happens::Off:
        records_ = event.what == Happens::On;
        if (records_) schedule_ = event.schedule;
        noteSwitches(false);
        return tellJudgements();
    case Happens::Fails:
        fault_ = event.text;
        return;
    case Happens::Works:
        fault_.clear();
        return;
    case Happens::Late:
        late_ = event.number;
        return;
    case Happens::Fill:
        return fill(event.number);
    case Happens::Forward:
    case Happens::Back:
        return;
    }
}

void SampleWalk::startProgram(bool recording) {
    runs_ = true;
    records_ = recording;
    notedSchedule_.clear();
    write(minute_, "program started");
    noteSwitches(true);
    tellJudgements();
}

void SampleWalk::noteSwitches(bool all) {
    if (records_ && (all || notedSchedule_ != scheduleLine(schedule_))) {
        notedSchedule_ = scheduleLine(schedule_);
        write(minute_, "schedule", {}, notedSchedule_);
    }
    if (all || notedRecords_ != records_)
        write(minute_, records_ ? "recording on" : "recording off");
    notedRecords_ = records_;
}

/// In an hour that comes again the second picture of a minute takes the next frame digits, and the
/// first one stands for the minute, as does the first reason.
void SampleWalk::capture() {
    SampleMinute& minute = at(minute_);
    if (!fault_.empty()) {
        if (minute.truth == Truth::Taken || minute.truth == Truth::Missed) return;
        minute.truth = Truth::Missed;
        minute.detail = minute.reason = fault_;
        return;
    }
    const int named = minute_ + late_;
    const bool again = today().filed.contains(nameOf(today(), named, 0, 0));
    const std::string name = nameOf(today(), named, 0, again ? 1 : 0);
    today().filed.insert(name);
    busyUntil_ = late_ > 0 ? named : -1;
    if (minute.truth == Truth::Taken) return;
    minute.truth = Truth::Taken;
    minute.detail = name;
}

/// What nobody wanted is not asked for.
void SampleWalk::fill(int every) {
    for (int m = 0; m < minute_; ++m) {
        SampleMinute& minute = at(m);
        const bool isGap = minute.truth == Truth::Missed || minute.truth == Truth::NotRunning;
        if (!minute.isDue || !isGap || m % every != 0) continue;
        minute.truth = Truth::Fetched;
        minute.detail = nameOf(today(), m, 7, 0);
        today().filed.insert(minute.detail);
    }
}

/// A miss is one when its minute is over.
void SampleWalk::tellJudgements() {
    for (int m = 0; m <= minute_; ++m) {
        const SampleMinute& minute = at(m);
        Truth& told = told_[static_cast<std::size_t>(m)];
        if (!minute.isDue || minute.truth == told) continue;
        if (minute.truth == Truth::Missed && m == minute_) continue;
        if (minute.truth == Truth::Taken) write(m, "taken", minute.detail);
        if (minute.truth == Truth::Fetched) write(m, "fetched later", minute.detail);
        if (minute.truth == Truth::Missed) write(m, "missed", {}, minute.detail);
        told = minute.truth;
    }
}

void SampleWalk::write(int minute, const std::string& event, const std::string& file,
                       const std::string& detail) {
    std::string& ledger = today().ledger;
    if (ledger.empty()) ledger = "time,offset,event,file,detail\r\n";
    ledger += clockText(minute) + ",+" + clockText(offset_) + "," + event + "," + file + "," +
              quoted(detail) + "\r\n";
}

} // namespace orvane::test
