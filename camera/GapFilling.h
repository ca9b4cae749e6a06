#pragma once

#include "archive/PictureArchive.h"
#include "platform/HttpTransfer.h"
#include "station/Busy.h"
#include "station/Faults.h"

#include <cstdint>
#include <map>
#include <vector>

namespace orvane {

/// Fetches the pictures of missed minutes from the camera's own store: each due minute of today
/// that is over and has no picture in the data folder is asked for, oldest first, one request at a
/// time; also those in which the program was not running, but not those with recording off. What
/// comes is filed under its own name.
///
/// It stands back for everything else: it starts only while nothing else is in progress, and a
/// capture that begins cuts its request off. A minute is asked for at most once a minute, and twice
/// at most once the camera has answered, whatever came of it; a camera that does not answer a
/// search, or with something else than a list, is asked again a minute later. Nothing is filled
/// while the day's folder cannot be read.
class GapFilling {
  public:
    /// What it works with; all of it outlives this.
    struct Parts {
        const Module1& module;
        const OperationPanel& panel;
        DayWatch& days;
        PictureArchive& archive;
        HttpTransfer& pages;    ///< for this alone
        HttpTransfer& transfer; ///< so is this
        ErrorLog& log;
        Faults& faults;
        Clock& clock;
        Busy& busy;
    };

    explicit GapFilling(Parts parts) : parts_(parts) {}

    /// Starts the next round when there is something to do; cheap when there is not. Not to be
    /// called while a due minute waits for its picture.
    void step();
    /// A capture begins: ends the request that is under way.
    void standBack();
    bool filling() const { return !round_.done(); }

  private:
    enum class Outcome {
        Filed,
        NotHeld, ///< the camera answered, but brought no picture of that minute
        NoAnswer,
        StoodBack,
        CannotFile
    };
    struct Asked {
        int answers = 0;
        Ticks next{0}; ///< not to be asked again before
    };
    using Minute = std::int64_t; ///< as `minuteIndex` counts

    bool wanted() const;
    std::vector<Minute> gaps();
    Task<> round(std::vector<Minute> minutes);
    Task<Outcome> fill(Minute minute);
    Task<Outcome> fetch(std::string path);
    static std::string pathOf(std::string_view reply, Minute minute);
    void note(Minute minute, Outcome outcome);
    void giveUp(Minute minute);

    Parts parts_;
    Task<bool> round_;
    std::map<Minute, Asked> asked_; ///< of the day and folder that were looked at last
    std::filesystem::path folder_;
    std::int64_t seen_ = -1; ///< the days' revision at the last look
    Ticks nextLook_{0};      ///< when there is something to be asked again
    Ticks nextRound_{0};     ///< not before, after a fault
    bool stoodBack_ = false;
};

} // namespace orvane
