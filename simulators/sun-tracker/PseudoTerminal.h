#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

namespace suntracker {

/// The tracker's end of a serial line: a pseudo-terminal in raw mode, whose other end a program
/// opens as its serial port. The other end is kept open here as well, so that a program may open
/// and close it again and again; what is sent while it is closed waits for the next one.
class PseudoTerminal final : public QObject {
    Q_OBJECT

  public:
    explicit PseudoTerminal(QObject* parent = nullptr) : QObject(parent) {}
    ~PseudoTerminal() override { close(); }

    /// False with `errorString` when the system gives none.
    bool open();
    /// Hangs up: whoever has the other end open gets an input/output error.
    void close();
    bool isOpen() const { return master_ >= 0; }
    /// Such as /dev/pts/3; empty while closed.
    const QString& path() const { return path_; }
    const QString& errorString() const { return error_; }
    /// False when the other end's input is full.
    bool write(const QByteArray& bytes);

  signals:
    void received(const QByteArray& bytes);
    /// The line broke without a `close`.
    void lost();

  private:
    bool openBothEnds();
    void read();

    int master_ = -1;
    int slave_ = -1;
    QSocketNotifier* notifier_ = nullptr;
    QString path_;
    QString error_;
};

} // namespace suntracker
