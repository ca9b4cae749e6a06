#include "platform/qt/QtClock.h"

#include <QDateTime>

#include <algorithm>
#include <ctime>
#include <utility>

namespace orvane {

QtClock::QtClock() {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { dispatch(); });
}

/// Asked many times in a second. To find the offset the system looks for a new description of its
/// zone each time, so it is asked for every ten seconds: as the clock has them, since summer time
/// begins and ends with a whole minute.
WallTime QtClock::now() const {
    using std::chrono::floor;
    const auto utc = floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const std::int64_t span = utc.time_since_epoch() / 10s;
    if (std::exchange(offsetSpan_, span) != span)
        offset_ = std::chrono::seconds(QDateTime::currentDateTime().offsetFromUtc());
    return WallTime(utc.time_since_epoch() + offset_);
}

std::chrono::minutes QtClock::utcOffset() const {
    return std::chrono::minutes(QDateTime::currentDateTime().offsetFromUtc() / 60);
}

std::chrono::minutes QtClock::utcOffsetAt(std::chrono::sys_seconds moment) {
    const QDateTime local = QDateTime::fromSecsSinceEpoch(moment.time_since_epoch().count());
    return std::chrono::minutes(local.offsetFromUtc() / 60);
}

/// With the time that the PC was asleep, as the system's clock on Windows counts it: after a sleep
/// the wall clock has not been put forward.
Ticks QtClock::ticks() const {
#ifdef CLOCK_BOOTTIME
    timespec now{};
    if (clock_gettime(CLOCK_BOOTTIME, &now) == 0)
        return std::chrono::duration_cast<Ticks>(std::chrono::seconds(now.tv_sec) +
                                                 std::chrono::nanoseconds(now.tv_nsec));
#endif
    return std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch());
}

void QtClock::wakeAt(Wake& wake, Ticks deadline) {
    queue_.add(wake, deadline);
    arm();
}

void QtClock::arm() {
    if (queue_.empty() || (timer_.isActive() && armed_ == queue_.earliest())) return;
    armed_ = queue_.earliest();
    timer_.start(std::max(armed_ - ticks(), Ticks(0)));
}

/// Only what was due at the start of the turn: a coroutine that yields goes on in the next turn,
/// after the window's own events.
void QtClock::dispatch() {
    const Ticks turn = ticks();
    std::size_t due = queue_.dueCount(turn);
    for (; due > 0 && !queue_.empty() && queue_.earliest() <= turn; --due)
        queue_.takeEarliest().fire();
    arm();
}

} // namespace orvane
