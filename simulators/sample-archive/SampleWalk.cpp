#include "simulators/sample-archive/SampleArchive.h"

#include <algorithm>

namespace samplearchive {

namespace {

std::string clockText(int minutes) {
    return sampleDigits(minutes / 60) + ":" + sampleDigits(minutes % 60);
}

std::string nameOf(const SampleDay& day, int minute, int second, int frame) {
    return day.digits + "_" + sampleDigits(minute / 60) + sampleDigits(minute % 60) +
           sampleDigits(second) + "_" + sampleDigits(frame) + ".jpg";
}

std::string scheduleLine(const SampleSchedule& schedule) {
    return clockText(schedule.first) + " to " + clockText(schedule.end) + " every " +
           sampleDigits(schedule.every) + " min";
}

std::string quoted(const std::string& field) {
    if (field.find_first_of(",\"") == std::string::npos) return field;
    std::string text = "\"";
    for (const char c : field)
        text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
}

/// What becomes of the days' minutes, and what a program puts into its ledgers.
class Walk {
  public:
    explicit Walk(std::vector<SampleDay>& days) : days_(days) {}

    void playDay(std::size_t day, int until) {
        day_ = day;
        told_ = {};
        busyUntil_ = -1;
        for (minute_ = 0; minute_ < until; ++minute_) {
            if (eventIsNext(true)) {
                const int shift = sampleStory()[next_++].what == Happens::Forward ? 60 : -60;
                minute_ += shift;
                offset_ += shift;
            }
            playMinute();
        }
    }

  private:
    SampleDay& today() { return days_[day_]; }
    SampleMinute& at(int minute) { return today().at(minute); }

    bool eventIsNext(bool clock) const {
        if (next_ == sampleStory().size()) return false;
        const SampleEvent& event = sampleStory()[next_];
        const bool isClock = event.what == Happens::Forward || event.what == Happens::Back;
        return event.day == static_cast<int>(day_) && event.minute == minute_ && isClock == clock;
    }

    /// The program looks once a minute, but for the time in which it waits for a picture.
    void playMinute() {
        if (runs_ && minute_ > busyUntil_) {
            if (minute_ == 0) noteSwitches(true);
            tellJudgements();
        }
        judgeMinute();
        while (eventIsNext(false)) {
            happen(sampleStory()[next_++]);
            if (at(minute_).truth != Truth::Taken) judgeMinute();
        }
    }

    void judgeMinute() {
        SampleMinute& minute = at(minute_);
        minute.isDue = minute_ >= schedule_.first && minute_ < schedule_.end &&
                       minute_ % 60 % schedule_.every == 0;
        if (!minute.isDue) return;
        if (runs_ && records_) return capture();
        if (minute.truth == Truth::Nothing) minute.truth = runs_ ? Truth::Off : Truth::NotRunning;
    }

    void happen(const SampleEvent& event) {
        using enum Happens;
        const Happens what = event.what;
        if (what == Start || what == StartOff) startProgram(what == Start);
        if (what == End) write(minute_, "program ended");
        if (what == End || what == Kill) runs_ = false;
        if (what == On) schedule_ = event.schedule;
        if (what == On || what == Off) {
            records_ = what == On;
            noteSwitches(false);
            tellJudgements();
        }
        if (what == Fails || what == Works) fault_ = event.text;
        if (what == Late) late_ = event.number;
        if (what == Fill) fill(event.number);
    }

    void startProgram(bool recording) {
        runs_ = true;
        records_ = recording;
        notedSchedule_.clear();
        write(minute_, "program started");
        noteSwitches(true);
        tellJudgements();
    }

    void noteSwitches(bool all) {
        if (records_ && (all || notedSchedule_ != scheduleLine(schedule_))) {
            notedSchedule_ = scheduleLine(schedule_);
            write(minute_, "schedule", {}, notedSchedule_);
        }
        if (all || notedRecords_ != records_)
            write(minute_, records_ ? "recording on" : "recording off");
        notedRecords_ = records_;
    }

    /// In an hour that comes again the second picture of a minute takes the next frame digits, and
    /// the first one stands for the minute, as does the first reason.
    void capture() {
        SampleMinute& minute = at(minute_);
        const bool isTaken = minute.truth == Truth::Taken;
        if (!fault_.empty()) {
            if (isTaken || minute.truth == Truth::Missed) return;
            minute.truth = Truth::Missed;
            minute.detail = minute.reason = fault_;
            return;
        }
        const int named = minute_ + late_;
        const bool again = today().filed.contains(nameOf(today(), named, 0, 0));
        const std::string name = nameOf(today(), named, 0, again ? 1 : 0);
        today().filed.insert(name);
        busyUntil_ = late_ > 0 ? named : -1;
        if (isTaken) return;
        minute.truth = Truth::Taken;
        minute.detail = name;
    }

    /// What nobody wanted is not asked for.
    void fill(int every) {
        for (int m = 0; m < minute_; m += every) {
            SampleMinute& minute = at(m);
            const bool isGap = minute.truth == Truth::Missed || minute.truth == Truth::NotRunning;
            if (!minute.isDue || !isGap) continue;
            minute.truth = Truth::Fetched;
            minute.detail = nameOf(today(), m, 7, 0);
            today().filed.insert(minute.detail);
        }
    }

    /// A miss is one when its minute is over.
    void tellJudgements() {
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

    void write(int minute, const std::string& event, const std::string& file = {},
               const std::string& detail = {}) {
        std::string& ledger = today().ledger;
        if (ledger.empty()) ledger = "time,offset,event,file,detail\r\n";
        ledger += clockText(minute) + ",+" + clockText(offset_) + "," + event + "," + file + "," +
                  quoted(detail) + "\r\n";
    }

    std::vector<SampleDay>& days_;
    std::size_t next_ = 0; ///< event
    std::size_t day_ = 0;
    int minute_ = 0;
    int offset_ = 60; ///< of local time from universal time, in minutes

    bool runs_ = false;
    bool records_ = false;
    SampleSchedule schedule_ = kSampleSchedule;
    std::string fault_; ///< of each fetch; empty: the camera works
    int late_ = 0;
    int busyUntil_ = -1; ///< the minute in which a late picture has come

    std::string notedSchedule_;
    bool notedRecords_ = false;
    std::array<Truth, 1440> told_{}; ///< what the ledger tells of today's minutes
};

} // namespace

std::string sampleDigits(int number) {
    return std::to_string(100 + number).substr(1);
}

void playSampleStory(std::vector<SampleDay>& days, int until) {
    Walk walk(days);
    for (std::size_t day = 0; day < days.size(); ++day)
        walk.playDay(day, day + 1 == days.size() ? until : SampleArchive::kWholeDay);
}

} // namespace samplearchive
