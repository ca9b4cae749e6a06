#pragma once

#include <QtGlobal>
#include <algorithm>
#include <cmath>

namespace skycamera {

/// Mixes integers to 32 well-spread bits; the same on every platform.
inline quint32 hashOf(quint32 a, quint32 b, quint32 seed) {
    quint32 h = a * 0x9E3779B1U ^ (b * 0x85EBCA77U + seed * 0xC2B2AE3DU);
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return h ^ (h >> 15);
}

/// A number from 0 to 1 that depends on nothing but its arguments.
inline float unitHash(int a, int b, quint32 seed) {
    return static_cast<float>(hashOf(static_cast<quint32>(a), static_cast<quint32>(b), seed) >> 8) /
           16'777'216.0F;
}

/// Linear between `a` and `b`; `std::lerp` has guarantees at its ends that cost half of the time of
/// a picture.
inline float mix(float a, float b, float t) {
    return a + (b - a) * t;
}

/// 0 below `low`, 1 above `high`, smooth between them.
inline float smoothStep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

/// Value noise: smooth, from 0 to 1, with features about one unit wide.
inline float valueNoise(double x, double y, quint32 seed) {
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    const int ix = static_cast<int>(fx);
    const int iy = static_cast<int>(fy);
    auto smooth = [](double t) { return static_cast<float>(t * t * (3.0 - 2.0 * t)); };
    const float u = smooth(x - fx);
    const float v = smooth(y - fy);
    const float top = mix(unitHash(ix, iy, seed), unitHash(ix + 1, iy, seed), u);
    const float low = mix(unitHash(ix, iy + 1, seed), unitHash(ix + 1, iy + 1, seed), u);
    return mix(top, low, v);
}

/// Several octaves of value noise, from 0 to 1. Each octave is turned a little so that the lattice
/// does not show.
inline float fractalNoise(double x, double y, int octaves, quint32 seed) {
    float sum = 0.0F;
    float weight = 0.5F;
    float total = 0.0F;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * valueNoise(x, y, seed + static_cast<quint32>(i));
        total += weight;
        weight *= 0.5F;
        const double turned = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x;
        x = turned;
    }
    return sum / total;
}

} // namespace skycamera
