#pragma once

#include <QByteArray>
#include <QString>

namespace suntracker {

/// What the tracker reports when it is asked, and whether it follows the sun. Numbers are not held
/// within sensible bounds: a PC program has to cope with a tracker that reports nonsense.
struct TrackerValues {
    /// At most 16 Latin-1 characters.
    QByteArray serial = "ST0001";
    /// Minutes, east positive.
    qint16 timeZone = 540;
    /// Degrees, east and north positive.
    double longitude = 139.75;
    double latitude = 35.68;
    /// Degrees.
    double origin = 0.0;
    bool running = true;

    /// Sets serial, timezone, longitude, latitude, origin or running from text. Returns what is
    /// wrong, or an empty text.
    QString set(const QString& name, const QString& value);
    QString text() const;

    /// The DATA of the replies: multi-byte values with the high byte first.
    QByteArray serialData() const;
    QByteArray siteData() const;
    QByteArray originData() const;
};

} // namespace suntracker
