#pragma once

#include "archive/ArchiveDay.h"
#include "archive/SpanWork.h"
#include "station/DaySchedules.h"

namespace orvane {

/// Writes how complete some days are as a table: CSV as RFC 4180 has it, in UTF-8, with a header
/// and a line for each day. The days are judged by the files in the dated folders and by the days'
/// ledgers; without one, by the schedule that stands on the panel when the work begins. The file is
/// written whole, at the end, or not at all.
///
///     date,due,taken,fetched,missed,first,last,note
///     2006/11/15,144,140,3,1,06:00:00,17:55:00,
///
/// `taken`, `fetched` and `missed` count due minutes; `first` and `last` are the times of the day's
/// first and last picture of any kind; the note counts the due minutes in which nobody recorded. A
/// folder that cannot be read has none of these, and the reason as its note.
class DayReport final : public SpanWork {
  public:
    /// `module` and `schedules` outlive it.
    DayReport(Parts parts, const Module1& module, const DaySchedules& schedules)
        : SpanWork("DayReport", parts), module_(module), schedules_(schedules) {}

    /// Replaces `target` if it exists. Nothing happens while it is running.
    void start(DaySpan span, const std::filesystem::path& target);

  private:
    Task<Fault> workOn(std::chrono::local_days day) override;
    Task<Fault> finish() override;
    std::string outcome() const override;
    std::string line(const ArchiveDay& day) const;
    int minuteUnderWay(std::chrono::local_days day) const;

    const Module1& module_;
    const DaySchedules& schedules_;
    std::filesystem::path target_;
    DaySchedules::Rule rule_;
    int delay_ = 0; ///< whole minutes
    std::string table_;
    int unread_ = 0; ///< days
    bool written_ = false;
};

} // namespace orvane
