#pragma once

#include "archive/DayWatch.h"
#include "core/Causes.h"
#include "station/RepeatingTimer.h"

#include <map>

namespace orvane {

/// Something that the operator should know until it is over, or that it is.
struct Notice {
    Grade grade = Grade::Attention; ///< `Well`: it is over
    std::string text{};             ///< what, and since when
    std::string advice{};           ///< what to do; empty when it is over
    Remedy remedy = Remedy::None;
    bool isLocked = false; ///< the remedy is to be had only while recording is off

    bool operator==(const Notice&) const = default;
};

/// How the station is doing, as its main window tells it: in the title, by the sign beside the
/// status, in the banner. All of it follows from the warnings, the day's watch and the last
/// attempts, which are looked at once a second, whatever else goes on. What is over is told for ten
/// minutes, or until the operator closes it or it comes again.
class Condition {
  public:
    static constexpr Ticks kToldFor = 10min;

    /// What it follows; all of it outlives this.
    struct Parts {
        const Module1& module;
        OperationPanel& panel; ///< its sign and the last fault are set
        const Warnings& warnings;
        DayWatch& days;
        Clock& clock;
    };

    Condition(Parts parts, Faults& faults);

    /// From the end of the start-up on.
    void begin() { timer_.enable(); }
    /// The operator has taken note of what is over.
    void closeOver();

    Value<std::string> title{"Orvane"};
    Value<std::vector<Notice>> notices; ///< trouble first, then what is over, then the rest
    Value<int> begun;                   ///< how many warnings have come up

  private:
    /// What is looked at for a change.
    struct Seen {
        std::int64_t revision = -1; ///< of the day's watch, which grows with each minute
        std::string warnings;
        bool recording = false;
        bool folderLocked = false;
        WallTime attempt{};
        WallTime run{};

        bool operator==(const Seen&) const = default;
    };
    struct Over {
        std::string text;
        Ticks until;
    };

    void follow();
    Seen see() const;
    bool stands(Warnings::Cause cause) const;
    void noteChanges();
    std::string overText(Warnings::Cause cause, const std::string& was) const;
    std::string arrivalText() const;
    void tell();
    void tellStatus();
    Notice noticeOf(const CauseWords& words) const;
    std::string noImageText() const;
    std::string inShortNow(Warnings::Cause cause) const;
    std::string lastFault() const;
    std::string when(WallTime time) const;

    Parts parts_;
    RepeatingTimer timer_;
    Seen seen_;
    DayWatch::Missed outage_;                         ///< while images are missing
    std::map<Warnings::Cause, std::string> standing_; ///< in short, as of the last look
    std::map<Warnings::Cause, Over> over_;
};

} // namespace orvane
