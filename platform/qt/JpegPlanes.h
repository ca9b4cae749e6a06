#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

namespace orvane {

/// Some bands of a picture as a 4:2:0 file holds them: a plane of brightness and two of colour with
/// half its rows and columns. A file of that form becomes another without turning its samples into
/// pixels and back, which saves time, and colour.
class JpegPlanes {
  public:
    static constexpr int kPlanes = 3;
    static constexpr int kBand = 2 * DCTSIZE; ///< rows of brightness that the library moves at once

    /// `width` in pixels, even; room for `bands`.
    JpegPlanes(int width, int bands);
    JpegPlanes() = default;

    int width() const { return width_; }
    int bands() const { return bands_; }
    /// A row of brightness (plane 0) or colour; it may be changed.
    JSAMPROW row(int plane, int y);
    /// The rows of a band as the library takes them. Valid until the next call.
    JSAMPIMAGE band(int number);
    /// Left to right.
    void mirror();

  private:
    static int halved(int plane, int size) { return plane == 0 ? size : size / 2; }

    int width_ = 0;
    int bands_ = 0;
    int stride_ = 0; ///< of brightness, whole blocks
    std::array<std::vector<JSAMPLE>, kPlanes> samples_;
    std::array<std::array<JSAMPROW, kBand>, kPlanes> rows_{};
    std::array<JSAMPARRAY, kPlanes> image_{};
};

} // namespace orvane
