#pragma once

#include <QByteArray>
#include <QDateTime>
#include <compare>
#include <optional>

namespace skycamera {

/// What names a stored picture: date and time to the second, and a frame number from 0 to 99 that
/// tells pictures of the same second apart.
///
/// Held as the digits yyyymmddhhmmssff, so that stamps sort as their fields do, also such fields as
/// no calendar has (31 February): what a client may ask for.
struct Stamp {
    qint64 digits = 0;

    /// `time` is calendar time; its milliseconds do not count.
    static Stamp of(const QDateTime& time, int frame = 0);
    /// The stamp of exactly "/record/yyyymmdd/yyyymmdd_hhmmss_ff.jpg"; nothing for anything else.
    static std::optional<Stamp> ofPath(const QByteArray& path);

    /// Calendar time; invalid when the calendar has no such moment.
    QDateTime time() const;
    int frame() const { return static_cast<int>(digits % 100); }
    /// "yyyymmdd"
    QByteArray day() const { return text().left(8); }
    /// "yyyymmddhhmmss"
    QByteArray second() const { return text().left(14); }
    /// "yyyymmdd_hhmmss_ff.jpg"
    QByteArray name() const;
    /// "record/yyyymmdd/yyyymmdd_hhmmss_ff.jpg", as search pages have it.
    QByteArray path() const;

    auto operator<=>(const Stamp&) const = default;

  private:
    QByteArray text() const { return QByteArray::number(digits).rightJustified(16, '0'); }
};

} // namespace skycamera
