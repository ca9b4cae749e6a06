#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace suntracker {

constexpr char kStx = 0x02;
constexpr char kEtx = 0x03;
constexpr char kAck = 0x06;
constexpr char kNak = 0x15;
constexpr qsizetype kMaxData = 252;

/// STX, LEN, CMD, DATA, SUM, ETX; SUM is the plain sum of CMD and DATA modulo 256.
QByteArray makeFrame(quint8 command, const QByteArray& data = {});

/// "02 02 48 31 32 AB 03"
QString hexText(const QByteArray& bytes);

/// What the line brought, taken apart.
struct Arrival {
    enum class Kind { Command, BadFrame, Ack, Nak, Stray };

    Kind kind = Kind::Stray;
    QByteArray raw;
    /// What is wrong with a bad frame.
    QString fault;

    quint8 command() const { return static_cast<quint8>(raw.at(2)); }
    QByteArray data() const { return raw.mid(3, raw.size() - 5); }
};

/// Finds frames and control bytes in a stream that comes in any portions. After a bad frame it goes
/// on behind that frame's announced end.
class FrameReader {
  public:
    void add(const QByteArray& bytes) { buffer_ += bytes; }
    /// Nothing when more bytes are needed.
    std::optional<Arrival> next();
    /// The beginning of a frame whose rest has not come; empty between frames.
    const QByteArray& incomplete() const { return buffer_; }
    void clear() { buffer_.clear(); }

  private:
    std::optional<Arrival> nextFrame();
    Arrival take(Arrival::Kind kind, qsizetype size, const QString& fault = {});

    QByteArray buffer_;
};

} // namespace suntracker
