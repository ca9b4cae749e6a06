#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace orvane {

/// Reverses a row of pixels or samples: thirty-two bytes from either end at a time, which compilers
/// turn into a few vector instructions.
template <class Sample>
void mirrorRow(Sample* left, Sample* right) {
    constexpr std::ptrdiff_t kSamples = 32 / sizeof(Sample);
    std::array<Sample, kSamples> fromLeft;
    std::array<Sample, kSamples> fromRight;
    for (; right - left >= 2 * kSamples; left += kSamples) {
        right -= kSamples;
        std::reverse_copy(left, left + kSamples, fromLeft.begin());
        std::reverse_copy(right, right + kSamples, fromRight.begin());
        std::copy(fromRight.begin(), fromRight.end(), left);
        std::copy(fromLeft.begin(), fromLeft.end(), right);
    }
    std::reverse(left, right);
}

} // namespace orvane
