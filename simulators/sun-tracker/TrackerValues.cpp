#include "simulators/sun-tracker/TrackerValues.h"

#include <bit>
#include <limits>

namespace suntracker {

namespace {

constexpr qsizetype kSerialSize = 16;

template <typename Unsigned>
QByteArray bigEndian(Unsigned value) {
    QByteArray bytes;
    for (int shift = std::numeric_limits<Unsigned>::digits - 8; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

QByteArray doubleBytes(double value) {
    static_assert(std::numeric_limits<double>::is_iec559);
    return bigEndian(std::bit_cast<quint64>(value));
}

QString setNumber(double& target, const QString& text) {
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (!ok) return "a number expected";
    target = number;
    return {};
}

QString setTimeZone(qint16& target, const QString& text) {
    bool ok = false;
    const qint16 minutes = text.toShort(&ok);
    if (!ok) return "a whole number from -32768 to 32767 expected";
    target = minutes;
    return {};
}

QString setSerial(QByteArray& target, const QString& text) {
    const QByteArray latin = text.toLatin1();
    if (latin.size() > kSerialSize || QString::fromLatin1(latin) != text)
        return "at most 16 Latin-1 characters expected";
    target = latin;
    return {};
}

QString setRunning(bool& target, const QString& text) {
    if (text != "on" && text != "off") return "on or off expected";
    target = text == "on";
    return {};
}

} // namespace

QString TrackerValues::set(const QString& name, const QString& value) {
    if (name == "serial") return setSerial(serial, value);
    if (name == "timezone") return setTimeZone(timeZone, value);
    if (name == "longitude") return setNumber(longitude, value);
    if (name == "latitude") return setNumber(latitude, value);
    if (name == "origin") return setNumber(origin, value);
    if (name == "running") return setRunning(running, value);
    return "serial, timezone, longitude, latitude, origin or running expected";
}

QString TrackerValues::text() const {
    return QString("serial \"%1\", time zone %2 min, longitude %3, latitude %4, origin %5, "
                   "sun tracking %6")
        .arg(QString::fromLatin1(serial))
        .arg(timeZone)
        .arg(longitude, 0, 'g', 12)
        .arg(latitude, 0, 'g', 12)
        .arg(origin, 0, 'g', 12)
        .arg(running ? "on" : "off");
}

QByteArray TrackerValues::serialData() const {
    return serial.leftJustified(kSerialSize, '\0');
}

QByteArray TrackerValues::siteData() const {
    return bigEndian(static_cast<quint16>(timeZone)) + doubleBytes(longitude) +
           doubleBytes(latitude);
}

QByteArray TrackerValues::originData() const {
    return doubleBytes(origin);
}

} // namespace suntracker
