#pragma once

#include "station/Module1.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

/// Notices due minutes that brought no image. A minute is judged when it is over; a clock that is
/// set back, or forward by more than a day, starts the judgement anew.
class DueWatch {
  public:
    /// An image was filed for the due minute `minute` (as `minuteIndex` counts).
    void filed(std::int64_t minute);
    /// Whether an image has been filed for this minute already.
    bool isFiled(std::int64_t minute) const { return lastFiled_ == minute; }
    /// Judges every minute before `now` that has not been judged. Cheap within one minute.
    void advance(WallTime now, const Schedule& schedule);
    /// Forgets everything; recording is off.
    void reset();
    /// How many due minutes were judged to have brought no image since recording was switched on.
    std::int64_t missedInAll() const { return missedInAll_; }
    /// The warning since two due minutes in a row brought no image, else empty.
    const std::string& warning() const { return warning_; }

  private:
    void judge(std::int64_t minute, const Schedule& schedule);

    std::int64_t next_ = 0; ///< first minute not judged yet, 0 before the first call
    std::optional<std::int64_t> lastFiled_;
    std::int64_t firstMissed_ = 0;
    int missed_ = 0;
    std::int64_t missedInAll_ = 0;
    std::string warning_;
};

} // namespace orvane
