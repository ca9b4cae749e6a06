#pragma once

#include "archive/DayFolder.h"
#include "archive/Ledger.h"

namespace orvane {

/// One day of the archive, whichever it is: what its dated folder holds, what its ledger tells, and
/// the judgement that follows from both.
struct ArchiveDay {
    explicit ArchiveDay(const DayFolder::Reader& reader = listDay) : folder(reader) {}

    /// Stands for that day of `dataFolder` from now on. Reads its ledger, but no pictures yet.
    void turnTo(const std::filesystem::path& dataFolder, std::chrono::local_days day);

    /// Judges the day on which it is minute `now` while recording is on. `present` is the schedule
    /// that is in force now, and counts where no ledger tells of another; `delay` in whole minutes.
    DayPlan plan(const Schedule& present, int now, int delay) const;
    /// Judges the day as one that is over: nothing is to come, and when the ledger breaks off, the
    /// program did not run from there on.
    DayPlan planPast(const Schedule& present, int delay) const;

    /// The picture that minute `minute` of `plan` is judged by; null when there is none.
    const FiledPicture* pictureOf(const DayPlan& plan, int minute, int delay) const;
    /// The name of that picture, or why the minute was missed; else empty.
    std::string detailOf(const DayPlan& plan, int minute, int delay) const;

    DayFolder folder;
    LedgerDay ledger{};
    /// No ledger was begun, and the next one tells that the program had not been running.
    bool wasAway = false;
};

} // namespace orvane
