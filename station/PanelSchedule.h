#pragma once

#include "station/Schedule.h"

namespace orvane {

struct OperationPanel;

/// The schedule as typed in the panel's fields. What no clock shows counts as the nearest value
/// that one does, an empty field as 0. `NextRecTime` is 0. Which schedule a day has is
/// `DaySchedules`' to say.
Schedule scheduleOf(const OperationPanel& panel);

} // namespace orvane
