#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QSize>

namespace skycamera {

/// A JPEG APP1 segment (Exif 2.2, big endian) as the camera writes it: maker, model, orientation,
/// resolution, date and time of the picture, its size. No thumbnail.
QByteArray exifSegment(const QDateTime& time, QSize size);

/// Puts the segment behind the start marker, in place of a JFIF header.
QByteArray withExif(const QByteArray& jpeg, const QByteArray& segment);

} // namespace skycamera
