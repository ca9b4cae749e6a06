#include "imaging/SunElevation.h"

#include <cmath>

namespace orvane {

namespace {

// The tracker's conversion constants, to the last digit: their rounding decides which minute of a
// flat crossing is reported.
constexpr double kRadians = 0.017453292519943278;
constexpr double kDegrees = 57.2957795130822;
constexpr double kHalfAngleDegrees = 114.5915590261644;

struct EclipticPlace {
    double longitude; ///< apparent, radians
    double obliquity; ///< of the ecliptic, radians
};

struct EquatorPlace {
    double declination;    ///< radians
    double rightAscension; ///< degrees, -90 to 270
};

/// Days from the epoch to the date's midnight. For March and April the year borrow `a` is 1 where
/// the usual conversion has 0; the reported times of these months depend on it.
double dayNumber(std::chrono::year_month_day date) {
    const int month0 = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    const double a = std::trunc((14 - month0 + 1) / 12.0);
    const double y = static_cast<int>(date.year()) - a + 4800;
    double days = std::trunc(1461 * y / 4);
    days += std::trunc(367 * (12 * a + (month0 + 1) - 2) / 12);
    days -= std::trunc(3 * std::trunc(y / 100 + 1) / 4);
    return days + (static_cast<unsigned>(date.day()) - 2447095.5);
}

/// Kepler's equation by five rounds of fixed-point iteration.
double eccentricAnomaly(double meanAnomaly, double eccentricity) {
    double anomaly = 0;
    for (int round = 0; round < 5; ++round)
        anomaly = meanAnomaly + eccentricity * std::sin(anomaly);
    return anomaly;
}

double perturbations(double centuries) {
    const double t = (centuries - 1) * kRadians;
    return 20 * std::cos(32964 * t + 2.757620218151) + 18 * std::cos(19 * t + 2.775073510671) +
           18 * std::cos(445267 * t + 3.630284844148) + 15 * std::cos(45038 * t + 4.433136300066) +
           13 * std::cos(22519 * t + 6.143558967);
}

EclipticPlace eclipticPlace(double T) {
    const double e = 0.01675104 - 4.18e-05 * T;
    const double M = (358.47583 + 35999.04975 * T - 0.00015 * T * T) * kRadians;
    const double E = eccentricAnomaly(M, e);
    const double nu = std::atan(std::sqrt((1 + e) / (1 - e)) * std::tan(E / 2)) * kHalfAngleDegrees;
    const double r = 1 - e * std::cos(E);
    const double perigee = 281.22083 + 1.71917331 * T + 0.000453 * T * T;
    const double node = (259.183275 - 1934.142008 * T + 0.002078 * T * T) * kRadians;
    double lambda = perturbations(T) * 0.0001 + (nu + perigee);
    lambda -= (478686 * std::sin(node) + 569328 / r) * 1e-08; // nutation and aberration
    const double obliquity = 23.452294 - 0.0130125 * T + 0.0025583 * std::cos(node);
    return {lambda * kRadians, obliquity * kRadians};
}

/// Arc sine by way of the arc tangent. Not a number for |s| >= 1: a division by zero there must
/// count as a fault, while IEEE arithmetic would go on with a right angle.
double arcSine(double s) {
    const double root = std::sqrt(1 - s * s);
    return root == 0 ? std::nan("") : std::atan(s / root);
}

EquatorPlace equatorPlace(const EclipticPlace& sun) {
    const double declination = arcSine(std::sin(sun.longitude) * std::sin(sun.obliquity));
    const double cosDeclination = std::cos(declination);
    double alpha =
        arcSine(std::sin(sun.longitude) * std::cos(sun.obliquity) / cosDeclination) * kDegrees;
    if (std::cos(sun.longitude) / cosDeclination < 0) {
        alpha = 180 - alpha;
        alpha -= std::trunc(alpha / 360) * 360;
    }
    return {declination, alpha};
}

/// Elevation in degrees at `universalTime` hours after the midnight of `midnight`.
double elevationAt(double midnight, double universalTime, double dynamicalOffset, double phi,
                   double longitude) {
    const double dynamicalTime = universalTime + dynamicalOffset;
    const double T = (midnight + dynamicalTime / 24) / 36525;
    const EquatorPlace sun = equatorPlace(eclipticPlace(T));
    const double siderealTime = universalTime + 12 + (18.64606556 + 2400.051262 * T);
    const double hourAngle = (longitude + 15 * siderealTime - sun.rightAscension) * kRadians;
    const double sine = std::sin(sun.declination) * std::sin(phi) +
                        std::cos(sun.declination) * std::cos(hourAngle) * std::cos(phi);
    return arcSine(sine) * kDegrees;
}

/// Towards zero, to four decimals. Passing the value through a 28-digit decimal and through a text
/// with four decimals changes nothing here: at most 90 in magnitude, a double survives 28 digits,
/// and n / 10000 is the double nearest to its own four-decimal text.
double fourDecimals(double degrees) {
    return std::trunc(degrees * 10000) / 10000;
}

} // namespace

std::optional<ElevationTable> computeElevationByMinute(double latitude, double longitude,
                                                       std::chrono::year_month_day date) {
    const double phi = latitude * kRadians;
    const double midnight = dayNumber(date);
    const double dynamicalOffset = 0.5 * (static_cast<int>(date.year()) - 1980) / 3600;
    ElevationTable table{};
    double universalTime = 0; // accumulated, so that every sample has its own rounding error
    for (std::size_t i = 1; i < table.size() - 1; ++i) {
        const double degrees =
            elevationAt(midnight, universalTime, dynamicalOffset, phi, longitude);
        if (!std::isfinite(degrees)) return std::nullopt;
        table[i] = fourDecimals(degrees);
        universalTime += 1.0 / 60;
    }
    return table;
}

} // namespace orvane
