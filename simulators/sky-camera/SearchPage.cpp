#include "simulators/sky-camera/SearchPage.h"

#include <array>

namespace skycamera {

namespace {

constexpr qsizetype kMegabyte = 1'000'000;

/// A path whose name has other than 22 characters; every third is as it should be.
QByteArray wrongLength(Stamp stamp, quint64 turn) {
    const QByteArray folder = "record/" + stamp.day() + '/';
    const QByteArray name = stamp.name();
    switch (turn % 3) {
    case 0:
        return folder + name.left(18) + "_0001.jpg";
    case 1:
        return folder + name.left(15) + ".jpg";
    default:
        return stamp.path();
    }
}

/// A path that leads out of its folder when it is taken at its word, here or on the client's disk.
QByteArray wrongPlace(Stamp stamp, quint64 turn) {
    const QByteArray folder = "record/" + stamp.day() + '/';
    const QByteArray name = stamp.name();
    const std::array paths{
        folder + "..\\..\\" + name,
        folder + "C:\\" + name,
        // Also names of the right length.
        folder + "..\\" + name.mid(3),
        folder + "C:" + name.mid(2),
        folder + "..",
        "record/../../" + stamp.day() + '/' + name,
        folder + "\\\\server\\share\\" + name,
    };
    return paths.at(turn % paths.size());
}

QByteArray pathOf(Stamp stamp, FaultKind kind, quint64 turn, quint64 index) {
    if (kind == FaultKind::ListNames) return wrongLength(stamp, index);
    if (kind == FaultKind::ListPaths) return wrongPlace(stamp, turn + index);
    return stamp.path();
}

QByteArray records(const std::vector<Stamp>& stamps, FaultKind kind, quint64 turn) {
    QByteArray text;
    quint64 index = 0;
    for (const Stamp& stamp : stamps) {
        const QByteArray path = pathOf(stamp, kind, turn, index++);
        text += QByteArray::number(index) + ',' + stamp.second() + ',' + path + ",\n";
    }
    return text.isEmpty() ? "NO_DATA\n" : text;
}

/// Made in one go and gone when it is sent: 50 MB take some hundredths of a second.
QByteArray repeated(const QByteArray& text, int megabytes) {
    QByteArray all = text.repeated(megabytes * kMegabyte / text.size() + 1);
    all.truncate(megabytes * kMegabyte);
    return all;
}

} // namespace

HttpReply searchPage(const std::vector<Stamp>& stamps, const Fault& fault, quint64 turn) {
    HttpReply reply;
    reply.contentType = "text/plain; charset=us-ascii";
    switch (fault.kind) {
    case FaultKind::ListBig:
        reply.body = repeated("0,00000000000000,record/00000000/nonsense.jpg,\n", fault.arg);
        return reply;
    case FaultKind::ListOneField:
        reply.body = repeated("0123456789", fault.arg);
        return reply;
    default:
        reply.body = records(stamps, fault.kind, turn);
    }
    if (fault.kind == FaultKind::ListNoComma && !stamps.empty())
        reply.body.truncate(reply.body.lastIndexOf(','));
    if (fault.kind == FaultKind::ListHtml) {
        reply.contentType = "text/html; charset=us-ascii";
        reply.body = "<!DOCTYPE html>\n<html><head><title>Search</title></head><body><pre>\n" +
                     reply.body + "</pre></body></html>\n";
    }
    return reply;
}

} // namespace skycamera
