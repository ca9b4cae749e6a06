#pragma once

#include <QDateTime>

namespace skycamera {

/// Where the camera stands. Degrees, north and east positive; minutes east of universal time.
struct SkySite {
    double latitude = 35.0;
    double longitude = 0.0;
    int tzMinutes = 0;
};

/// A direction in the sky, in degrees: elevation above the horizon, azimuth from north over east.
struct SkyDirection {
    double elevation = 0.0;
    double azimuth = 0.0;
};

/// The sun at a local calendar time. Low precision (about half a degree), after the "General Solar
/// Position Calculations" of NOAA's Global Monitoring Division; no refraction.
SkyDirection sunPosition(const QDateTime& localTime, const SkySite& site);

} // namespace skycamera
