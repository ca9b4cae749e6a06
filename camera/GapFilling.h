#pragma once

#include "camera/PageLoader.h"
#include "core/Station.h"

#include <cstdint>
#include <map>
#include <vector>

namespace orvane {

/// Fetches the pictures of missed minutes from the camera's own store: each due minute of today
/// that is over and has no picture in the data folder is asked for, oldest first, one request at a
/// time. What comes is filed and processed as a capture is, under the camera's own name.
///
/// It stands back for everything else: it starts only while nothing else is in progress, and a
/// capture that begins cuts its request off. A minute that the camera does not hold is asked for
/// twice at most; a camera that does not answer is asked again a minute later.
class GapFilling {
  public:
    explicit GapFilling(Station& station);

    /// Starts the next round when there is something to do; cheap when there is not. Not to be
    /// called while a due minute waits for its picture.
    void step(WallTime now);
    /// A capture begins: ends the request that is under way.
    void standBack();
    /// A due minute went by without a picture, or the files or the schedule have changed.
    void lookAgain() { look_ = true; }
    bool filling() const { return !round_.done(); }

  private:
    enum class Outcome {
        Filled,
        NotHeld,  ///< the camera answers, but not with a picture of that minute
        NotWhole, ///< the transfer of the picture failed
        NoAnswer, ///< to the search
        StoodBack,
        CannotFile
    };
    struct Asked {
        int times = 0;
        Ticks last{0};
    };

    bool wanted() const;
    std::vector<std::int64_t> gaps(WallTime now);
    Task<> round(std::vector<std::int64_t> minutes);
    Task<> fillAll(std::vector<std::int64_t> minutes);
    Task<Outcome> fill(std::int64_t minute);
    static std::string pathOf(std::string_view reply, std::int64_t minute);
    void note(std::int64_t minute, Outcome outcome);
    Task<Outcome> file(std::string name, std::string picture);
    void show(const std::filesystem::path& image);

    Station& station_;
    PageLoader pages_;
    Task<> round_;
    std::map<std::int64_t, Asked> asked_; ///< today's minutes that the camera did not hold
    std::chrono::local_days day_{};
    Schedule schedule_;
    std::filesystem::path folder_;
    bool look_ = true;
    bool stoodBack_ = false;
    Ticks nextRound_{0};
};

} // namespace orvane
