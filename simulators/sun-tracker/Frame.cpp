#include "simulators/sun-tracker/Frame.h"

#include <algorithm>
#include <numeric>

namespace suntracker {

namespace {

constexpr qsizetype kOverhead = 5;

/// `summed` is CMD with DATA.
char checksum(const QByteArray& summed) {
    return static_cast<char>(
        std::accumulate(summed.begin(), summed.end(), 0U, [](unsigned sum, char byte) {
            return sum + static_cast<unsigned char>(byte);
        }));
}

bool isControl(char byte) {
    return byte == kStx || byte == kAck || byte == kNak;
}

} // namespace

QByteArray makeFrame(quint8 command, const QByteArray& data) {
    const QByteArray summed = static_cast<char>(command) + data;
    QByteArray frame;
    frame += kStx;
    frame += static_cast<char>(data.size());
    frame += summed;
    frame += checksum(summed);
    frame += kEtx;
    return frame;
}

QString hexText(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex(' ')).toUpper();
}

std::optional<Arrival> FrameReader::next() {
    if (buffer_.isEmpty()) return std::nullopt;
    if (buffer_.front() == kStx) return nextFrame();
    if (buffer_.front() == kAck) return take(Arrival::Kind::Ack, 1);
    if (buffer_.front() == kNak) return take(Arrival::Kind::Nak, 1);
    const auto end = std::find_if(buffer_.cbegin(), buffer_.cend(), isControl);
    return take(Arrival::Kind::Stray, end - buffer_.cbegin());
}

std::optional<Arrival> FrameReader::nextFrame() {
    if (buffer_.size() < 2) return std::nullopt;
    const qsizetype length = static_cast<unsigned char>(buffer_.at(1));
    if (length > kMaxData) return take(Arrival::Kind::BadFrame, 2, QString("LEN %1").arg(length));
    const qsizetype size = length + kOverhead;
    if (buffer_.size() < size) return std::nullopt;
    if (buffer_.at(size - 1) != kEtx) return take(Arrival::Kind::BadFrame, size, "no ETX");
    if (buffer_.at(size - 2) != checksum(buffer_.mid(2, length + 1)))
        return take(Arrival::Kind::BadFrame, size, "wrong SUM");
    return take(Arrival::Kind::Command, size);
}

Arrival FrameReader::take(Arrival::Kind kind, qsizetype size, const QString& fault) {
    Arrival arrival{kind, buffer_.left(size), fault};
    buffer_.remove(0, size);
    return arrival;
}

} // namespace suntracker
