#pragma once

#include "simulators/sun-tracker/SunTracker.h"

#include <QStringList>

namespace suntracker {

struct CommandLine {
    SunTrackerOptions options;
    bool quiet = false;
    /// Set when only this text is wanted.
    QString help;
    /// Set when the options were not understood.
    QString error;
};

/// `arguments` with the program's name first.
CommandLine parseCommandLine(const QStringList& arguments);

} // namespace suntracker
