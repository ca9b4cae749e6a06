#pragma once

#include "simulators/sky-camera/Fault.h"
#include "simulators/sky-camera/HttpMessage.h"
#include "simulators/sky-camera/Stamp.h"

#include <vector>

namespace skycamera {

/// The search page for these pictures: plain text, a line for each record of three fields with a
/// comma behind each ("1,20061115093007,record/20061115/20061115_093007_00.jpg,"); "NO_DATA"
/// without any. A fault of the search page spoils it; `turn` chooses what list-paths begins with.
HttpReply searchPage(const std::vector<Stamp>& stamps, const Fault& fault, quint64 turn);

} // namespace skycamera
