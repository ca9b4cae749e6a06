#pragma once

#include "simulators/sun-tracker/Fault.h"
#include "simulators/sun-tracker/Frame.h"
#include "simulators/sun-tracker/LineOutput.h"
#include "simulators/sun-tracker/PortLink.h"
#include "simulators/sun-tracker/PseudoTerminal.h"
#include "simulators/sun-tracker/TrackerValues.h"

#include <QList>
#include <QTimer>

namespace suntracker {

struct SunTrackerOptions {
    /// A symbolic link to the serial port; empty for none.
    QString link = {};
    /// Speed of the answers in bits per second; 0 sends them at once.
    int baud = 0;
    /// Logs the bytes both ways.
    bool trace = false;
    TrackerValues values = {};
    FaultRule fault = {};
    /// A frame whose next byte does not come for so long is given up.
    int frameTimeoutMs = 1000;
};

struct TrackerCounts {
    int commands = 0;
    int badFrames = 0;
    int faults = 0;
    /// What the PC sent outside frames.
    int acks = 0;
    int naks = 0;
    int clockSettings = 0;
};

/// A sun-tracking controller at the end of a serial line: it answers commands, reports its values
/// and fails on demand. Lives in the thread and event loop of its owner, so tests can run it beside
/// what they test.
///
/// The commands carry the number of their parameters instead of the parameters. So the clock is
/// only known to have been set, values change by `setValues` alone, and the command for sun
/// tracking switches to and fro. A command takes effect when its answer begins with ACK.
class SunTracker final : public QObject {
    Q_OBJECT

  public:
    explicit SunTracker(const SunTrackerOptions& options, QObject* parent = nullptr);

    /// Opens the serial port; false with `errorString` when it or its link cannot be had.
    bool start();
    const QString& errorString() const { return error_; }
    /// Empty while the adapter is unplugged.
    const QString& portPath() const { return terminal_.path(); }

    /// As the option --fault has it, in force from the next command on; false when `faults` was not
    /// understood. "none" clears.
    bool setFault(const QString& faults, int count = 0);
    void setFault(const FaultRule& rule);

    const TrackerValues& values() const { return values_; }
    void setValues(const TrackerValues& values);

    /// The last thousand well-formed command frames, oldest first, as they came.
    const QList<QByteArray>& received() const { return received_; }
    const TrackerCounts& counts() const { return counts_; }
    QString statusText() const;

    /// Unplugs the adapter. It comes back by itself, as a new serial port.
    void hangUp(int awayMs = 1000);

  signals:
    /// One line for each command and event.
    void logged(const QString& line);
    /// At the start and each time the adapter comes back.
    void portOpened(const QString& path);

  private:
    bool openPort();
    void reopen();
    void take(const QByteArray& bytes);
    void handle(const Arrival& arrival);
    void handleCommand(const Arrival& arrival);
    QString carryOut(quint8 command);
    void acknowledged();
    void refuse();
    void giveUpFrame();
    void write(const QByteArray& bytes);
    void log(const QString& text);

    SunTrackerOptions options_;
    TrackerValues values_;
    QString error_;
    PseudoTerminal terminal_;
    PortLink link_;
    LineOutput output_;
    FrameReader reader_;
    QTimer frameTimer_;
    QTimer reopenTimer_;
    FaultSource faults_;
    QList<QByteArray> received_;
    TrackerCounts counts_;
    /// The command whose answer the PC has not acknowledged yet.
    QString unacknowledged_;
};

} // namespace suntracker
