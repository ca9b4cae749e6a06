#include "simulators/sky-camera/JpegComments.h"

#include <QtEndian>
#include <algorithm>

namespace skycamera {

namespace {

/// Marker and length of a segment; the length counts itself, but not the marker.
constexpr qsizetype kHeadBytes = 4;
constexpr qsizetype kMaxTextBytes = 0xFFFF - 2;

QByteArray comment(const QByteArray& text) {
    QByteArray head("\xFF\xFE\0\0", kHeadBytes);
    qToBigEndian(static_cast<quint16>(text.size() + 2), head.data() + 2);
    return head + text;
}

QByteArray withSegments(const QByteArray& jpeg, const QByteArray& segments) {
    // EXIF wants to be the first. Before its end: start marker, marker, length.
    const qsizetype place = 4 + qFromBigEndian<quint16>(jpeg.constData() + 4);
    return jpeg.left(place) + segments + jpeg.mid(place);
}

} // namespace

QByteArray withComment(const QByteArray& jpeg, const QByteArray& text) {
    return withSegments(jpeg, comment(text));
}

QByteArray padded(const QByteArray& jpeg, qsizetype bytes) {
    if (jpeg.size() >= bytes) return jpeg;
    QByteArray comments;
    while (jpeg.size() + comments.size() < bytes) {
        const qsizetype missing = bytes - jpeg.size() - comments.size() - kHeadBytes;
        comments += comment(QByteArray(std::clamp<qsizetype>(missing, 0, kMaxTextBytes), '.'));
    }
    return withSegments(jpeg, comments);
}

} // namespace skycamera
