#pragma once

#include <QImage>

#include <string>
#include <vector>

namespace orvane {

/// A decoded picture, upright, with what its file carried besides the pixels.
struct JpegPicture {
    QImage pixels;                     ///< Format_RGB32
    std::string exif;                  ///< "Exif" segment as the camera wrote it, or empty
    std::string colourProfile;         ///< ICC profile, or empty
    std::vector<std::string> comments; ///< COM segments
};

} // namespace orvane
