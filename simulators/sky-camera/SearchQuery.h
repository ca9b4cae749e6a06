#pragma once

#include "simulators/sky-camera/Stamp.h"

#include <QUrlQuery>

namespace skycamera {

/// What a client asks of the search page.
struct SearchQuery {
    /// The first stamp that is wanted.
    Stamp from;
    /// How many records at most, 1 to 100,000.
    qsizetype most = 100;
};

/// Reads "from_year=6&from_mon=10&from_day=14&from_hour=9&from_min=30&from_sec=0&from_frame=0
/// &maxnum=2", which asks from 15 November 2006 on: years count from 2000, months and days from 0.
/// A field that is missing or no number takes its lowest value, `maxnum` 100. Numbers beyond the
/// calendar lie behind all that are in it: frame 100 asks from the next second on. Other fields
/// (srch_type, s_mode, dl, ar0) change nothing.
SearchQuery parseSearchQuery(const QUrlQuery& query);

} // namespace skycamera
