#pragma once

#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"

#include <map>

#include <QImage>

namespace orvane::test {

// Pictures made with Qt, and JPEG and EXIF structures read and written byte by byte, so that what
// the imaging control does is checked by other code than its own.

/// Red grows to the right, green downwards, and the top left corner is blue: no two orientations
/// look alike.
QImage gradient(int width, int height);
std::string encoded(const QImage& picture, int quality = 95, bool progressive = false);
QImage decoded(const std::filesystem::path& file);
/// Largest difference of any colour of any pixel; 255 when the sizes differ.
int difference(const QImage& a, const QImage& b);
/// Mean over all pixels and colours; 255 when the sizes differ.
double meanDifference(const QImage& a, const QImage& b);

std::string segment(int marker, const std::string& payload);
/// `segments` directly behind the start marker.
std::string withSegments(const std::string& jpeg, const std::string& segments);

/// What stands in front of the first scan.
struct JpegParts {
    std::vector<std::pair<int, std::string>> segments; ///< marker (0xE1), payload
    std::vector<int> sampling;                         ///< 0x22: two by two, for each component

    std::vector<std::string> all(int marker) const;
    bool has(int marker) const { return !all(marker).empty(); }
    /// The payload without its signature of the APP1 Exif segment, or empty.
    std::string tiff() const;
};
JpegParts partsOf(const std::string& jpeg);

struct TiffEntry {
    int tag;
    int type;            ///< 2 ASCII, 3 SHORT, 4 LONG, 5 RATIONAL
    std::uint32_t count; ///< of values, not bytes
    std::string bytes;   ///< little endian
};
TiffEntry shortEntry(int tag, int value);
TiffEntry longEntry(int tag, std::uint32_t value);
TiffEntry textEntry(int tag, const std::string& text);

/// An APP1 payload: IFD 0, the Exif IFD, and IFD 1 with a thumbnail unless that is empty.
std::string exifPayload(std::vector<TiffEntry> ifd0, const std::vector<TiffEntry>& exif,
                        const std::string& thumbnail = {});

enum class Ifd { Zero, Exif };
using TiffEntries = std::map<std::pair<Ifd, int>, TiffEntry>;
/// Of a little endian TIFF block.
TiffEntries tiffEntries(const std::string& tiff);
std::uint32_t numberOf(const TiffEntries& entries, Ifd ifd, int tag);
std::string textOf(const TiffEntries& entries, Ifd ifd, int tag);

} // namespace orvane::test
