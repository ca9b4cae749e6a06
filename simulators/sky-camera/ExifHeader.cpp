#include "simulators/sky-camera/ExifHeader.h"

#include <QList>
#include <QtEndian>

namespace skycamera {

namespace {

enum Type : quint16 { Ascii = 2, Short = 3, Long = 4, Rational = 5, Undefined = 7 };

struct Entry {
    quint16 tag;
    Type type;
    quint32 count;
    /// The value's bytes, big endian; above four they go behind the directory.
    QByteArray value;
};

template <typename Number>
QByteArray bytes(Number number) {
    QByteArray result(sizeof(Number), '\0');
    qToBigEndian(number, result.data());
    return result;
}

Entry asciiEntry(quint16 tag, const QByteArray& text) {
    return {tag, Ascii, static_cast<quint32>(text.size() + 1), text + '\0'};
}

Entry shortEntry(quint16 tag, quint16 value) {
    return {tag, Short, 1, bytes(value)};
}

Entry longEntry(quint16 tag, qsizetype value) {
    return {tag, Long, 1, bytes(static_cast<quint32>(value))};
}

qsizetype directoryLength(const QList<Entry>& entries) {
    qsizetype length = 2 + 12 * entries.size() + 4;
    for (const Entry& entry : entries)
        if (entry.value.size() > 4) length += (entry.value.size() + 1) / 2 * 2;
    return length;
}

/// One image file directory that starts at `offset` of the TIFF data; entries in order of tags.
QByteArray directory(const QList<Entry>& entries, qsizetype offset) {
    QByteArray table = bytes(static_cast<quint16>(entries.size()));
    QByteArray values;
    const qsizetype valuesAt = offset + 2 + 12 * entries.size() + 4;
    for (const Entry& entry : entries) {
        table += bytes(entry.tag) + bytes(static_cast<quint16>(entry.type)) + bytes(entry.count);
        if (entry.value.size() <= 4) {
            table += entry.value.leftJustified(4, '\0');
        } else {
            table += bytes(static_cast<quint32>(valuesAt + values.size()));
            values += entry.value;
            // Values start at even offsets.
            if (values.size() % 2 != 0) values += '\0';
        }
    }
    return table + bytes(quint32{0}) + values;
}

} // namespace

QByteArray exifSegment(const QDateTime& time, QSize size) {
    const QByteArray stamp = time.toString("yyyy:MM:dd HH:mm:ss").toLatin1();
    const QByteArray resolution = bytes(quint32{72}) + bytes(quint32{1});
    QList<Entry> main{
        asciiEntry(0x010F, "Orvane"),
        asciiEntry(0x0110, "Sky Camera Simulator"),
        shortEntry(0x0112, 1),
        {0x011A, Rational, 1, resolution},
        {0x011B, Rational, 1, resolution},
        shortEntry(0x0128, 2),
        asciiEntry(0x0132, stamp),
        longEntry(0x8769, 0),
    };
    constexpr qsizetype kMainAt = 8;
    const qsizetype exifAt = kMainAt + directoryLength(main);
    main.last() = longEntry(0x8769, exifAt);

    const QList<Entry> exif{
        {0x9000, Undefined, 4, "0220"},  asciiEntry(0x9003, stamp),
        asciiEntry(0x9004, stamp),       shortEntry(0xA001, 1),
        longEntry(0xA002, size.width()), longEntry(0xA003, size.height()),
    };
    const QByteArray tiff = QByteArray("MM\0\x2A", 4) + bytes(static_cast<quint32>(kMainAt)) +
                            directory(main, kMainAt) + directory(exif, exifAt);
    const QByteArray content = QByteArray("Exif\0\0", 6) + tiff;
    return "\xFF\xE1" + bytes(static_cast<quint16>(content.size() + 2)) + content;
}

QByteArray withExif(const QByteArray& jpeg, const QByteArray& segment) {
    qsizetype rest = 2;
    if (jpeg.mid(2, 2) == "\xFF\xE0") rest += 2 + qFromBigEndian<quint16>(jpeg.constData() + 4);
    return jpeg.left(2) + segment + jpeg.mid(rest);
}

} // namespace skycamera
