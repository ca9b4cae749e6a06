#include "simulators/sun-tracker/Answer.h"

#include "simulators/sun-tracker/Frame.h"

#include <algorithm>

namespace suntracker {

namespace {

QByteArray garbage(int size, const std::function<quint8()>& randomByte) {
    QByteArray bytes;
    while (bytes.size() < size) {
        const char byte = static_cast<char>(randomByte());
        if (byte != kAck && byte != kStx) bytes += byte;
    }
    return bytes;
}

qsizetype totalSize(const QList<QByteArray>& writes) {
    qsizetype size = 0;
    for (const QByteArray& write : writes)
        size += write.size();
    return size;
}

void truncate(QList<QByteArray>& writes, qsizetype size) {
    for (QByteArray& write : writes) {
        write.truncate(std::min(size, write.size()));
        size -= write.size();
    }
    writes.removeAll(QByteArray());
}

QByteArray longFrame(quint8 command, const QByteArray& data) {
    QByteArray frame = makeFrame(command, data + "UUUU");
    frame[1] = static_cast<char>(data.size());
    return frame;
}

} // namespace

Answer makeAnswer(quint8 command, const QByteArray& data, const Fault& fault,
                  const std::function<quint8()>& randomByte) {
    Answer answer;
    QByteArray start(1, kAck);
    QByteArray frame = makeFrame(command, data);
    switch (fault.kind) {
    case FaultKind::Silence:
        return answer;
    case FaultKind::Nak:
        answer.writes = {QByteArray(1, kNak)};
        return answer;
    case FaultKind::WrongEcho:
    case FaultKind::WrongReply:
        frame = makeFrame(static_cast<quint8>(command + 1), data);
        break;
    case FaultKind::WrongSum:
        frame[frame.size() - 2] = static_cast<char>(frame.at(frame.size() - 2) + 1);
        break;
    case FaultKind::WrongEnd:
        frame.back() = '\r';
        break;
    case FaultKind::Garbage:
        start.prepend(garbage(fault.arg, randomByte));
        break;
    case FaultKind::GarbageFrame:
        frame.prepend(garbage(fault.arg, randomByte));
        break;
    case FaultKind::Twice:
        frame += frame;
        break;
    case FaultKind::Long:
        frame = longFrame(command, data);
        break;
    default:
        break;
    }
    answer.writes = {start, frame};
    if (fault.kind == FaultKind::Slow) answer.byteMs = fault.arg;
    if (fault.kind == FaultKind::SilenceAfter) truncate(answer.writes, fault.arg);
    if (fault.kind == FaultKind::HangUp) {
        truncate(answer.writes, totalSize(answer.writes) / 2);
        answer.hangUpMs = fault.arg;
    }
    return answer;
}

} // namespace suntracker
