#pragma once

#include <vector>

namespace orvane::test {

/// A recording window and interval, in minutes of the day; `end` is not part of it.
struct SampleSchedule {
    int first = 0;
    int end = 0;
    int every = 1;

    bool operator==(const SampleSchedule&) const = default;
};

/// Every ten minutes from 6 to 18: in force at the end of the story, and on most of its days.
inline constexpr SampleSchedule kSampleSchedule{6 * 60, 18 * 60, 10};

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

/// What becomes of a file after it was written. The first three leave its name as it is.
enum class Harm { Empty, Cut, Zeros, Tail, Renamed, Removed };

struct SampleHarm {
    int day = 0;
    int minute = 0;
    Harm harm = Harm::Empty;
    const char* text = ""; ///< the new name, or what stands behind the picture's end
};

/// A picture that came into the folder by itself: from a synchronisation, or by hand.
struct SampleExtra {
    int day = 0;
    int nameDay = 0;  ///< that stands in its name
    int minute = 0;   ///< the same
    const char* rest; ///< seconds, and further frame digits: "07_00"
};

/// What becomes of a day's ledger after it was written.
enum class LedgerHarm { Removed, Emptied, Cut, Nonsense };

struct SampleLedgerHarm {
    int day = 0;
    LedgerHarm harm = LedgerHarm::Removed;
};

inline constexpr int kSampleDays = 60;

/// In the order in which it happens.
const std::vector<SampleEvent>& sampleStory();
const std::vector<SampleHarm>& sampleHarms();
const std::vector<SampleExtra>& sampleExtras();
const std::vector<SampleLedgerHarm>& sampleLedgerHarms();

} // namespace orvane::test
