#pragma once

#include "tests/support/SampleArchive.h"

namespace orvane::test {

/// Plays the story, minute by minute, into the days.
class SampleWalk {
  public:
    explicit SampleWalk(std::vector<SampleDay>& days) : days_(days) {}

    /// Up to minute `until` of the last day.
    void run(int until);

  private:
    void playDay(int until);
    void playMinute();
    void judgeMinute();
    void happen(const SampleEvent& event);
    void startProgram(bool recording);
    void switchOn(const SampleSchedule& schedule);
    void noteSwitches(bool all);
    void beginMinute();
    void capture();
    void fill(int every);
    void tellJudgements();
    void write(int minute, const std::string& event, const std::string& file = {},
               const std::string& detail = {});
    bool eventIsNext(bool clock) const;
    SampleMinute& at(int minute) { return today().minutes[static_cast<std::size_t>(minute)]; }
    SampleDay& today() { return days_[static_cast<std::size_t>(day_)]; }

    std::vector<SampleDay>& days_;
    std::size_t next_ = 0; ///< event
    int day_ = 0;
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

} // namespace orvane::test
