#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace samplearchive {

/// A recording window and interval, in minutes of the day; `end` is not part of it.
struct SampleSchedule {
    int first = 0;
    int end = 0;
    int every = 1;
};

/// Every ten minutes from 6 to 18: in force at the end of the story, and on most of its days.
inline constexpr SampleSchedule kSampleSchedule{6 * 60, 18 * 60, 10};
inline constexpr int kSampleDays = 60;

/// What happens to a station. All but the clock's changes happen in the middle of their minute,
/// when a capture of that minute is done.
enum class Happens {
    Start,    ///< the program, and it records
    StartOff, ///< the program, and the operator does not let it record
    End,      ///< the program
    Kill,     ///< the program; it cannot write anything
    On,       ///< recording, with `schedule`
    Off,
    Fails,   ///< each fetch from now on, with `text`
    Works,   ///< the camera again
    Late,    ///< the pictures come `number` minutes late from now on
    Fill,    ///< the camera's store answers again, and holds each `number`th minute
    Forward, ///< the clock is put forward by an hour as the minute begins
    Back     ///< the clock is put back by an hour as the minute begins
};

struct SampleEvent {
    int day = 0;    ///< of the story
    int minute = 0; ///< of that day
    Happens what = Happens::Start;
    const char* text = "";
    int number = 0;
    SampleSchedule schedule = kSampleSchedule;
};

/// In the order in which it happens.
const std::vector<SampleEvent>& sampleStory();

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

    SampleMinute& at(int minute) { return minutes[static_cast<std::size_t>(minute)]; }
    int due() const;
    /// How many due minutes there are of that kind.
    int count(Truth truth) const;
    int countBySize(Truth truth) const;
};

/// "07".
std::string sampleDigits(int number);
/// Plays the story, minute by minute, into the days, up to minute `until` of the last one.
void playSampleStory(std::vector<SampleDay>& days, int until);

/// An archive as a station leaves it behind that had everything happen to it: the story of 60 days
/// is played, and what it leaves is written. It shares no code with the station, so that what it
/// knows about each minute can be held against the station's judgement.
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
    std::vector<SampleDay> days_;
};

} // namespace samplearchive
