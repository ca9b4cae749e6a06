#pragma once

#include "simulators/sky-camera/Fault.h"
#include "simulators/sky-camera/HttpMessage.h"

namespace skycamera {

/// Whether a body with this fault still goes out to its end, whatever it holds.
bool sendsWhole(FaultKind kind);

/// How a body of so many bytes goes out with this fault.
Delivery deliveryOf(const Fault& fault, qsizetype bodySize);

} // namespace skycamera
