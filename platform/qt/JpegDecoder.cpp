#include "platform/qt/JpegDecoder.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace orvane {

namespace {

constexpr std::uint64_t kPixelLimit = 100'000'000;
constexpr unsigned kEighths = 8; ///< the library scales in eighths
/// Real progressive files have about ten; every scan costs a pass over the whole picture.
constexpr int kScanLimit = 200;
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kIccMarker = JPEG_APP0 + 2;
constexpr std::string_view kExifSignature("Exif\0\0", 6);

/// Rows of `Purpose::Rows` that stay in a processor's cache until they are encoded again.
int rowsInCache(unsigned width) {
    constexpr unsigned kPixels = 64 * 1024;
    return static_cast<int>(std::max(kPixels / width, 2U * DCTSIZE));
}

/// Room for rows that are read again at once. To a row that begins at a multiple of 32 bytes, or
/// of 16 on old processors, the library's vector code writes past the caches, which suits a screen;
/// these begin beside both. Null without memory.
QImage rowsForCache(int width, int height) {
    constexpr int kVector = 32;
    constexpr int kBeside = 8;
    const int line = (4 * width + kVector - 1) / kVector * kVector;
    const std::size_t size = static_cast<std::size_t>(line) * static_cast<std::size_t>(height);
    void* room = ::operator new(size + kBeside, std::align_val_t(kVector), std::nothrow);
    if (room == nullptr) return {};
    return QImage(
        static_cast<uchar*>(room) + kBeside, width, height, line, QImage::Format_RGB32,
        [](void* memory) { ::operator delete(memory, std::align_val_t(kVector)); }, room);
}

/// The EXIF orientations that turn the picture by a quarter.
bool isTransposed(int orientation) {
    return orientation >= 5;
}

std::string_view contents(const jpeg_marker_struct& marker) {
    return {reinterpret_cast<const char*>(marker.data), marker.data_length};
}

} // namespace

JpegDecoder::JpegDecoder(std::string_view jpeg, QSize bound, Purpose purpose)
    : jpeg_(jpeg), bound_(bound), purpose_(purpose) {
    info_.err = &errors_;
}

JpegDecoder::~JpegDecoder() {
    jpeg_destroy_decompress(&info_);
}

Fault JpegDecoder::begin() {
    if (!readHeader()) return errors_.text;
    if (Fault reason = refusal()) return reason;
    keepMarkers();
    const int orientation = exifOrientation(picture_.exif);
    fullSize_ = QSize(static_cast<int>(info_.image_width), static_cast<int>(info_.image_height));
    if (isTransposed(orientation)) fullSize_.transpose();
    chooseEighths();
    if (!scale()) return errors_.text;
    if (!allocate(orientation)) return "Not enough memory for the picture";
    if (!start()) return errors_.text;
    return std::nullopt;
}

Fault JpegDecoder::decodeSlice() {
    const bool scans = stage_ == Stage::Scans;
    const bool ok = scans ? readScans() : isPlanar() ? readBands() : readRows();
    if (!ok || errors_.corrupt) return errors_.text;
    if (info_.input_scan_number > kScanLimit) return "Too many scans";
    if (scans && stage_ == Stage::Done && !isComplete()) return "Parts of the picture are missing";
    return std::nullopt;
}

bool JpegDecoder::readHeader() {
    if (setjmp(errors_.escape) != 0) return false;
    jpeg_create_decompress(&info_);
    jpeg_mem_src(&info_, reinterpret_cast<const unsigned char*>(jpeg_.data()),
                 static_cast<unsigned long>(jpeg_.size()));
    if (purpose_ != Purpose::Check) {
        jpeg_save_markers(&info_, kExifMarker, 0xFFFF);
        jpeg_save_markers(&info_, kIccMarker, 0xFFFF);
        jpeg_save_markers(&info_, JPEG_COM, 0xFFFF);
    }
    jpeg_read_header(&info_, TRUE);
    return true;
}

Fault JpegDecoder::refusal() const {
    if (std::uint64_t{info_.image_width} * info_.image_height > kPixelLimit)
        return "Picture of " + std::to_string(info_.image_width) + " x " +
               std::to_string(info_.image_height) + " pixels is too large";
    if (purpose_ != Purpose::Check && info_.num_components == 4)
        return "CMYK pictures are not supported";
    return std::nullopt;
}

