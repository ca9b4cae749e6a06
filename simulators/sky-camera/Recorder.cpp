#include "simulators/sky-camera/Recorder.h"

#include <algorithm>

namespace skycamera {

namespace {

constexpr qint64 kSecondsPast = 7;

QDateTime atSecond(qint64 second) {
    return QDateTime::fromSecsSinceEpoch(second, Qt::UTC);
}

} // namespace

qint64 recordingMoment(qint64 second, qint64 every) {
    const qint64 past = (second - kSecondsPast) % every;
    return second - (past < 0 ? past + every : past);
}

Recorder::Recorder(int everySeconds, bool on, const QDateTime& clock)
    : every_(everySeconds), on_(on), seen_(clock.toSecsSinceEpoch()) {}

void Recorder::catchUp(const QDateTime& clock, Store& store) {
    const qint64 now = clock.toSecsSinceEpoch();
    if (on_) {
        const qint64 last = recordingMoment(now, every_);
        const qint64 first = std::max(recordingMoment(seen_, every_) + every_,
                                      last - (Store::kCapacity - 1) * every_);
        for (qint64 moment = first; moment <= last; moment += every_)
            store.add(atSecond(moment));
    }
    seen_ = now;
}

void Recorder::switchTo(bool on, const QDateTime& clock, Store& store) {
    catchUp(clock, store);
    on_ = on;
}

void Recorder::clockWasSet(const QDateTime& clock) {
    seen_ = clock.toSecsSinceEpoch();
}

void storePast(Store& store, int count, int everySeconds, const QDateTime& clock) {
    const qint64 last = recordingMoment(clock.toSecsSinceEpoch() - 1, everySeconds);
    for (int before = count - 1; before >= 0; --before)
        store.add(atSecond(last - qint64{before} * everySeconds));
}

} // namespace skycamera
