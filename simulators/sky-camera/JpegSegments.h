#pragma once

#include <QByteArray>
#include <QDateTime>

namespace skycamera {

/// The same picture with an EXIF 2.2 header behind the start marker, in place of a JFIF one:
/// orientation, date and time.
QByteArray withExif(const QByteArray& jpeg, const QDateTime& time);

/// The same picture with a comment behind its first segment; `text` has up to 65,533 bytes.
QByteArray withComment(const QByteArray& jpeg, const QByteArray& text);

/// The same picture with at least `bytes` bytes, by comments behind its first segment.
QByteArray padded(const QByteArray& jpeg, qsizetype bytes);

} // namespace skycamera
