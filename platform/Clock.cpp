#include "platform/Clock.h"

#include <algorithm>

namespace orvane {

void WakeQueue::add(Wake& wake, Ticks deadline) {
    entries_.push_back({deadline, &wake});
    for (auto place = std::prev(entries_.end());
         place != entries_.begin() && std::prev(place)->deadline <= deadline; --place)
        std::iter_swap(place, std::prev(place));
}

std::size_t WakeQueue::dueCount(Ticks time) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        entries_, [=](const Entry& entry) { return entry.deadline <= time; }));
}

void WakeQueue::remove(const Wake& wake) noexcept {
    std::erase_if(entries_, [&](const Entry& entry) { return entry.wake == &wake; });
}

Wake& WakeQueue::takeEarliest() {
    Wake& wake = *entries_.back().wake;
    entries_.pop_back();
    return wake;
}

} // namespace orvane
