#include "archive/LedgerKeeper.h"

#include <utility>

namespace orvane {

namespace {

/// Days of a full disk with a picture every minute.
constexpr std::size_t kMostUnwritten = 256 << 10;
constexpr const char* kNoAttempt = "no attempt is known";

} // namespace

void LedgerKeeper::follow() {
    if (program_ == Program::Ended) return;
    followOffset();
    const std::size_t before = unwritten_.size();
    const std::filesystem::path& dataFolder = parts_.panel.Dir1[0].path;
    const bool isNew =
        parts_.days.folder().day() != day_ || dataFolder.native() != dataFolder_.native();
    if (isNew) turnTo(dataFolder);
    if (std::exchange(program_, Program::Runs) == Program::NotStarted)
        note(LedgerEntry::ProgramStarted);
    noteSwitches(isNew);
    noteJudged(parts_.days.newLines(), true);
    if (unwritten_.size() != before) write();
}

void LedgerKeeper::noteFailure(std::int64_t dueMinute, const std::string& reason) {
    failures_[dueMinute] = reason;
}

void LedgerKeeper::end() {
    if (std::exchange(program_, Program::Ended) != Program::Runs) return;
    followOffset();
    note(LedgerEntry::ProgramEnded);
    write();
}

/// At midnight yesterday is brought to its end. What cannot be written now is lost.
void LedgerKeeper::turnTo(const std::filesystem::path& dataFolder) {
    const auto today = parts_.days.folder().day();
    if (dataFolder == dataFolder_ && day_ + std::chrono::days(1) == today)
        noteJudged(parts_.days.yesterdaysNewLines(), false);
    write();
    unwritten_.clear();
    std::erase_if(failures_, [first = minuteIndex(WallTime(today))](const auto& failure) {
        return failure.first < first;
    });
    day_ = today;
    dataFolder_ = dataFolder;
    file_ = ledgerOf(dataFolder, today);
    mended_ = false;
}

/// What is in force: `all` of it, or only what has changed. A schedule is in force while recording
/// is on.
void LedgerKeeper::noteSwitches(bool all) {
    const bool recording = parts_.module.RecordFlg;
    const bool switched = recording != recording_;
    recording_ = recording;
    if (recording) {
        Schedule schedule = parts_.module.schedule;
        schedule.NextRecTime = {};
        if (all || schedule != schedule_) note(LedgerEntry::Schedule, scheduleText(schedule));
        schedule_ = schedule;
    }
    if (all || switched) note(recording ? LedgerEntry::RecordingOn : LedgerEntry::RecordingOff);
}

void LedgerKeeper::noteJudged(std::vector<LedgerLine> lines, bool isToday) {
    const std::int64_t first = minuteIndex(WallTime(isToday ? parts_.days.folder().day() : day_));
    for (LedgerLine& line : lines) {
        line.offset = offsetOf(first + line.minute);
        if (line.entry == LedgerEntry::Missed) {
            const auto failure = failures_.find(first + line.minute);
            line.detail = failure == failures_.end() ? kNoAttempt : failure->second;
        }
        unwritten_ += ledgerText(line) + "\r\n";
        if (isToday) parts_.days.note(line);
    }
}

void LedgerKeeper::note(LedgerEntry entry, std::string detail) {
    const LedgerLine line{minuteOfDay(parts_.clock.now()), offset_, entry, {}, std::move(detail)};
    unwritten_ += ledgerText(line) + "\r\n";
    parts_.days.note(line);
}

void LedgerKeeper::followOffset() {
    const auto offset = parts_.offset();
    if (offset == offset_ && program_ != Program::NotStarted) return;
    offsetBefore_ = program_ == Program::NotStarted ? offset : offset_;
    offset_ = offset;
    offsetSince_ = minuteIndex(parts_.clock.now());
}

/// A minute is judged when it is over, and the offset may have changed since; the clock is put back
/// then at the end of summer time.
std::chrono::minutes LedgerKeeper::offsetOf(std::int64_t minute) const {
    const bool isOld = minute < offsetSince_ || minute > minuteIndex(parts_.clock.now());
    return isOld ? offsetBefore_ : offset_;
}

/// Once each time that there is something new: a disk that is full is not asked on and on.
void LedgerKeeper::write() {
    if (unwritten_.empty()) return;
    Fault fault = mended_ ? std::nullopt : mendLedger(file_);
    if (!fault) fault = appendToLedger(file_, unwritten_);
    mended_ = !fault;
    if (!fault) {
        unwritten_.clear();
        told_ = false;
        return;
    }
    if (unwritten_.size() > kMostUnwritten)
        unwritten_.erase(0, unwritten_.find('\n', unwritten_.size() - kMostUnwritten) + 1);
    std::error_code error;
    const bool hasData = std::filesystem::is_directory(dataFolder_, error);
    if (hasData && !std::exchange(told_, true))
        parts_.log.write("The day's ledger cannot be written: " + *fault);
}

} // namespace orvane
