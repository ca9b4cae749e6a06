#include "tests/support/TestPictures.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

namespace orvane::test {

namespace {

constexpr int kExifIfd = 0x8769;
constexpr int kThumbnailOffset = 0x0201;
constexpr int kThumbnailLength = 0x0202;
const std::string kExifSignature("Exif\0\0", 6);

std::string littleEndian(std::uint32_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return bytes;
}

unsigned byteOf(const std::string& bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes.at(at));
}

/// One directory placed at `offset`, its long values behind it.
std::string directory(const std::vector<TiffEntry>& entries, std::size_t offset,
                      std::uint32_t next) {
    std::string head = littleEndian(static_cast<std::uint32_t>(entries.size()), 2);
    std::string values;
    const std::size_t valuesAt = offset + 2 + entries.size() * 12 + 4;
    for (const TiffEntry& entry : entries) {
        head += littleEndian(static_cast<std::uint32_t>(entry.tag), 2);
        head += littleEndian(static_cast<std::uint32_t>(entry.type), 2);
        head += littleEndian(entry.count, 4);
        if (entry.bytes.size() <= 4) {
            head += entry.bytes + std::string(4 - entry.bytes.size(), '\0');
        } else {
            head += littleEndian(static_cast<std::uint32_t>(valuesAt + values.size()), 4);
            values += entry.bytes + std::string(entry.bytes.size() % 2, '\0');
        }
    }
    return head + littleEndian(next, 4) + values;
}

/// Of the lowest byte first.
std::uint32_t number(const std::string& bytes, std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = size; i-- > 0;)
        value = value << 8 | byteOf(bytes, at + i);
    return value;
}

void readDirectory(const std::string& tiff, Ifd ifd, std::uint32_t at, TiffEntries& entries) {
    static constexpr std::uint32_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8};
    const std::uint32_t end = at + 2 + number(tiff, at, 2) * 12;
    for (at += 2; at < end; at += 12) {
        TiffEntry entry{static_cast<int>(number(tiff, at, 2)),
                        static_cast<int>(number(tiff, at + 2, 2)),
                        number(tiff, at + 4, 4),
                        {}};
        const std::uint32_t size = kSizes[entry.type] * entry.count;
        entry.bytes = tiff.substr(size <= 4 ? at + 8 : number(tiff, at + 8, 4), size);
        if (entry.tag == kExifIfd)
            readDirectory(tiff, Ifd::Exif, number(entry.bytes, 0, 4), entries);
        entries.insert({{ifd, entry.tag}, entry});
    }
}

/// Of each colour of each pixel: the largest and the mean; 255 when the sizes differ.
std::pair<int, double> differences(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) return {255, 255};
    int largest = 0;
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            for (const int by : {qRed(p) - qRed(q), qGreen(p) - qGreen(q), qBlue(p) - qBlue(q)}) {
                largest = std::max(largest, std::abs(by));
                sum += std::abs(by);
            }
        }
    return {largest, sum / (3.0 * a.width() * a.height())};
}

} // namespace

QImage gradient(int width, int height) {
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool corner = x < width / 4 && y < height / 4;
            picture.setPixel(x, y, qRgb(255 * x / width, 255 * y / height, corner ? 255 : 0));
        }
    return picture;
}

std::string encoded(const QImage& picture, int quality, bool progressive) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(progressive);
    writer.write(picture);
    return buffer.data().toStdString();
}

QImage decoded(const std::filesystem::path& file) {
    return QImage::fromData(QByteArray::fromStdString(contentsOf(file)), "jpeg");
}

int difference(const QImage& a, const QImage& b) {
    return differences(a, b).first;
}
double meanDifference(const QImage& a, const QImage& b) {
    return differences(a, b).second;
}

std::string segment(int marker, const std::string& payload) {
    const std::size_t length = payload.size() + 2;
    return std::string{'\xFF', static_cast<char>(marker), static_cast<char>(length >> 8),
                       static_cast<char>(length & 0xFF)} +
           payload;
}

