#pragma once

#include <QtGlobal>

namespace skycamera {

/// Makes the next close of a socket send a TCP reset instead of an orderly end. Qt offers no way to
/// this option; implemented once for each operating system. Without effect on an invalid
/// descriptor.
void resetOnClose(qintptr socketDescriptor);

} // namespace skycamera
