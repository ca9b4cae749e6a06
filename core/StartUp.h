#pragma once

#include "core/Station.h"

#include <optional>
#include <string>

namespace orvane {

/// Brings the main window and the panel into being, in a fixed order. Answers what went wrong; the
/// program cannot go on then.
std::optional<std::string> StartUp(Station& station);

/// Computes the day's sun times and shows them on the panel. Answers why that failed, or nothing.
std::optional<std::string> computeSunTimes(Station& station);

/// The newest images of today's folder, newest first, as the thumbnail history at start.
void loadTodaysThumbnails(Station& station);

} // namespace orvane
