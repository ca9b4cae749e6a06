#include "imaging/JpegMarkers.h"

#include <cstddef>
#include <cstring>

namespace orvane {

namespace {

// ITU-T T.81, table B.1.
constexpr unsigned kTem = 0x01;
constexpr unsigned kRst0 = 0xD0;
constexpr unsigned kRst7 = 0xD7;
constexpr unsigned kSof0 = 0xC0;
constexpr unsigned kSof15 = 0xCF;
constexpr unsigned kDht = 0xC4; ///< these three stand among the frame headers' codes
constexpr unsigned kJpg = 0xC8;
constexpr unsigned kDac = 0xCC;
constexpr unsigned kSoi = 0xD8;
constexpr unsigned kEoi = 0xD9;
constexpr unsigned kSos = 0xDA;

/// Steps over the bytes of one picture. Every step checks what is left first.
class MarkerWalk {
  public:
    explicit MarkerWalk(std::string_view bytes) : bytes_(bytes) {}

    bool wholePicture() {
        if (nextMarker() != kSoi) return false;
        bool scanSeen = false;
        while (true) {
            const unsigned marker = nextMarker();
            if (marker == kEoi) return scanSeen;
            if (marker == 0 || marker == kSoi) return false;
            if (isBare(marker)) continue;
            if (!skipSegment()) return false;
            if (marker != kSos) continue;
            scanSeen = true;
            if (!skipEntropyData()) return false;
        }
    }

    std::optional<JpegSize> size() {
        if (nextMarker() != kSoi) return std::nullopt;
        while (true) {
            const unsigned marker = nextMarker();
            if (marker == 0 || marker == kSoi || marker == kEoi || marker == kSos)
                return std::nullopt;
            if (isBare(marker)) continue;
            const std::size_t segment = position_;
            if (!skipSegment()) return std::nullopt;
            if (isFrame(marker)) return sizeIn(segment);
        }
    }

  private:
    static bool isFrame(unsigned marker) {
        return marker >= kSof0 && marker <= kSof15 && marker != kDht && marker != kJpg &&
               marker != kDac;
    }
    static bool isBare(unsigned marker) {
        return marker == kTem || (marker >= kRst0 && marker <= kRst7);
    }

    unsigned byteAt(std::size_t position) const {
        return static_cast<unsigned char>(bytes_[position]);
    }

    /// The code behind 0xFF and any fill bytes; 0 when there is none here.
    unsigned nextMarker() {
        if (position_ >= bytes_.size() || byteAt(position_) != 0xFF) return 0;
        while (position_ < bytes_.size() && byteAt(position_) == 0xFF)
            ++position_;
        return position_ < bytes_.size() ? byteAt(position_++) : 0;
    }

    bool skipSegment() {
        if (bytes_.size() - position_ < 2) return false;
        const std::size_t length = wordAt(position_);
        if (length < 2 || length > bytes_.size() - position_) return false;
        position_ += length;
        return true;
    }

    unsigned wordAt(std::size_t position) const {
        return byteAt(position) << 8 | byteAt(position + 1);
    }

    /// Of a frame header that has been skipped: length, precision, height, width. A height of 0
    /// comes later in the file.
    std::optional<JpegSize> sizeIn(std::size_t segment) const {
        constexpr std::size_t kHeight = 3;
        constexpr std::size_t kWidth = 5;
        if (position_ - segment < kWidth + 2) return std::nullopt;
        const JpegSize size{static_cast<int>(wordAt(segment + kWidth)),
                            static_cast<int>(wordAt(segment + kHeight))};
        if (size.width == 0 || size.height == 0) return std::nullopt;
        return size;
    }

    /// Ends in front of the marker that ends the scan. Stuffed zeros and restart markers belong to
    /// the data.
    bool skipEntropyData() {
        while (position_ < bytes_.size()) {
            const void* found =
                std::memchr(bytes_.data() + position_, 0xFF, bytes_.size() - position_);
            if (found == nullptr) return false;
            position_ = static_cast<std::size_t>(static_cast<const char*>(found) - bytes_.data());
            if (position_ + 1 >= bytes_.size()) return false;
            const unsigned code = byteAt(position_ + 1);
            if (code == 0xFF) {
                ++position_;
            } else if (code == 0 || (code >= kRst0 && code <= kRst7)) {
                position_ += 2;
            } else {
                return true;
            }
        }
        return false;
    }

    std::string_view bytes_;
    std::size_t position_ = 0;
};

} // namespace

bool isWholeJpeg(std::string_view bytes) {
    return MarkerWalk(bytes).wholePicture();
}

std::optional<JpegSize> jpegSize(std::string_view bytes) {
    return MarkerWalk(bytes).size();
}

Task<Fault> pictureFault(ImageControl& control, const std::string& bytes) {
    // First: a page or a cut answer is no damaged picture, and costs no decoding.
    if (!isWholeJpeg(bytes)) co_return "the answer is not a whole JPEG picture";
    Task<Fault> checking = control.check(bytes);
    Fault fault = co_await checking;
    if (fault) fault = "the picture is damaged: " + *fault;
    co_return fault;
}

} // namespace orvane