void JpegDecoder::keepMarkers() {
    for (const jpeg_marker_struct* marker = info_.marker_list; marker != nullptr;
         marker = marker->next) {
        const std::string_view data = contents(*marker);
        if (marker->marker == JPEG_COM)
            picture_.comments.emplace_back(data);
        else if (marker->marker == kExifMarker && picture_.exif.empty() &&
                 data.starts_with(kExifSignature))
            picture_.exif = data;
    }
    // A grey picture is saved in colour, which its own profile would not fit.
    if (info_.num_components != 3) return;
    JOCTET* profile = nullptr;
    unsigned size = 0;
    if (readProfile(&profile, &size)) {
        picture_.colourProfile.assign(reinterpret_cast<const char*>(profile), size);
        std::free(profile);
    }
}

bool JpegDecoder::readProfile(JOCTET** profile, unsigned* size) {
    if (setjmp(errors_.escape) != 0) return false;
    return jpeg_read_icc_profile(&info_, profile, size) != FALSE;
}

void JpegDecoder::chooseEighths() {
    info_.scale_denom = kEighths;
    info_.scale_num = purpose_ == Purpose::Check ? 1 : kEighths;
    if (!bound_.isValid()) return;
    const QSize fitted = fullSize_.scaled(bound_, Qt::KeepAspectRatio);
    const auto reaches = [&](unsigned eighths) {
        return std::int64_t{fullSize_.width()} * eighths >=
                   std::int64_t{fitted.width()} * kEighths &&
               std::int64_t{fullSize_.height()} * eighths >=
                   std::int64_t{fitted.height()} * kEighths;
    };
    while (info_.scale_num > 1 && reaches(info_.scale_num - 1))
        --info_.scale_num;
}

bool JpegDecoder::scale() {
    if (setjmp(errors_.escape) != 0) return false;
    jpeg_calc_output_dimensions(&info_);
    return true;
}

bool JpegDecoder::keepsRows() const {
    return purpose_ == Purpose::Rows || purpose_ == Purpose::RowsOrPlanes;
}

/// As nearly all cameras write it. Mirrored, a picture of an odd width would have its columns of
/// colour between others.
bool JpegDecoder::isPlain420() {
    if (info_.num_components != 3 || info_.jpeg_color_space != JCS_YCbCr) return false;
    if (info_.image_width % 2 != 0 || jpeg_has_multiple_scans(&info_)) return false;
    const auto isSampled = [&](int component, int factor) {
        const jpeg_component_info& info = info_.comp_info[component];
        return info.h_samp_factor == factor && info.v_samp_factor == factor;
    };
    return isSampled(0, 2) && isSampled(1, 1) && isSampled(2, 1);
}

/// The eight orientations of EXIF tag 0x0112.
bool JpegDecoder::allocate(int orientation) {
    if (purpose_ == Purpose::RowsOrPlanes && orientation == 1 && isPlain420()) {
        planes_ = JpegPlanes(static_cast<int>(info_.image_width),
                             rowsInCache(info_.image_width) / JpegPlanes::kBand);
        return true;
    }
    if (purpose_ == Purpose::Check) {
        row_.resize(std::size_t{info_.output_width} * static_cast<unsigned>(info_.num_components));
        return true;
    }
    const bool transposed = isTransposed(orientation);
    const int width = static_cast<int>(transposed ? info_.output_height : info_.output_width);
    int height = static_cast<int>(transposed ? info_.output_width : info_.output_height);
    if (keepsRows()) height = std::min(height, rowsInCache(info_.output_width));
    picture_.pixels =
        keepsRows() ? rowsForCache(width, height) : QImage(width, height, QImage::Format_RGB32);
    if (picture_.pixels.isNull()) return false;

    const std::ptrdiff_t line = picture_.pixels.bytesPerLine() / 4;
    const bool fromRight =
        orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation >= 7;
    const std::ptrdiff_t across = fromRight ? -1 : 1;
    const std::ptrdiff_t down = fromBottom ? -line : line;
    xStep_ = transposed ? down : across;
    yStep_ = transposed ? across : down;
    origin_ = reinterpret_cast<std::uint32_t*>(picture_.pixels.bits()) +
              (fromRight ? width - 1 : 0) + (fromBottom ? (height - 1) * line : 0);
    if (xStep_ != 1) row_.resize(info_.output_width);
    return true;
}

