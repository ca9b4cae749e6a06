#pragma once

#include <string_view>

namespace orvane {

/// Whether `bytes` begins with a complete JPEG picture: start marker, segments, at least one scan,
/// end marker. Walks the structure, so the end marker of a thumbnail inside a segment does not
/// count; nothing is decoded. Bytes after the end marker are allowed.
bool isWholeJpeg(std::string_view bytes);

} // namespace orvane
