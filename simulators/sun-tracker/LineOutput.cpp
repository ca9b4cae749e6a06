#include "simulators/sun-tracker/LineOutput.h"

#include <algorithm>

namespace suntracker {

using namespace std::chrono_literals;

namespace {

constexpr int kBitsPerByte = 10;
/// A PC's serial chip hands over what it received in such portions.
constexpr qsizetype kReceiveBuffer = 16;
/// What was sent before a hang-up must have time to be read: a hang-up discards the rest.
constexpr auto kBeforeHangUp = 20ms;

} // namespace

LineOutput::LineOutput(int baud, QObject* parent) : QObject(parent), baud_(baud) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &LineOutput::run);
}

void LineOutput::send(const Answer& answer) {
    for (const QByteArray& write : answer.writes) {
        if (answer.byteMs == 0) {
            enqueueWrite(write);
            continue;
        }
        for (const char byte : write)
            enqueue(QByteArray(1, byte), std::chrono::milliseconds(answer.byteMs));
    }
    if (answer.hangUpMs > 0) enqueue({}, kBeforeHangUp, answer.hangUpMs);
    run();
}

void LineOutput::clear() {
    timer_.stop();
    steps_.clear();
    lastAt_ = {};
}

void LineOutput::enqueueWrite(const QByteArray& bytes) {
    if (baud_ == 0) {
        enqueue(bytes, 0ms);
        return;
    }
    for (qsizetype at = 0; at < bytes.size(); at += kReceiveBuffer) {
        const QByteArray portion = bytes.mid(at, kReceiveBuffer);
        enqueue(portion, std::chrono::nanoseconds(1s) * kBitsPerByte * portion.size() / baud_);
    }
}

void LineOutput::enqueue(const QByteArray& bytes, Ticks::duration duration, int hangUpMs) {
    lastAt_ = std::max(lastAt_, Ticks::now()) + duration;
    steps_.push_back({bytes, hangUpMs, lastAt_});
}

void LineOutput::run() {
    while (!steps_.empty() && steps_.front().at <= Ticks::now()) {
        const Step step = steps_.front();
        steps_.pop_front();
        if (step.hangUpMs > 0)
            emit hangUpDue(step.hangUpMs);
        else
            emit due(step.bytes);
    }
    if (!steps_.empty())
        timer_.start(
            std::chrono::ceil<std::chrono::milliseconds>(steps_.front().at - Ticks::now()));
}

} // namespace suntracker
