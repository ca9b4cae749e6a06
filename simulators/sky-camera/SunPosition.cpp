#include "simulators/sky-camera/SunPosition.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace skycamera {

SkyDirection sunPosition(const QDateTime& localTime, const SkySite& site) {
    const double minutes = localTime.time().msecsSinceStartOfDay() / 60'000.0;
    const double g = 2.0 * std::numbers::pi / localTime.date().daysInYear() *
                     (localTime.date().dayOfYear() - 1 + (minutes / 60.0 - 12.0) / 24.0);
    const double equationOfTime =
        229.18 * (0.000075 + 0.001868 * std::cos(g) - 0.032077 * std::sin(g) -
                  0.014615 * std::cos(2 * g) - 0.040849 * std::sin(2 * g));
    const double d = 0.006918 - 0.399912 * std::cos(g) + 0.070257 * std::sin(g) -
                     0.006758 * std::cos(2 * g) + 0.000907 * std::sin(2 * g) -
                     0.002697 * std::cos(3 * g) + 0.00148 * std::sin(3 * g);
    const double solarMinutes = minutes + equationOfTime + 4.0 * site.longitude - site.tzMinutes;
    constexpr double kDegree = std::numbers::pi / 180.0;
    const double h = (solarMinutes / 4.0 - 180.0) * kDegree;
    const double l = site.latitude * kDegree;
    const double sine = std::sin(l) * std::sin(d) + std::cos(l) * std::cos(d) * std::cos(h);
    const double north = std::sin(d) * std::cos(l) - std::cos(d) * std::cos(h) * std::sin(l);
    const double azimuth = std::atan2(-std::cos(d) * std::sin(h), north) / kDegree;
    return {std::asin(std::clamp(sine, -1.0, 1.0)) / kDegree, std::fmod(azimuth + 360.0, 360.0)};
}

} // namespace skycamera
