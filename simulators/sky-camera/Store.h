#pragma once

#include "simulators/sky-camera/Stamp.h"

#include <deque>
#include <vector>

namespace skycamera {

/// The camera's recorded pictures: their stamps in order, not their files. A picture is rendered
/// when somebody fetches it, so many of them cost nothing. When the store is full, the oldest go.
class Store {
  public:
    static constexpr qsizetype kCapacity = 200'000;

    /// Adds a picture of this second, under the first frame number that is free; a second whose
    /// hundred frames are taken gets no more.
    void add(const QDateTime& time);

    bool holds(Stamp stamp) const;
    /// Up to `most` stamps in order, beginning with `first` itself where it is held.
    std::vector<Stamp> from(Stamp first, qsizetype most) const;
    qsizetype size() const { return static_cast<qsizetype>(stamps_.size()); }

  private:
    /// Grows at one end and, when full, shrinks at the other.
    std::deque<Stamp> stamps_;
};

} // namespace skycamera
