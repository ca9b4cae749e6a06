#include "core/StatusText.h"

#include "platform/JsonText.h"
#include "platform/Paths.h"

#include <utility>

namespace orvane {

namespace {

constexpr int kFormat = 1;

const char* stateName(StatusText::State state) {
    switch (state) {
    case StatusText::State::Recording:
        return "recording";
    case StatusText::State::Stopped:
        return "stopped";
    case StatusText::State::Ended:
        break;
    }
    return "ended";
}

const char* causeName(Warnings::Cause cause) {
    using Cause = Warnings::Cause;
    switch (cause) {
    case Cause::NoImage:
        return "no image";
    case Cause::ChosenFolder:
        return "chosen folder";
    case Cause::DataFolder:
        return "data folder";
    case Cause::Unreadable:
        return "unreadable folder";
    case Cause::Settings:
        return "settings";
    case Cause::ErrorLog:
        return "error log";
    case Cause::DiskSpace:
        return "disk space";
    case Cause::ClockSetting:
        return "clock setting";
    case Cause::SunTimes:
        return "sun times";
    case Cause::StatusFile:
        return "status file";
    case Cause::Mail:
        return "mail";
    }
    return "other";
}

std::string jsonPath(const std::filesystem::path& path) {
    return jsonString(utf8FromPath(path));
}

std::string jsonMinute(int minute) {
    return jsonString(minuteText(minute));
}

} // namespace

std::string StatusText::write(State state, const std::filesystem::path& latestCopy) {
    now_ = parts_.clock.now();
    offset_ = parts_.offset();
    parts_.days.follow();
    return jsonObject(
        {{"format", jsonNumber(kFormat)},
         {"program", jsonString("Orvane")},
         {"version", jsonString(parts_.version)},
         {"alive", jsonString(time(now_))},
         {"aliveUtc", jsonNumber(universalSeconds(now_, offset_))},
         {"started", jsonString(time(started_))},
         {"state", jsonString(stateName(state))},
         {"schedule", schedule()},
         {"nextDue", state == State::Recording ? nextDue() : kJsonNull},
         {"today", today()},
         {"lastPicture", lastPictureObject()},
         {"lastAttempt", lastAttempt()},
         {"latestCopy", latestCopy.empty() ? kJsonNull : jsonPath(latestCopy.filename())},
         {"warnings", warnings()},
         {"disk", disk()},
         {"sun", sun()},
         {"clocks", clocks()}});
}

/// A folder is looked through once, and only until a capture has come.
const std::filesystem::path& StatusText::lastPicture() {
    if (!parts_.module.lastImage.empty()) return parts_.module.lastImage;
    const std::filesystem::path& folder = parts_.panel.Dir1[0].path;
    if (folder.native() != searched_.native()) {
        searched_ = folder;
        const auto newest = newestCaptures(folder, 1);
        found_ = newest.empty() ? std::filesystem::path() : newest.front();
    }
    return found_;
}

std::string StatusText::lastPictureObject() {
    const std::filesystem::path& file = lastPicture();
    const auto name = ImageName::ofFile(file);
    if (!name) return kJsonNull;
    const auto age = std::chrono::floor<std::chrono::seconds>(now_ - name->time());
    return jsonObject({{"name", jsonString(name->text())},
                       {"file", jsonPath(file)},
                       {"time", jsonString(time(name->time()))},
                       {"ageSeconds", jsonNumber(std::max<std::int64_t>(age.count(), 0))}});
}

std::string StatusText::lastAttempt() const {
    return jsonOrNull(parts_.module.lastAttempt, [this](const CaptureAttempt& attempt) {
        return jsonObject(
            {{"time", jsonString(time(attempt.at))},
             {"filed", jsonFlag(attempt.fault.empty())},
             {"fault", attempt.fault.empty() ? kJsonNull : jsonString(attempt.fault)}});
    });
}

/// While recording is off none is in force; the fields on the panel may hold anything then.
std::string StatusText::schedule() const {
    if (!parts_.module.RecordFlg) return kJsonNull;
    const Schedule& schedule = parts_.module.schedule;
    return jsonObject({{"start", jsonMinute(wholeMinutes(schedule.StartTime))},
                       {"end", jsonMinute(wholeMinutes(schedule.EndTime))},
                       {"intervalMinutes", jsonNumber(wholeMinutes(schedule.IntervalTime) % 60)},
                       {"delaySeconds", jsonNumber(std::max<int>(parts_.module.image.Delay, 0))}});
}

std::string StatusText::nextDue() const {
    const DayPlan& plan = parts_.days.plan();
    if (!plan.next) return kJsonNull;
    const auto day = parts_.days.folder().day() + std::chrono::days(plan.nextIsToday ? 0 : 1);
    return jsonString(time(WallTime(day) + std::chrono::minutes(*plan.next)));
}

std::string StatusText::today() const {
    const DayPlan& plan = parts_.days.plan();
    const int judged = plan.taken + plan.fetched + plan.missed + plan.notRecorded;
    const WallTime day(parts_.days.folder().day());
    return jsonObject({{"date", jsonString(isoTime(day, offset_).substr(0, 10))},
                       {"due", jsonNumber(plan.due)},
                       {"taken", jsonNumber(plan.taken)},
                       {"fetched", jsonNumber(plan.fetched)},
                       {"missed", jsonNumber(plan.missed)},
                       {"notRecorded", jsonNumber(plan.notRecorded)},
                       {"toCome", jsonNumber(std::max(plan.due - judged, 0))},
                       {"readable", jsonFlag(!parts_.days.folder().fault())},
                       {"text", jsonString(plan.text)}});
}

std::string StatusText::warnings() const {
    std::vector<std::string> all;
    for (const auto& [cause, standing] : parts_.warnings.standing())
        all.push_back(jsonObject({{"cause", jsonString(causeName(cause))},
                                  {"since", jsonString(time(standing.since))},
                                  {"text", jsonString(standing.text)}}));
    return jsonArray(all);
}

std::string StatusText::disk() const {
    const std::filesystem::path& folder = parts_.panel.Dir1[0].path;
    const auto freeBytes = freeBytesOf(folder);
    DiskWatch::Report report;
    if (freeBytes) report = parts_.disk.report(*freeBytes, parts_.module.schedule);
    return jsonObject({{"folder", jsonPath(folder)},
                       {"freeBytes", jsonOrNull(freeBytes,
                                                [](std::uint64_t bytes) {
                                                    return jsonNumber(
                                                        static_cast<std::int64_t>(bytes));
                                                })},
                       {"daysLeft", jsonOrNull(report.days, jsonDecimal)}});
}

std::string StatusText::sun() {
    const auto day = std::chrono::floor<std::chrono::days>(now_);
    const SiteValues& site = parts_.module.site;
    if (day != sunDay_ || site != sunSite_) {
        sunDay_ = day;
        sunSite_ = site;
        sun_ = sunOfDay(site, dayOf(now_));
    }
    if (!sun_) return kJsonNull;
    const auto minute = static_cast<std::size_t>(minuteOfDay(now_));
    return jsonObject({{"sunrise", jsonOrNull(sun_->sunrise, jsonMinute)},
                       {"sunset", jsonOrNull(sun_->sunset, jsonMinute)},
                       {"elevation", jsonDecimal(sun_->elevation[minute])}});
}

std::string StatusText::clocks() const {
    const auto& last = parts_.clocks.last();
    const bool failed = last && last->fault;
    return jsonObject({{"daily", jsonFlag(parts_.module.AdjTime == 1)},
                       {"lastSetting", last ? jsonString(time(last->at)) : kJsonNull},
                       {"fault", failed ? jsonString(*last->fault) : kJsonNull}});
}

} // namespace orvane
