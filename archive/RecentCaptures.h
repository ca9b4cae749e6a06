#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <string_view>

namespace orvane {

/// The last ten captures, to know a picture that comes again: noise and the burnt-in time make two
/// real pictures of a camera differ, and a camera that hangs keeps sending old ones. After a start
/// they are those on the disk.
class RecentCaptures {
  public:
    static constexpr std::size_t kCount = 10;

    explicit RecentCaptures(Clock& clock) : clock_(clock) {}

    /// Reads the newest captures below `dataFolder`, once for the program's run. `this` outlives
    /// the task.
    Task<> recall(std::filesystem::path dataFolder);
    void add(std::string_view bytes);
    bool holds(std::string_view bytes) const;

  private:
    struct Digest {
        std::size_t size;
        std::size_t hash;

        bool operator==(const Digest&) const = default;
    };
    static Digest digestOf(std::string_view bytes);

    Clock& clock_;
    bool recalled_ = false;
    std::deque<Digest> newest_; ///< newest first
};

} // namespace orvane
