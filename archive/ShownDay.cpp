#include "archive/ShownDay.h"

#include <algorithm>

namespace orvane {

void ShownDay::turnTo(std::chrono::local_days day) {
    parts_.days.refresh();
    reading_.reset();
    keogram_.reset();
    isReading_ = false;
    ++changes_;
    const std::filesystem::path& dataFolder = parts_.panel.Dir1[0].path;
    if (std::exchange(dataFolder_, dataFolder).native() != dataFolder.native()) changed_ = {};
    findFirst();
    day = std::max(day, first_);
    past_.reset();
    if (day >= today()) return;
    past_.emplace().turnTo(dataFolder_, day);
    isReading_ = true;
    reading_ = read();
    reading_.start();
}

Task<> ShownDay::read() {
    const auto turn = [this](std::size_t, std::size_t) { return pause(); };
    Task<bool> reading =
        parts_.faults.run("ShownDay", past_->folder.read(DayFolder::Look::Whole, turn));
    co_await reading;
    isReading_ = false;
    ++changes_;
}

Task<> ShownDay::pause() {
    co_await parts_.clock.yield();
}

void ShownDay::refresh() {
    parts_.days.refresh();
    const bool moved = dataFolder_.native() != parts_.panel.Dir1[0].path.get().native();
    if (moved || (past_ && past_->folder.day() >= today())) {
        turnTo(today());
    } else if (past_ && !isReading_ && past_->folder.refresh()) {
        ++changes_;
    }
    findFirst();
    followKeogram();
}

/// Looks through the data folder's names when something in it has changed.
void ShownDay::findFirst() {
    const auto changed = changeTime(dataFolder_);
    if (std::exchange(changed_, changed) == changed && !lookAgain_) return;
    lookAgain_ = mayHideChange(changed);
    first_ = firstDayOf(dataFolder_).value_or(today());
    ++changes_;
}

void ShownDay::followKeogram() {
    if (!keogramWanted_ || isReading_ || !keogram_.done()) return;
    if (parts_.keograms.isComplete(pictures())) return;
    keogram_ = readKeogram();
    keogram_.start();
}

Task<> ShownDay::readKeogram() {
    Task<bool> reading = parts_.faults.run("Keogram", parts_.keograms.read(pictures()));
    co_await reading;
}

Pixels ShownDay::keogram() {
    return parts_.keograms.draw(day(), pictures(), plan().isDue);
}

const DayPlan& ShownDay::plan() {
    if (!past_) return parts_.days.plan();
    if (planned_ == revision()) return plan_;
    planned_ = revision();
    if (isReading_) {
        plan_ = DayPlan();
        plan_.text = "reading the day's folder...";
    } else if (past_->folder.fault()) {
        plan_ = DayPlan();
        plan_.text = "the day's folder cannot be read: " + *past_->folder.fault() +
                     "; see to its access rights";
    } else {
        plan_ = past_->planPast(parts_.days.scheduleOn(day()), parts_.days.delay());
    }
    return plan_;
}

std::optional<int> ShownDay::now() const {
    if (past_) return std::nullopt;
    return parts_.days.minuteOfDay();
}

std::filesystem::path ShownDay::pictureOf(int minute) {
    const FiledPicture* picture = shown().pictureOf(plan(), minute, parts_.days.delay());
    return picture == nullptr ? std::filesystem::path() : picture->file;
}

std::string ShownDay::detailOf(int minute) {
    return shown().detailOf(plan(), minute, parts_.days.delay());
}

const std::vector<FiledPicture>& ShownDay::pictures() const {
    return shown().folder.pictures();
}

} // namespace orvane
