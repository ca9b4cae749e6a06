#pragma once

#include <string>

namespace orvane {

// EXIF segments as they stand in a JPEG file, "Exif" signature included.

/// The orientation, 1 to 8; 1 (upright) when the segment says none or cannot be read.
int exifOrientation(const std::string& segment);

/// The camera's segment made true again for an upright picture of `width` x `height` pixels: no
/// thumbnail, and `stamp` ("yyyy:mm:dd hh:mm:ss") as DateTimeOriginal unless empty. A segment that
/// is missing, unreadable or would not fit into a file is replaced by a minimal one.
std::string exifForUpright(const std::string& segment, const std::string& stamp, int width,
                           int height);

} // namespace orvane
