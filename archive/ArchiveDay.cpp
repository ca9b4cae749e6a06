#include "archive/ArchiveDay.h"

#include <algorithm>

namespace orvane {

void ArchiveDay::turnTo(const std::filesystem::path& dataFolder, std::chrono::local_days day) {
    folder.turnTo(datedFolderOf(dataFolder, WallTime(day)), day);
    ledger = readLedger(ledgerOf(dataFolder, day));
    wasAway = ledger.isEmpty() && wasProgramAway(dataFolder, day);
}

DayPlan ArchiveDay::plan(const Schedule& present, int now, int delay) const {
    return planDay(present, ledger.dueBy(present, now), folder.origins(), now, delay,
                   ledger.watch());
}

DayPlan ArchiveDay::planPast(const Schedule& present, int delay) const {
    WatchMinutes watch = ledger.watchOfPast();
    if (wasAway) watch.fill(Watch::NotRunning);
    return planPastDay(ledger.dueBy(present, kDayMinutes), folder.origins(), delay, watch);
}

const FiledPicture* ArchiveDay::pictureOf(const DayPlan& plan, int minute, int delay) const {
    const DayState state = plan.states[static_cast<std::size_t>(minute)];
    const bool captured = state == DayState::Taken;
    if (!captured && state != DayState::Fetched) return nullptr;
    const DayPictures& origins = folder.origins();
    if (captured) minute = captureOf(plan.isDue, origins, minute, delay).value_or(minute);
    const std::int64_t sought = minuteIndex(WallTime(folder.day())) + minute;
    const auto& pictures = folder.pictures();
    auto picture = std::ranges::lower_bound(pictures, sought, {},
                                            [](const auto& entry) { return entry.name.minute(); });
    for (; picture != pictures.end() && picture->name.minute() == sought; ++picture)
        if (picture->name.isCapture() == captured) return &*picture;
    return nullptr;
}

std::string ArchiveDay::detailOf(const DayPlan& plan, int minute, int delay) const {
    if (plan.states[static_cast<std::size_t>(minute)] == DayState::Missed)
        return ledger.reasonOf(minute);
    const FiledPicture* picture = pictureOf(plan, minute, delay);
    return picture == nullptr ? std::string() : picture->name.text();
}

} // namespace orvane
