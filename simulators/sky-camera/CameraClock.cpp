#include "simulators/sky-camera/CameraClock.h"

#include <array>
#include <utility>

namespace skycamera {

CameraClock::CameraClock(PcClock pcClock)
    : pcClock_(pcClock ? std::move(pcClock) : PcClock(&QDateTime::currentDateTime)) {}

QDateTime CameraClock::pcNow() const {
    const QDateTime local = pcClock_();
    return calendarTime(local.date(), local.time());
}

QDateTime CameraClock::now() const {
    return pcNow().addMSecs(offsetMs_);
}

void CameraClock::set(const QDateTime& time) {
    offsetMs_ = pcNow().msecsTo(time);
}

double CameraClock::offsetSeconds() const {
    return static_cast<double>(offsetMs_) / 1000.0;
}

QDateTime calendarTime(QDate date, QTime time) {
    return QDateTime(date, time, Qt::UTC);
}

ClockQueryResult parseClockQuery(const QUrlQuery& query) {
    constexpr std::array names{"i_year", "i_mon", "i_day", "i_hour", "i_min", "i_sec"};
    std::array<int, names.size()> values{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const QString text = query.queryItemValue(names[i], QUrl::FullyDecoded);
        bool number = false;
        values[i] = static_cast<int>(text.toUInt(&number));
        if (!number || text.size() > 4)
            return {{}, QString("%1 is missing or not a number: \"%2\"").arg(names[i], text)};
    }
    const auto [year, month, day, hour, minute, second] = values;
    const QDate date(year, month, day);
    const QTime time(hour, minute, second);
    if (year < 2000 || year > 2099 || !date.isValid()) return {{}, "there is no such date"};
    if (!time.isValid()) return {{}, "there is no such time of day"};
    return {calendarTime(date, time), {}};
}

} // namespace skycamera
