#include "simulators/sky-camera/FaultDelivery.h"

namespace skycamera {

bool sendsWhole(FaultKind kind) {
    switch (kind) {
    case FaultKind::Status:
    case FaultKind::Html:
    case FaultKind::Empty:
    case FaultKind::Cut:
        return false;
    default:
        const Delivery delivery = deliveryOf({kind}, 0);
        return delivery.sendHead && delivery.bodyBytes < 0;
    }
}

Delivery deliveryOf(const Fault& fault, qsizetype bodySize) {
    using End = Delivery::End;
    const qsizetype half = bodySize / 2;
    switch (fault.kind) {
    case FaultKind::Refuse:
        return {.sendHead = false, .end = End::Reset};
    case FaultKind::Silent:
        return {.sendHead = false, .end = End::Hang};
    case FaultKind::Reset:
        return {.bodyBytes = half, .end = End::Reset};
    case FaultKind::Stall:
        return {.bodyBytes = half, .end = End::Hang};
    case FaultKind::Short:
        return {.bodyBytes = half, .end = End::Close};
    case FaultKind::NoLengthCut:
        return {.announceLength = false, .bodyBytes = half, .end = End::Close};
    case FaultKind::Drip:
        return {.bytesPerSecond = fault.arg};
    case FaultKind::Delay:
        return {.delayMs = fault.arg};
    default:
        return {};
    }
}

} // namespace skycamera
