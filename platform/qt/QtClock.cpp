#include "platform/qt/QtClock.h"

#include <QDateTime>

#include <algorithm>

namespace orvane {

QtClock::QtClock() {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { dispatch(); });
}

WallTime QtClock::now() const {
    const QDateTime utc = QDateTime::currentDateTimeUtc();
    const qint64 offset = utc.toLocalTime().offsetFromUtc();
    return WallTime(std::chrono::milliseconds(utc.toMSecsSinceEpoch() + offset * 1000));
}

Ticks QtClock::ticks() const {
    return std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch());
}

void QtClock::wakeAt(Wake& wake, Ticks deadline) {
    queue_.add(wake, deadline);
    arm();
}

void QtClock::arm() {
    if (!queue_.empty()) timer_.start(std::max(queue_.earliest() - ticks(), Ticks(0)));
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
