#include "simulators/sky-camera/FaultDelivery.h"

namespace skycamera {

bool sendsWhole(FaultKind kind) {
    switch (kind) {
    case FaultKind::None:
    case FaultKind::Drip:
    case FaultKind::Huge:
    case FaultKind::Stale:
    case FaultKind::Delay:
    case FaultKind::ListHtml:
    case FaultKind::ListNoComma:
    case FaultKind::ListNames:
    case FaultKind::ListPaths:
    case FaultKind::ListFuture:
    case FaultKind::ListMissing:
    case FaultKind::ListBig:
    case FaultKind::ListOneField:
        return true;
    default:
        return false;
    }
}

Delivery deliveryOf(const Fault& fault, qsizetype bodySize) {
    Delivery delivery;
    const qsizetype half = bodySize / 2;
    switch (fault.kind) {
    case FaultKind::Refuse:
        delivery.sendHead = false;
        delivery.end = Delivery::End::Reset;
        break;
    case FaultKind::Silent:
        delivery.sendHead = false;
        delivery.end = Delivery::End::Hang;
        break;
    case FaultKind::Reset:
        delivery.bodyBytes = half;
        delivery.end = Delivery::End::Reset;
        break;
    case FaultKind::Stall:
        delivery.bodyBytes = half;
        delivery.end = Delivery::End::Hang;
        break;
    case FaultKind::Short:
        delivery.bodyBytes = half;
        delivery.end = Delivery::End::Close;
        break;
    case FaultKind::NoLengthCut:
        delivery.bodyBytes = half;
        delivery.announceLength = false;
        delivery.end = Delivery::End::Close;
        break;
    case FaultKind::Drip:
        delivery.bytesPerSecond = fault.arg;
        break;
    case FaultKind::Delay:
        delivery.delayMs = fault.arg;
        break;
    default:
        break;
    }
    return delivery;
}

} // namespace skycamera
