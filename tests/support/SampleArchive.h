#pragma once

#include "tests/support/SampleStory.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>

namespace orvane::test {

/// What really became of a minute. A picture of a minute that is not due is beside the schedule.
enum class Truth : std::uint8_t { Nothing, Taken, Fetched, Missed, Off, NotRunning };

struct SampleMinute {
    bool isDue = false;
    Truth truth = Truth::Nothing;
    Truth bySize = Truth::Nothing; ///< to somebody who looks at names and sizes only
    std::string detail;            ///< the picture's name, or why it was missed
    std::string reason;            ///< of a miss, also when the picture was fetched later
};

struct SampleDay {
    std::chrono::local_days date{};
    std::string digits;                       ///< "20061115", also the folder's name
    std::array<SampleMinute, 1440> minutes{}; ///< of the day
    std::set<std::string> filed;              ///< what the program put into the folder
    std::set<std::string> pictures;           ///< the whole ones that are there in the end
    std::string ledger;                       ///< as the program wrote it; empty: there is none

    int due() const;
    /// How many due minutes there are of that kind.
    int count(Truth truth) const;
    int countBySize(Truth truth) const;
};

/// An archive as a station leaves it behind that had everything happen to it: the story of 60 days
/// (`SampleStory`) is played minute by minute, and what it leaves is written. It shares no code
/// with the station, so that what it knows about each minute can be held against the station's
/// judgement.
class SampleArchive {
  public:
    /// Puts a picture of a minute of the day there; the folder exists.
    using Paint = std::function<void(const std::filesystem::path& file, int minute)>;
    static constexpr int kWholeDay = 1440;

    /// Writes into `folder`, which exists. The last day ends with minute `until`.
    SampleArchive(const std::filesystem::path& folder, std::chrono::local_days lastDay,
                  const Paint& paint, int until = kWholeDay);

    const std::vector<SampleDay>& days() const { return days_; }
    const SampleDay& day(int number) const { return days_[static_cast<std::size_t>(number)]; }

    /// Writes the same small picture for each minute: grey, 64 by 48.
    static void paintGrey(const std::filesystem::path& file, int minute);

  private:
    void writeDay(int number, const Paint& paint);
    void writeLedger(int number) const;
    void harmPicture(const SampleHarm& harm);
    void addExtra(const SampleExtra& extra, const Paint& paint);

    std::filesystem::path folder_;
    std::vector<SampleDay> days_;
};

} // namespace orvane::test
