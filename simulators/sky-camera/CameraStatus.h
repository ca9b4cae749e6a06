#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace skycamera {

/// What the camera tells about itself.
struct CameraStatus {
    bool recording = false;
    QDateTime clock;
    double clockOffsetSeconds = 0.0;
    /// The rule in force, "none" without one.
    QString fault;
    quint64 requestsServed = 0;
    /// Requests answered with a fault.
    quint64 faultsServed = 0;
    /// Whole pictures, also late, slow, huge and stale ones.
    quint64 picturesServed = 0;
    /// Pictures in the camera's store.
    qint64 picturesHeld = 0;
    /// Search pages that went out to their end, also late ones and such with wrong records.
    quint64 searchesServed = 0;
};

QByteArray statusJson(const CameraStatus& status);
/// The camera's start page.
QByteArray statusPage(const CameraStatus& status);

} // namespace skycamera
