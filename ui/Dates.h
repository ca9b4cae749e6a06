#pragma once

#include "platform/Conversions.h"

#include <QDate>

namespace orvane {

/// Calendar days between the windows and the rooms below. By the number of the day, so that no time
/// zone has a part in it.
inline QDate dateOf(std::chrono::local_days day) {
    return QDate(1970, 1, 1).addDays(day.time_since_epoch().count());
}

inline std::chrono::local_days dayOf(QDate date) {
    return std::chrono::local_days(std::chrono::days(QDate(1970, 1, 1).daysTo(date)));
}

} // namespace orvane
