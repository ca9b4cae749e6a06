#pragma once

#include "archive/DayWatch.h"
#include "archive/DiskWatch.h"
#include "core/DailyClocks.h"

namespace orvane {

/// The station's state as one JSON object, for whoever looks from elsewhere. docs/status.md tells
/// of each field. All that is figures comes from where the windows have it.
class StatusText {
  public:
    /// What it tells of; all of it outlives this.
    struct Parts {
        const Module1& module;
        const OperationPanel& panel; ///< for the data folder in use
        DayWatch& days;
        DiskWatch& disk;
        const Warnings& warnings;
        const DailyClocks& clocks;
        const Clock& clock;
        std::string version;
        std::function<std::chrono::minutes()> offset; ///< of the local time from universal time
    };
    enum class State : std::uint8_t { Recording, Stopped, Ended };

    /// The station has begun to work now.
    explicit StatusText(Parts parts) : parts_(std::move(parts)), started_(parts_.clock.now()) {}

    /// As of now. `latestCopy`: the picture that latest.jpg is a copy of; empty: there is none.
    std::string write(State state, const std::filesystem::path& latestCopy);
    /// The newest capture, also that of an earlier start; empty: none is known.
    const std::filesystem::path& lastPicture();

  private:
    std::string time(WallTime moment) const { return isoTime(moment, offset_); }
    std::string lastPictureObject();
    std::string lastAttempt() const;
    std::string schedule() const;
    std::string today() const;
    std::string nextDue() const;
    std::string warnings() const;
    std::string disk() const;
    std::string sun();
    std::string clocks() const;

    Parts parts_;
    WallTime started_;
    WallTime now_{}; ///< of the text that is being written
    std::chrono::minutes offset_{};
    std::filesystem::path found_;    ///< the newest capture that was found in `searched_`
    std::filesystem::path searched_; ///< a data folder
    std::chrono::local_days sunDay_{};
    std::optional<SiteValues> sunSite_;
    std::optional<SunDay> sun_;
};

} // namespace orvane
