#pragma once

#include "archive/DayPlan.h"
#include "station/Warnings.h"

#include <string>
#include <vector>

namespace orvane {

// What the station's mails say.

/// The subject and the text of a mail.
struct AlertText {
    std::string subject;
    std::string text;
};

/// How the station stands, as mails tell it below their news.
struct StationFigures {
    std::string day;       ///< the day's plan in words
    std::string disk;      ///< "123.4 GB free, about 210 days"; may be empty
    std::string picture{}; ///< the newest one's name; may be empty
    bool recording = false;
    std::vector<Warnings::Standing> warnings{}; ///< all that stand
};

/// A warning that stands, with what to do about it.
AlertText warningText(Warnings::Cause cause, const Warnings::Standing& warning,
                      const StationFigures& figures);
/// One that has gone.
AlertText overText(const Warnings::Standing& warning, WallTime gone, const StationFigures& figures);
/// What became of a day. All is well when every due picture is there, recording is on and nothing
/// warns.
AlertText dayText(std::chrono::local_days day, const DayPlan& plan, const StationFigures& figures);
/// One that only shows that mails arrive.
AlertText testText(const StationFigures& figures);

} // namespace orvane
