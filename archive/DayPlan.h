#pragma once

#include "station/Schedule.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// How the picture of a minute came into the data folder.
enum class PictureOrigin : std::uint8_t {
    None,   ///< there is none
    Taken,  ///< captured in its minute
    Fetched ///< fetched from the camera's store
};
/// What a day's dated folder holds. Index: minute of the day, 0 to 1439.
using DayPictures = std::array<PictureOrigin, kDayMinutes>;
/// The minutes of a day in which a capture is due.
using DueMinutes = std::array<bool, kDayMinutes>;

DueMinutes dueMinutes(const Schedule& schedule);

/// The minute of the capture that belongs to due minute `due`; nothing while there is none. A
/// capture is named after the moment of its copy, which `delay` (whole minutes) and a repeated
/// fetch move beyond the due minute: so it is the one that follows closely, before the next due
/// minute.
std::optional<int> captureOf(const DueMinutes& isDue, const DayPictures& pictures, int due,
                             int delay);

/// Whether somebody recorded in a minute, as far as the day's ledger tells.
enum class Watch : std::uint8_t { Unknown, Recording, Off, NotRunning };
/// Index: minute of the day, 0 to 1439.
using WatchMinutes = std::array<Watch, kDayMinutes>;

/// What there is to say about one minute of a day. A due minute without a picture was missed only
/// when somebody recorded: else recording was off, or the program was not running.
enum class DayState : std::uint8_t { NotDue, Taken, Missed, Fetched, ToCome, Off, NotRunning };
inline constexpr std::size_t kDayStates = 7;

/// Whether the camera's store may be asked for the minute's picture. Of a minute in which recording
/// was switched off nobody wants one.
inline bool isGap(DayState state) {
    return state == DayState::Missed || state == DayState::NotRunning;
}

/// A day's due minutes and what became of them: the one judgement from which the warnings, the
/// filling of gaps and the drawing of the day follow. It comes from the schedule, the day's files
/// and its ledger, so it is the same after a restart. What no ledger tells of counts as recorded. A
/// picture outside the due minutes keeps its state but is not counted.
///
/// While recording is off nobody expects a picture: nothing is to come, and of the past only what a
/// ledger tells of is due.
struct DayPlan {
    std::array<DayState, kDayMinutes> states{}; ///< by minute of the day
    DueMinutes isDue{};
    int due = 0; ///< minutes of the whole day; the next four count these only
    int taken = 0;
    int fetched = 0;
    int missed = 0;
    int notRecorded = 0;      ///< recording was off, or the program not running
    int gaps = 0;             ///< `isGap`
    std::optional<int> next;  ///< minute of the next capture; nothing when no minute is due
    bool nextIsToday = false; ///< else `next` is tomorrow's
    std::optional<int> begin; ///< first minute of the recording window; nothing while it is off
    std::optional<int> end;   ///< the minute that ends it
    std::string text;         ///< "taken 12 of 17, next at 14:30, 2 fetched later, 3 missed"
};

/// Judges a day in which minute `now` is under way and recording is on. A due minute without a
/// picture is still to come until it and the whole minutes of `delay` are over. `tomorrow` is the
/// next day's schedule; by default the same.
DayPlan planDay(const Schedule& schedule, const DueMinutes& isDue, const DayPictures& pictures,
                int now, int delay, const WatchMinutes& watch = {},
                const std::optional<Schedule>& tomorrow = {});
/// The same while recording is off.
DayPlan planWithoutRecording(const DayPictures& pictures, const DueMinutes& isDue = {}, int now = 0,
                             int delay = 0, const WatchMinutes& watch = {});
/// Judges a day that is over: nothing is to come. Its window reaches from the first due minute to
/// the last.
DayPlan planPastDay(const DueMinutes& isDue, const DayPictures& pictures, int delay,
                    const WatchMinutes& watch);

/// "09:30" for minute 570 of the day; 1440 is "24:00".
std::string minuteText(int minuteOfDay);

} // namespace orvane
