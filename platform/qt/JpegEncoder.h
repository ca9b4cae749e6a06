#pragma once

#include "platform/Fault.h"
#include "platform/qt/JpegErrors.h"
#include "platform/qt/JpegPicture.h"
#include "platform/qt/JpegPlanes.h"

#include <string>

namespace orvane {

/// Encodes one picture into memory: `begin`, then `encodeSlice` while there is `more`, then `take`.
/// May be destroyed at any point. After a fault it is used up.
class JpegEncoder {
  public:
    /// Exif: EXIF header, the picture's `exif` as it stands, 4:2:0. Jfif444: JFIF header, 4:4:4.
    enum class Form { Exif, Jfif444 };

    /// `quality` 1 to 100. With a `size` the rows come by `write`, not from the picture's pixels;
    /// `planar`, for Exif: as planes.
    JpegEncoder(JpegPicture picture, Form form, int quality, QSize size = {}, bool planar = false);
    ~JpegEncoder();
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    Fault begin();
    bool more() const { return !done_; }
    Fault encodeSlice();
    /// Encodes the next rows (Format_RGB32) in the place of a slice.
    Fault write(const QImage& rows);
    Fault write(JpegPlanes& planes);
    std::string take() { return std::move(target_.bytes); }

  private:
    /// Collects the output; the library has no growing target that survives being abandoned.
    struct Target : jpeg_destination_mgr {
        std::string bytes;
        bool grow() noexcept;
    };
    static void initTarget(j_compress_ptr info);
    static boolean growTarget(j_compress_ptr info);
    static void endTarget(j_compress_ptr info);

    void setUp();
    void writeMarkers();
    void endRows(); // within the escape point of `write`

    JpegPicture picture_;
    QSize size_;
    Form form_;
    int quality_;
    bool planar_;
    bool done_ = false;
    JpegErrors errors_;
    Target target_{};
    jpeg_compress_struct info_{};
};

} // namespace orvane
