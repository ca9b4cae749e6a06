#pragma once

#include <bit>
#include <csetjmp>
#include <cstdio>
#include <string>

#include <jpeglib.h>

namespace orvane {

/// libjpeg's way of reporting, turned into a text. An error leaves the library by a jump to
/// `escape`, set by `setjmp` in the calling function; that function must have no local object with
/// a destructor and must not suspend. A warning that the data are corrupt only sets `corrupt`.
struct JpegErrors : jpeg_error_mgr {
    std::jmp_buf escape;
    bool corrupt = false;
    char text[JMSG_LENGTH_MAX] = {};

    JpegErrors();
    JpegErrors(const JpegErrors&) = delete;
    JpegErrors& operator=(const JpegErrors&) = delete;
};

/// How the library calls the pixels of QImage::Format_RGB32.
inline constexpr J_COLOR_SPACE kRgb32 =
    std::endian::native == std::endian::little ? JCS_EXT_BGRX : JCS_EXT_XRGB;

/// Rows of a picture `width` pixels wide that are worked on between two yields: half a megapixel,
/// some 10 ms.
inline unsigned rowsPerSlice(unsigned width) {
    constexpr unsigned kPixels = 512 * 1024;
    return width < kPixels / 8 ? kPixels / width : 8;
}

} // namespace orvane