bool JpegDecoder::start() {
    if (setjmp(errors_.escape) != 0) return false;
    info_.out_color_space = purpose_ == Purpose::Check ? info_.jpeg_color_space : kRgb32;
    info_.raw_data_out = isPlanar();
    info_.buffered_image = jpeg_has_multiple_scans(&info_);
    if (info_.buffered_image) stage_ = Stage::Scans;
    jpeg_start_decompress(&info_);
    return true;
}

bool JpegDecoder::readScans() {
    if (setjmp(errors_.escape) != 0) return false;
    const unsigned rows = rowsPerSlice(info_.image_width);
    const unsigned step = static_cast<unsigned>(info_.max_v_samp_factor) * DCTSIZE;
    for (unsigned done = 0; done < rows; done += step) {
        if (jpeg_consume_input(&info_) != JPEG_REACHED_EOI) continue;
        stage_ = purpose_ == Purpose::Check ? Stage::Done : Stage::Rows;
        if (stage_ == Stage::Rows) jpeg_start_output(&info_, info_.input_scan_number);
        break;
    }
    return true;
}

bool JpegDecoder::readRows() {
    if (setjmp(errors_.escape) != 0) return false;
    const bool inPlace = row_.empty();
    // The work is in the picture's own pixels, whatever size comes out.
    unsigned rows =
        std::max(1U, rowsPerSlice(info_.image_width) * info_.scale_num / info_.scale_denom);
    if (keepsRows()) {
        rows = static_cast<unsigned>(picture_.pixels.height());
        top_ = info_.output_scanline;
    }
    for (unsigned i = 0; i < rows && info_.output_scanline < info_.output_height; ++i) {
        JSAMPROW target = reinterpret_cast<JSAMPROW>(
            inPlace ? origin_ + (info_.output_scanline - top_) * yStep_ : row_.data());
        jpeg_read_scanlines(&info_, &target, 1);
        if (!inPlace && purpose_ != Purpose::Check) scatter(row_.data());
    }
    endRows();
    return true;
}

bool JpegDecoder::readBands() {
    if (setjmp(errors_.escape) != 0) return false;
    top_ = info_.output_scanline;
    for (int i = 0; i < planes_.bands() && info_.output_scanline < info_.output_height; ++i)
        jpeg_read_raw_data(&info_, planes_.band(i), JpegPlanes::kBand);
    endRows();
    return true;
}

void JpegDecoder::endRows() {
    if (info_.output_scanline < info_.output_height) return;
    if (info_.buffered_image) jpeg_finish_output(&info_);
    jpeg_finish_decompress(&info_);
    stage_ = Stage::Done;
}

/// Whether a file with several scans brought every component and every bit of it: one that was cut
/// between two scans is read without a warning.
bool JpegDecoder::isComplete() const {
    for (int i = 0; i < info_.num_components; ++i) {
        if (info_.comp_info[i].quant_table == nullptr) return false; // set by its first scan
        if (info_.coef_bits == nullptr) continue;                    // not progressive
        const int* missingBits = info_.coef_bits[i];
        if (std::any_of(missingBits, missingBits + DCTSIZE2, [](int bits) { return bits != 0; }))
            return false;
    }
    return true;
}

QImage JpegDecoder::rows() {
    QImage& pixels = picture_.pixels;
    return QImage(pixels.bits(), pixels.width(), static_cast<int>(info_.output_scanline - top_),
                  pixels.bytesPerLine(), QImage::Format_RGB32);
}

JpegPicture JpegDecoder::header() const {
    return {{}, picture_.exif, picture_.colourProfile, picture_.comments};
}

void JpegDecoder::scatter(const std::uint32_t* row) {
    std::uint32_t* target = origin_ + (info_.output_scanline - 1) * yStep_;
    for (unsigned x = 0; x < info_.output_width; ++x)
        target[x * xStep_] = row[x];
}

} // namespace orvane
