#include "core/Condition.h"

#include <utility>

namespace orvane {

namespace {

using Cause = Warnings::Cause;

constexpr Ticks kLook = 1s;

bool hasFailed(const std::optional<CaptureAttempt>& attempt) {
    return attempt && !attempt->fault.empty();
}

} // namespace

Condition::Condition(Parts parts, Faults& faults)
    : parts_(parts), timer_(
                         parts.clock, kLook, [this] { follow(); }, faults.reporter("Condition")) {}

void Condition::closeOver() {
    over_.clear();
    tell();
}

void Condition::follow() {
    const Ticks now = parts_.clock.ticks();
    const auto told =
        std::erase_if(over_, [=](const auto& over) { return over.second.until <= now; });
    Seen seen = see();
    if (seen == seen_ && told == 0) return;
    seen_ = std::move(seen);
    const bool missing = seen_.recording && parts_.warnings.stands(Cause::NoImage);
    outage_ = missing ? parts_.days.outage() : DayWatch::Missed();
    noteChanges();
    tell();
}

Condition::Seen Condition::see() const {
    const Module1& module = parts_.module;
    return {parts_.days.revision(),
            parts_.warnings.text,
            module.RecordFlg,
            !parts_.panel.Command3.enabled,
            module.lastAttempt ? module.lastAttempt->at : WallTime(),
            module.lastRunFault ? module.lastRunFault->at : WallTime()};
}

/// The warning of missing images goes a moment after the picture has come.
bool Condition::stands(Cause cause) const {
    return parts_.warnings.stands(cause) && (cause != Cause::NoImage || outage_.count > 0);
}

void Condition::noteChanges() {
    const auto before = std::exchange(standing_, {});
    for (const CauseWords& words : allCauses()) {
        const Cause cause = words.cause;
        const auto was = before.find(cause);
        if (stands(cause)) {
            standing_[cause] = inShortNow(cause);
            over_.erase(cause);
            if (was == before.end()) begun = begun + 1;
        } else if (was != before.end()) {
            std::string text = overText(cause, was->second);
            if (!text.empty()) over_[cause] = {std::move(text), parts_.clock.ticks() + kToldFor};
        }
    }
}

std::string Condition::overText(Cause cause, const std::string& was) const {
    if (cause == Cause::NoImage) return arrivalText();
    return "Over since " + hourMinute(parts_.clock.now()) + ": " + was + ".";
}

/// Empty when images are missed no more for another reason than a picture, as when recording was
/// switched off.
std::string Condition::arrivalText() const {
    const auto taken = parts_.days.outage().taken;
    if (!parts_.module.RecordFlg || !taken) return {};
    const DayWatch::Missed missed = parts_.days.outageBefore(*taken);
    if (missed.count == 0) return {};
    return "Pictures arrive again since " + when(momentOf(*taken)) + ". " +
           std::to_string(missed.count) + (missed.count == 1 ? " was" : " were") + " missed from " +
           when(momentOf(missed.first)) + ".";
}

void Condition::tell() {
    std::vector<Notice> all;
    const auto addAll = [&](Grade grade) {
        for (const CauseWords& words : allCauses())
            if (words.grade == grade && stands(words.cause)) all.push_back(noticeOf(words));
    };
    addAll(Grade::Trouble);
    for (const auto& [cause, over] : over_)
        all.push_back({.grade = Grade::Well, .text = over.text});
    addAll(Grade::Attention);
    notices = std::move(all);
    tellStatus();
}

void Condition::tellStatus() {
    const bool recording = parts_.module.RecordFlg;
    Grade grade = recording ? Grade::Well : Grade::Off;
    std::string words = recording ? "Recording, all is well" : "Recording is off";
    std::string state = recording ? "recording" : "ready";
    if (recording && hasFailed(parts_.module.lastAttempt)) {
        grade = Grade::Attention;
        words = "Attention: the last attempt brought no picture";
    }
    for (const CauseWords& cause : allCauses()) {
        if (!stands(cause.cause)) continue;
        state = inShortNow(cause.cause);
        grade = cause.grade;
        words = (grade == Grade::Trouble ? "Trouble: " : "Attention: ") + state;
        break;
    }
    title = "Orvane - " + state;
    parts_.panel.sgn_status.words = words;
    parts_.panel.sgn_status.grade = grade;
    parts_.panel.lbl_fault.caption = lastFault();
}

Notice Condition::noticeOf(const CauseWords& words) const {
    Notice notice{words.grade, {}, words.advice, words.remedy};
    notice.isLocked = words.remedy == Remedy::SelectFolder && seen_.folderLocked;
    const Warnings::Standing& warning = parts_.warnings.standing().at(words.cause);
    notice.text = words.cause == Cause::NoImage
                      ? noImageText()
                      : "Since " + when(warning.since) + ": " + inOneLine(warning);
    return notice;
}

std::string Condition::noImageText() const {
    std::string text = "No image since " + when(momentOf(outage_.first)) + ", " +
                       std::to_string(outage_.count) + " missed";
    if (hasFailed(parts_.module.lastAttempt)) text += ": " + parts_.module.lastAttempt->fault;
    return text + ".";
}

std::string Condition::inShortNow(Cause cause) const {
    std::string words = inShort(cause, parts_.warnings.standing().at(cause));
    if (cause == Cause::NoImage) words += " since " + when(momentOf(outage_.first));
    return words;
}

/// The fault of a run stands until a capture comes to an end, in whatever way.
std::string Condition::lastFault() const {
    const auto& attempt = parts_.module.lastAttempt;
    const auto& run = parts_.module.lastRunFault;
    if (run && (!attempt || attempt->at < run->at)) return when(run->at) + ": " + run->reason;
    return hasFailed(attempt) ? when(attempt->due) + ": " + attempt->fault : std::string();
}

/// "09:30"; the day as well when it is another one.
std::string Condition::when(WallTime time) const {
    const bool isToday = dateText(time) == dateText(parts_.clock.now());
    return (isToday ? "" : dateText(time) + " ") + hourMinute(time);
}

} // namespace orvane
