#pragma once

#include "core/Station.h"

namespace orvane {

/// Brings the main window and the panel into being, in a fixed order. Answers what went wrong; the
/// program cannot go on then.
Fault StartUp(Station& station);

/// Computes the day's sun times and shows them on the panel. A site for which that cannot be done
/// is logged and warned of until it can; the panel shows none then. Defaults in the place of
/// impossible values are warned of as well.
void computeSunTimes(Station& station);
/// The site has changed: shows its sun times. While a field of it is being edited nothing is
/// warned of.
void followSite(Station& station);

/// The newest images of today's folder, newest first, as the thumbnail history at start.
void loadTodaysThumbnails(Station& station);

} // namespace orvane
