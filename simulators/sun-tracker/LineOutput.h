#pragma once

#include "simulators/sun-tracker/Answer.h"

#include <QObject>
#include <QTimer>
#include <chrono>
#include <deque>

namespace suntracker {

/// The sending half of the tracker's line: hands out the bytes of answers when they would have
/// passed the line. An answer that is not through when the next one comes is finished first, as
/// from a device that does one thing after the other.
class LineOutput final : public QObject {
    Q_OBJECT

  public:
    /// `baud` 0: without delay.
    explicit LineOutput(int baud, QObject* parent = nullptr);

    void send(const Answer& answer);
    /// Forgets what has not been sent.
    void clear();

  signals:
    /// One portion, to be written at once.
    void due(const QByteArray& bytes);
    void hangUpDue(int awayMs);

  private:
    using Ticks = std::chrono::steady_clock;
    struct Step {
        QByteArray bytes;
        int hangUpMs = 0;
        Ticks::time_point at;
    };

    void enqueueWrite(const QByteArray& bytes);
    void enqueue(const QByteArray& bytes, Ticks::duration duration, int hangUpMs = 0);
    void run();

    int baud_;
    QTimer timer_;
    std::deque<Step> steps_;
    Ticks::time_point lastAt_;
};

} // namespace suntracker
