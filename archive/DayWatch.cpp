#include "archive/DayWatch.h"

#include <algorithm>

namespace orvane {

namespace {

/// The two clocks of a PC do not run quite alike.
constexpr auto kClockError = 1s;
/// A capture takes longer, so no more of a minute than this is none of it.
constexpr auto kNoMinute = 2s;

std::int64_t firstMinuteOf(std::chrono::local_days day) {
    return minuteIndex(WallTime(day));
}

std::optional<LedgerEntry> entryOf(DayState state) {
    switch (state) {
    case DayState::Taken:
        return LedgerEntry::Taken;
    case DayState::Fetched:
        return LedgerEntry::Fetched;
    case DayState::Missed:
        return LedgerEntry::Missed;
    default:
        return std::nullopt;
    }
}

bool isMissed(const LedgerLine& line) {
    return line.entry == LedgerEntry::Missed;
}

} // namespace

DayWatch::DayWatch(const Module1& module, const OperationPanel& panel, DaySchedules& schedules,
                   const Clock& clock, const DayFolder::Reader& reader)
    : module_(module), panel_(panel), schedules_(schedules), clock_(clock), today_(reader),
      yesterday_(reader) {}

/// Once a second and more often: nothing is allocated while nothing has changed, and the data
/// folder is compared as text, since comparing paths part by part is slow.
void DayWatch::follow() {
    const WallTime now = clock_.now();
    noteJump(now);
    schedules_.follow();
    const Seen seen{minuteIndex(now), module_.RecordFlg, module_.schedule,
                    wholeMinutes(std::chrono::seconds(std::max<int>(module_.image.Delay, 0))),
                    schedules_.revision()};
    const std::filesystem::path& dataFolder = panel_.Dir1[0].path;
    const bool moved = dataFolder.native() != dataFolder_.native();
    if (seen == seen_ && !moved) return;
    const bool planStands = planned_ == revision_ && !moved && isOnlyLater(seen);
    ++revision_;
    if (planStands) planned_ = revision_;
    if ((seen.recording && !seen_.recording) || moved) since_ = seen.minute;
    const Seen before = std::exchange(seen_, seen);
    if (moved) dataFolder_ = dataFolder;
    const auto today = std::chrono::floor<std::chrono::days>(now);
    if (today != today_.folder.day() || moved) {
        turn(today);
    } else if (seen.schedule != before.schedule || seen.schedules != before.schedules) {
        findDue();
    }
}

/// Whether `seen` differs by a later minute only, before which no due one came to its end: nothing
/// in the plan changes then. While recording is off nobody knows which is next.
bool DayWatch::isOnlyLater(const Seen& seen) const {
    Seen later = seen_;
    later.minute = seen.minute;
    if (seen != later || seen.minute < seen_.minute || !seen.recording) return false;
    const auto minute = static_cast<int>(seen.minute % kDayMinutes);
    return !plan_.nextIsToday || *plan_.next + seen.delay >= minute;
}

/// A clock that is put forward skips the minutes between; one that is set back has them come again,
/// and what is missed counts from there. Up to a minute forward skips no whole one. When summer
/// time begins, the jump is found a moment behind the minute's end.
void DayWatch::noteJump(WallTime now) {
    const Ticks ticks = clock_.ticks();
    const WallTime expected = lastTime_ == WallTime() ? now : lastTime_ + (ticks - lastTicks_);
    lastTime_ = now;
    lastTicks_ = ticks;
    if (now <= expected + 1min && now >= expected - kClockError) return;
    const std::int64_t minute = minuteIndex(now);
    const std::int64_t first = minuteIndex(expected - kNoMinute) + 1;
    if (minute > first) {
        neverWere_.emplace_back(first, minute - 1);
    } else if (now < expected) {
        since_ = minute;
        std::erase_if(neverWere_, [=](const auto& range) { return range.first >= minute; });
        if (!neverWere_.empty())
            neverWere_.back().second = std::min(neverWere_.back().second, minute - 1);
    } else {
        return;
    }
    findDue();
}

/// A picture of yesterday still counts when it is looked for since when none has come.
void DayWatch::turn(std::chrono::local_days today) {
    const auto yesterday = today - std::chrono::days(1);
    std::swap(today_, yesterday_);
    yesterday_.turnTo(dataFolder_, yesterday);
    today_.turnTo(dataFolder_, today);
    std::erase_if(neverWere_,
                  [=](const auto& range) { return range.second < firstMinuteOf(yesterday); });
    findDue();
}

void DayWatch::findDue() {
    findDue(today_, seen_.schedule);
    findDue(yesterday_, scheduleOn(yesterday_.folder.day()));
    ++revision_;
}

void DayWatch::findDue(Day& day, const Schedule& schedule) const {
    const std::int64_t begin = firstMinuteOf(day.folder.day());
    const auto now = std::clamp<std::int64_t>(seen_.minute - begin, 0, kDayMinutes);
    day.isDue = day.ledger.dueBy(schedule, static_cast<int>(now));
    for (const auto& [first, last] : neverWere_)
        for (auto minute = std::max(first, begin);
             minute <= std::min(last, begin + kDayMinutes - 1); ++minute)
            day.isDue[static_cast<std::size_t>(minute - begin)] = false;
}

void DayWatch::refresh() {
    follow();
    if (today_.folder.refresh()) ++revision_;
}

const DayPlan& DayWatch::plan() {
    if (planned_ == revision_) return plan_;
    planned_ = revision_;
    ++plans_;
    const DayPictures& pictures = today_.folder.origins();
    const auto tomorrow = today_.folder.day() + std::chrono::days(1);
    plan_ = seen_.recording ? planDay(seen_.schedule, today_.isDue, pictures, minuteOfDay(),
                                      seen_.delay, today_.ledger.watch(), scheduleOn(tomorrow))
                            : planWithoutRecording(pictures, today_.isDue, minuteOfDay(),
                                                   seen_.delay, today_.ledger.watch());
    if (today_.folder.fault()) forgetMissed();
    return plan_;
}

DayPlan DayWatch::yesterdaysPlan() {
    yesterday_.folder.refresh();
    return yesterday_.planPast(scheduleOn(yesterday_.folder.day()), seen_.delay);
}

std::vector<LedgerLine> DayWatch::newLines() {
    plan();
    if (std::exchange(told_, plans_) == plans_) return {};
    std::vector<LedgerLine> lines = newLines(today_, plan());
    if (std::ranges::none_of(lines, isMissed)) return lines;
    refresh(); // somebody else may have put there what seems to be missed
    return newLines(today_, plan());
}

std::vector<LedgerLine> DayWatch::yesterdaysNewLines() {
    yesterday_.folder.refresh();
    if (yesterday_.folder.fault()) return {};
    return newLines(yesterday_, planWithoutRecording(yesterday_.folder.origins(), yesterday_.isDue,
                                                     kDayMinutes, 0, yesterday_.ledger.watch()));
}

std::vector<LedgerLine> DayWatch::newLines(const Day& day, const DayPlan& plan) const {
    std::vector<LedgerLine> lines;
    const auto& told = day.ledger.judged();
    for (std::size_t minute = 0; minute < kDayMinutes; ++minute) {
        const DayState state = plan.states[minute];
        if (state == told[minute] || state == DayState::ToCome || !plan.isDue[minute]) continue;
        const int place = static_cast<int>(minute);
        const FiledPicture* picture = day.pictureOf(plan, place, seen_.delay);
        if (const auto entry = entryOf(state))
            lines.push_back(
                {place, {}, *entry, picture == nullptr ? "" : picture->name.text(), {}});
    }
    return lines;
}

void DayWatch::note(const LedgerLine& line) {
    today_.ledger.apply(line);
    if (line.entry >= LedgerEntry::ProgramStarted) findDue();
}

/// Nobody knows what lies in a folder that cannot be read.
void DayWatch::forgetMissed() {
    for (const DayState state : {DayState::Missed, DayState::Off, DayState::NotRunning})
        std::ranges::replace(plan_.states, state, DayState::NotDue);
    plan_.missed = plan_.notRecorded = plan_.gaps = 0;
    plan_.text = "today's folder cannot be read; see to its access rights";
}

void DayWatch::add(const std::filesystem::path& file) {
    today_.folder.add(file);
    yesterday_.folder.add(file);
    ++revision_;
}

const DayWatch::Day* DayWatch::dayOf(std::int64_t minute) const {
    for (const Day* day : {&today_, &yesterday_}) {
        const std::int64_t begin = firstMinuteOf(day->folder.day());
        if (minute >= begin && minute < begin + kDayMinutes) return day;
    }
    return nullptr;
}

bool DayWatch::isDue(std::int64_t minute) const {
    return dayOf(minute)->isDue[static_cast<std::size_t>(minute % kDayMinutes)];
}

bool DayWatch::isTaken(std::int64_t minute) const {
    const Day& day = *dayOf(minute);
    return captureOf(day.isDue, day.folder.origins(), static_cast<int>(minute % kDayMinutes),
                     seen_.delay)
        .has_value();
}

Watch DayWatch::watchOf(std::int64_t minute) const {
    return dayOf(minute)->ledger.watch()[static_cast<std::size_t>(minute % kDayMinutes)];
}

bool DayWatch::wasRecorded(std::int64_t minute) const {
    const Watch watch = watchOf(minute);
    return watch != Watch::Off && watch != Watch::NotRunning;
}

/// The due minutes without a capture after the newest one, and the first two of them. What was
/// before `since_` counts only when a ledger tells that it was recorded.
DayWatch::Missed DayWatch::missedBetween(std::int64_t begin, std::int64_t end) const {
    Missed missed;
    for (std::int64_t minute = end - 1; minute >= begin && dayOf(minute) != nullptr; --minute) {
        if (!isDue(minute)) continue;
        if (isTaken(minute)) {
            missed.taken = minute;
            break;
        }
        if (!isOver(minute) || !wasRecorded(minute)) continue;
        if (minute < since_ && watchOf(minute) != Watch::Recording) continue;
        missed.second = std::exchange(missed.first, minute);
        ++missed.count;
    }
    return missed;
}

/// Yesterday's folder has been read only when it was today's.
DayWatch::Missed DayWatch::outageBefore(std::int64_t end) const {
    return missedBetween(std::min(since_, firstMinuteOf(today_.folder.day())), end);
}

std::string DayWatch::missedWarning() {
    plan();
    if (!seen_.recording || unmissed_ == plans_) return {};
    if (missedInARow().count < 2) {
        unmissed_ = plans_;
        return {};
    }
    refresh(); // somebody else may have put them there
    const Missed missed = missedInARow();
    if (missed.count < 2) return {};
    return "No image at " + hourMinute(momentOf(missed.first)) + " and " +
           hourMinute(momentOf(missed.second)) + ". Please check the camera.";
}

bool DayWatch::isOverdue(WallTime taken) const {
    if (!seen_.recording) return false;
    int missing = 0;
    const std::int64_t last = std::max(minuteIndex(taken), seen_.minute - kDayMinutes);
    for (std::int64_t minute = seen_.minute - 1;
         minute > last && dayOf(minute) != nullptr && missing < 2; --minute)
        missing += isDue(minute) && isOver(minute) && wasRecorded(minute) && !isTaken(minute);
    return missing >= 2;
}

} // namespace orvane
