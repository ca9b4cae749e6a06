#pragma once

#include "simulators/sun-tracker/Fault.h"

#include <QByteArray>
#include <QList>
#include <functional>

namespace suntracker {

/// What the tracker sends for one command, and how. Each element of `writes` reaches the PC in one
/// portion: a PC that looks how many bytes are there after the first one sees the whole echo.
struct Answer {
    QList<QByteArray> writes = {};
    /// Time before each single byte; 0 for the line's own speed.
    int byteMs = 0;
    /// How long the port is gone after the last byte; 0 when it stays.
    int hangUpMs = 0;
};

/// ACK and then the echo or reply frame, spoilt as `fault` wants it.
Answer makeAnswer(quint8 command, const QByteArray& data, const Fault& fault,
                  const std::function<quint8()>& randomByte);

} // namespace suntracker
