#include "simulators/sky-camera/JpegPadding.h"

#include <QtEndian>
#include <algorithm>

namespace skycamera {

namespace {

/// Marker and length; the length counts itself, but not the marker.
constexpr qsizetype kHeadBytes = 4;
constexpr qsizetype kMaxSegmentBytes = 2 + 0xFFFF;

QByteArray comment(qsizetype segmentBytes) {
    const auto length = static_cast<quint16>(segmentBytes - 2);
    QByteArray segment("\xFF\xFE\0\0", kHeadBytes);
    qToBigEndian(length, segment.data() + 2);
    return segment + QByteArray(segmentBytes - kHeadBytes, '.');
}

} // namespace

QByteArray padded(const QByteArray& jpeg, qsizetype bytes) {
    QByteArray comments;
    for (qsizetype missing = bytes - jpeg.size(); missing > 0;) {
        const qsizetype segment = std::clamp(missing, kHeadBytes, kMaxSegmentBytes);
        comments += comment(segment);
        missing -= segment;
    }
    // EXIF wants to be the first: start marker, marker, length.
    const qsizetype first = 4 + qFromBigEndian<quint16>(jpeg.constData() + 4);
    return jpeg.left(first) + comments + jpeg.mid(first);
}

} // namespace skycamera
