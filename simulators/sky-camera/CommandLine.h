#pragma once

#include "simulators/sky-camera/SkyCamera.h"

#include <QStringList>

namespace skycamera {

struct CommandLine {
    SkyCameraOptions options;
    bool quiet = false;
    /// Set when only this text is wanted.
    QString help;
    /// Set when the options were not understood.
    QString error;
};

/// `arguments` with the program's name first.
CommandLine parseCommandLine(const QStringList& arguments);

} // namespace skycamera
