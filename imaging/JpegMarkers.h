#pragma once

#include "platform/ImageControl.h"

#include <string>
#include <string_view>

namespace orvane {

/// Whether `bytes` begins with a complete JPEG picture: start marker, segments, at least one scan,
/// end marker. Walks the structure, so the end marker of a thumbnail inside a segment does not
/// count; nothing is decoded. Bytes after the end marker are allowed.
bool isWholeJpeg(std::string_view bytes);

/// Why `bytes`, as a camera answered them, are no picture to be filed: not a whole JPEG, or one
/// whose data are damaged. Both `control` and `bytes` outlive the task.
Task<Fault> pictureFault(ImageControl& control, const std::string& bytes);

} // namespace orvane
