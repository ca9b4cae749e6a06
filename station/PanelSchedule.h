#pragma once

#include "station/Schedule.h"

namespace orvane {

struct OperationPanel;

/// The schedule that stands in the panel's fields: the one in force while recording is on, since
/// they are locked then, and else the one that a start would take. What no clock shows counts as
/// the nearest value that one does, an empty field as 0. `NextRecTime` is 0.
Schedule scheduleOf(const OperationPanel& panel);

} // namespace orvane
