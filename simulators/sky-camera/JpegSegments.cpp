#include "simulators/sky-camera/JpegSegments.h"

#include <QtEndian>
#include <algorithm>

namespace skycamera {

namespace {

/// Marker and length of a segment; the length counts itself, but not the marker.
constexpr qsizetype kHeadBytes = 4;
constexpr qsizetype kMaxTextBytes = 0xFFFF - 2;

QByteArray segment(char marker, const QByteArray& content) {
    QByteArray head("\xFF\0\0\0", kHeadBytes);
    head[1] = marker;
    qToBigEndian(static_cast<quint16>(content.size() + 2), head.data() + 2);
    return head + content;
}

/// Behind the first segment: EXIF wants to be the first.
QByteArray withSegments(const QByteArray& jpeg, const QByteArray& segments) {
    // before its end: start marker, marker, length
    const qsizetype place = 4 + qFromBigEndian<quint16>(jpeg.constData() + 4);
    return jpeg.left(place) + segments + jpeg.mid(place);
}

} // namespace

QByteArray withExif(const QByteArray& jpeg, const QDateTime& time) {
    const QByteArray stamp = time.toString("yyyy:MM:dd HH:mm:ss").toLatin1() + '\0';
    // TIFF, high byte first. A directory entry is tag, type, count and the value or where it lies.
    const QByteArray content = QByteArray("Exif\0\0", 6) +
                               QByteArray::fromHex("4d4d002a 00000008" // its directory follows
                                                   "0003 0112 0003 00000001 00010000" // upright
                                                   "0132 0002 00000014 00000032"      // time, at 50
                                                   "8769 0004 00000001 00000046"      // more, at 70
                                                   "00000000") +
                               stamp +
                               QByteArray::fromHex("0001 9003 0002 00000014 00000058" // at 88
                                                   "00000000") +
                               stamp;
    const bool jfif = jpeg.mid(2, 2) == "\xFF\xE0";
    const qsizetype rest = jfif ? 4 + qFromBigEndian<quint16>(jpeg.constData() + 4) : 2;
    return jpeg.left(2) + segment('\xE1', content) + jpeg.mid(rest);
}

QByteArray withComment(const QByteArray& jpeg, const QByteArray& text) {
    return withSegments(jpeg, segment('\xFE', text));
}

QByteArray padded(const QByteArray& jpeg, qsizetype bytes) {
    if (jpeg.size() >= bytes) return jpeg;
    QByteArray comments;
    while (jpeg.size() + comments.size() < bytes) {
        const qsizetype missing = bytes - jpeg.size() - comments.size() - kHeadBytes;
        comments +=
            segment('\xFE', QByteArray(std::clamp<qsizetype>(missing, 0, kMaxTextBytes), '.'));
    }
    return withSegments(jpeg, comments);
}

} // namespace skycamera
