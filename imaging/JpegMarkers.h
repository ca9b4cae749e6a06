#pragma once

#include "platform/ImageControl.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Whether `bytes` begins with a complete JPEG picture: start marker, segments, at least one scan,
/// end marker. Walks the structure, so the end marker of a thumbnail inside a segment does not
/// count; nothing is decoded. Bytes after the end marker are allowed.
bool isWholeJpeg(std::string_view bytes);

/// A picture's size in pixels, as its file tells it.
struct JpegSize {
    int width = 0;
    int height = 0;
};
/// The size in a JPEG's frame header; nothing where none stands before the first scan. No more is
/// looked at.
std::optional<JpegSize> jpegSize(std::string_view bytes);

/// Why `bytes`, as a camera answered them, are no picture to be filed: not a whole JPEG, or one
/// whose data are damaged. Both `control` and `bytes` outlive the task.
Task<Fault> pictureFault(ImageControl& control, const std::string& bytes);

} // namespace orvane
