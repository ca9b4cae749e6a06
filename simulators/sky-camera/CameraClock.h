#pragma once

#include <QDateTime>
#include <QUrlQuery>
#include <functional>
#include <optional>

namespace skycamera {

/// The camera's clock: the PC's clock plus an offset, so that it goes on running after it was set.
/// All its times are bare calendar fields (held as UTC), as a device without time zones has them.
class CameraClock {
  public:
    using PcClock = std::function<QDateTime()>;

    /// `pcClock` gives the PC's local time; empty for the real one.
    explicit CameraClock(PcClock pcClock = {});

    QDateTime now() const;
    void set(const QDateTime& time);
    double offsetSeconds() const;

  private:
    QDateTime pcNow() const;

    PcClock pcClock_;
    qint64 offsetMs_ = 0;
};

/// The same calendar fields, held as UTC.
QDateTime calendarTime(QDate date, QTime time);

struct ClockQueryResult {
    std::optional<QDateTime> time;
    /// Why there is no time.
    QString error;
};

/// Reads "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0". All six fields must be there;
/// years from 2000 to 2099.
ClockQueryResult parseClockQuery(const QUrlQuery& query);

} // namespace skycamera
