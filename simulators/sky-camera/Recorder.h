#pragma once

#include "simulators/sky-camera/Store.h"

namespace skycamera {

/// The camera's own recording: while it is on, a picture every so many seconds of the camera's
/// clock, at 7 s past (09:30:07, 09:31:07, ...).
///
/// Runs without a timer: whoever looks at the store first has it catch up with the clock. So a
/// clock that a test moves by an hour brings an hour's pictures. Time that the clock leaps over
/// when it is set was never there: nothing is recorded for it.
class Recorder {
  public:
    /// `everySeconds` from 1 on; `clock` is the camera's.
    Recorder(int everySeconds, bool on, const QDateTime& clock);

    bool on() const { return on_; }
    /// Stores what fell due since the last call. After a very long time only as much as the store
    /// can hold.
    void catchUp(const QDateTime& clock, Store& store);
    void switchTo(bool on, const QDateTime& clock, Store& store);
    /// The clock was set and now shows `clock`; call `catchUp` with the old time before.
    void clockWasSet(const QDateTime& clock);

  private:
    qint64 every_;
    bool on_;
    /// Everything up to this second, inclusive, is dealt with.
    qint64 seen_;
};

/// The recording moment at or before `second`, both in seconds of calendar time.
qint64 recordingMoment(qint64 second, qint64 every);

/// `count` pictures `everySeconds` apart, the last of them just before `clock`.
void storePast(Store& store, int count, int everySeconds, const QDateTime& clock);

} // namespace skycamera
