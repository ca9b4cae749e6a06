#include "simulators/sky-camera/Store.h"

#include <algorithm>

namespace skycamera {

void Store::add(const QDateTime& time) {
    Stamp stamp = Stamp::of(time);
    auto place = std::lower_bound(stamps_.begin(), stamps_.end(), stamp);
    for (; place != stamps_.end() && *place == stamp; ++place) {
        if (stamp.frame() == 99) return;
        ++stamp.digits;
    }
    stamps_.insert(place, stamp);
    if (size() > kCapacity) stamps_.pop_front();
}

bool Store::holds(Stamp stamp) const {
    return std::binary_search(stamps_.begin(), stamps_.end(), stamp);
}

std::vector<Stamp> Store::from(Stamp first, qsizetype most) const {
    const auto begin = std::lower_bound(stamps_.begin(), stamps_.end(), first);
    return {begin, begin + std::min<qsizetype>(most, stamps_.end() - begin)};
}

} // namespace skycamera
