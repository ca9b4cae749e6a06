#include "platform/qt/JpegPlanes.h"

#include "platform/qt/MirrorRow.h"

#include <algorithm>

namespace orvane {

JpegPlanes::JpegPlanes(int width, int bands)
    : width_(width), bands_(bands), stride_((width + kBand - 1) / kBand * kBand) {
    for (int plane = 0; plane < kPlanes; ++plane)
        samples_[static_cast<std::size_t>(plane)].resize(
            static_cast<std::size_t>(halved(plane, stride_)) *
            static_cast<std::size_t>(halved(plane, bands * kBand)));
}

JSAMPROW JpegPlanes::row(int plane, int y) {
    return samples_[static_cast<std::size_t>(plane)].data() +
           static_cast<std::ptrdiff_t>(y) * halved(plane, stride_);
}

JSAMPIMAGE JpegPlanes::band(int number) {
    for (int plane = 0; plane < kPlanes; ++plane) {
        auto& rows = rows_[static_cast<std::size_t>(plane)];
        const int height = halved(plane, kBand);
        for (int y = 0; y < height; ++y)
            rows[static_cast<std::size_t>(y)] = row(plane, number * height + y);
        image_[static_cast<std::size_t>(plane)] = rows.data();
    }
    return image_.data();
}

/// What fills the last blocks is made anew from the new last column.
void JpegPlanes::mirror() {
    for (int plane = 0; plane < kPlanes; ++plane) {
        const int stride = halved(plane, stride_);
        const int width = halved(plane, width_);
        auto& samples = samples_[static_cast<std::size_t>(plane)];
        for (JSAMPLE* row = samples.data(); row != samples.data() + samples.size(); row += stride) {
            mirrorRow(row, row + width);
            std::fill(row + width, row + stride, row[width - 1]);
        }
    }
}

} // namespace orvane