std::string withSegments(const std::string& jpeg, const std::string& segments) {
    return jpeg.substr(0, 2) + segments + jpeg.substr(2);
}

std::vector<std::string> JpegParts::all(int marker) const {
    std::vector<std::string> found;
    for (const auto& [code, payload] : segments)
        if (code == marker) found.push_back(payload);
    return found;
}

std::string JpegParts::tiff() const {
    for (const std::string& payload : all(0xE1))
        if (payload.starts_with(kExifSignature)) return payload.substr(kExifSignature.size());
    return {};
}

JpegParts partsOf(const std::string& jpeg) {
    JpegParts parts;
    std::size_t at = 2;
    while (at + 4 <= jpeg.size() && byteOf(jpeg, at) == 0xFF && byteOf(jpeg, at + 1) != 0xDA) {
        const unsigned length = byteOf(jpeg, at + 2) << 8 | byteOf(jpeg, at + 3);
        parts.segments.emplace_back(byteOf(jpeg, at + 1), jpeg.substr(at + 4, length - 2));
        at += 2 + length;
    }
    for (const auto& [code, payload] : parts.segments) {
        if (code < 0xC0 || code > 0xC2) continue;
        for (unsigned i = 0; i < byteOf(payload, 5); ++i)
            parts.sampling.push_back(static_cast<int>(byteOf(payload, 6 + 3 * i + 1)));
    }
    return parts;
}

TiffEntry shortEntry(int tag, int value) {
    return {tag, 3, 1, littleEndian(static_cast<std::uint32_t>(value), 2)};
}
TiffEntry longEntry(int tag, std::uint32_t value) {
    return {tag, 4, 1, littleEndian(value, 4)};
}
TiffEntry textEntry(int tag, const std::string& text) {
    return {tag, 2, static_cast<std::uint32_t>(text.size() + 1), text + '\0'};
}

std::string exifPayload(std::vector<TiffEntry> ifd0, const std::vector<TiffEntry>& exif,
                        const std::string& thumbnail) {
    constexpr std::size_t kIfd0At = 8;
    ifd0.push_back(longEntry(kExifIfd, 0));
    const std::size_t exifAt = kIfd0At + directory(ifd0, kIfd0At, 0).size();
    ifd0.back() = longEntry(kExifIfd, static_cast<std::uint32_t>(exifAt));
    const std::string exifBytes = directory(exif, exifAt, 0);
    const std::size_t ifd1At = exifAt + exifBytes.size();
    const std::size_t thumbnailAt = ifd1At + 2 + 2 * 12 + 4;
    const std::vector<TiffEntry> ifd1 = {
        longEntry(kThumbnailOffset, static_cast<std::uint32_t>(thumbnailAt)),
        longEntry(kThumbnailLength, static_cast<std::uint32_t>(thumbnail.size()))};
    const auto next = static_cast<std::uint32_t>(thumbnail.empty() ? 0 : ifd1At);
    std::string tiff = "II*" + std::string(1, '\0') + littleEndian(kIfd0At, 4) +
                       directory(ifd0, kIfd0At, next) + exifBytes;
    if (!thumbnail.empty()) tiff += directory(ifd1, ifd1At, 0) + thumbnail;
    return kExifSignature + tiff;
}

TiffEntries tiffEntries(const std::string& tiff) {
    TiffEntries entries;
    if (!tiff.empty()) readDirectory(tiff, Ifd::Zero, number(tiff, 4, 4), entries);
    return entries;
}

std::uint32_t numberOf(const TiffEntries& entries, Ifd ifd, int tag) {
    const auto found = entries.find({ifd, tag});
    return found == entries.end() ? 0xFFFFFFFF
                                  : number(found->second.bytes, 0, found->second.bytes.size());
}

std::string textOf(const TiffEntries& entries, Ifd ifd, int tag) {
    const auto found = entries.find({ifd, tag});
    return found == entries.end() ? "missing" : found->second.bytes.c_str();
}

} // namespace orvane::test
