#include "platform/qt/JpegEncoder.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <jerror.h>

namespace orvane {

namespace {

constexpr std::size_t kFirstSize = 256 * 1024;

const JOCTET* octets(const std::string& text) {
    return reinterpret_cast<const JOCTET*>(text.data());
}

} // namespace

JpegEncoder::JpegEncoder(JpegPicture picture, Form form, int quality, QSize size, bool planar)
    : picture_(std::move(picture)), size_(size.isValid() ? size : picture_.pixels.size()),
      form_(form), quality_(quality), planar_(planar) {
    info_.err = &errors_;
    target_.init_destination = initTarget;
    target_.empty_output_buffer = growTarget;
    target_.term_destination = endTarget;
}

JpegEncoder::~JpegEncoder() {
    jpeg_destroy_compress(&info_);
}

Fault JpegEncoder::begin() {
    if (setjmp(errors_.escape) != 0) return errors_.text;
    jpeg_create_compress(&info_);
    setUp();
    jpeg_start_compress(&info_, TRUE);
    writeMarkers();
    return std::nullopt;
}

void JpegEncoder::setUp() {
    info_.dest = &target_;
    info_.image_width = static_cast<JDIMENSION>(size_.width());
    info_.image_height = static_cast<JDIMENSION>(size_.height());
    info_.input_components = planar_ ? JpegPlanes::kPlanes : 4;
    info_.in_color_space = planar_ ? JCS_YCbCr : kRgb32;
    jpeg_set_defaults(&info_);
    info_.raw_data_in = planar_;
    jpeg_set_quality(&info_, quality_, TRUE);
    const int sampling = form_ == Form::Exif ? 2 : 1;
    info_.comp_info[0].h_samp_factor = sampling;
    info_.comp_info[0].v_samp_factor = sampling;
    // An EXIF header stands where the JFIF header would: directly behind the start marker.
    info_.write_JFIF_header = form_ == Form::Jfif444;
}

void JpegEncoder::writeMarkers() {
    if (form_ == Form::Exif && !picture_.exif.empty())
        jpeg_write_marker(&info_, JPEG_APP0 + 1, octets(picture_.exif),
                          static_cast<unsigned>(picture_.exif.size()));
    if (!picture_.colourProfile.empty())
        jpeg_write_icc_profile(&info_, octets(picture_.colourProfile),
                               static_cast<unsigned>(picture_.colourProfile.size()));
    for (const std::string& comment : picture_.comments)
        jpeg_write_marker(&info_, JPEG_COM, octets(comment), static_cast<unsigned>(comment.size()));
}

Fault JpegEncoder::encodeSlice() {
    const QImage& pixels = picture_.pixels;
    const int top = static_cast<int>(info_.next_scanline);
    const int rows = static_cast<int>(rowsPerSlice(info_.image_width));
    return write(QImage(pixels.constScanLine(top), pixels.width(),
                        std::min(rows, pixels.height() - top), pixels.bytesPerLine(),
                        QImage::Format_RGB32));
}

Fault JpegEncoder::write(const QImage& rows) {
    if (setjmp(errors_.escape) != 0) return errors_.text;
    for (int y = 0; y < rows.height(); ++y) {
        JSAMPROW row = const_cast<JSAMPROW>(rows.constScanLine(y)); // the library only reads it
        jpeg_write_scanlines(&info_, &row, 1);
    }
    endRows();
    return std::nullopt;
}

Fault JpegEncoder::write(JpegPlanes& planes) {
    if (setjmp(errors_.escape) != 0) return errors_.text;
    for (int i = 0; i < planes.bands() && info_.next_scanline < info_.image_height; ++i)
        jpeg_write_raw_data(&info_, planes.band(i), JpegPlanes::kBand);
    endRows();
    return std::nullopt;
}

void JpegEncoder::endRows() {
    if (info_.next_scanline < info_.image_height) return;
    jpeg_finish_compress(&info_);
    done_ = true;
}

/// Doubles the buffer and offers its new half. No exception may pass through the library.
bool JpegEncoder::Target::grow() noexcept {
    const std::size_t used = bytes.size();
    try {
        bytes.resize(std::max(kFirstSize, used * 2));
    } catch (const std::exception&) {
        return false;
    }
    next_output_byte = reinterpret_cast<JOCTET*>(bytes.data()) + used;
    free_in_buffer = bytes.size() - used;
    return true;
}

void JpegEncoder::initTarget(j_compress_ptr info) {
    if (!static_cast<Target*>(info->dest)->grow()) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
}

boolean JpegEncoder::growTarget(j_compress_ptr info) {
    initTarget(info);
    return TRUE;
}

void JpegEncoder::endTarget(j_compress_ptr info) {
    Target& target = *static_cast<Target*>(info->dest);
    target.bytes.resize(target.bytes.size() - target.free_in_buffer);
}

} // namespace orvane
