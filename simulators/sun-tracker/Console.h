#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

namespace suntracker {

class SunTracker;

/// Lines "name  what it does", for the help text.
QString consoleHelp();

/// Commands typed while the program runs, one a line. The end of the input means nothing: a tracker
/// started in the background goes on.
class Console final : public QObject {
    Q_OBJECT

  public:
    Console(SunTracker& tracker, int descriptor, QObject* parent = nullptr);

    /// Carries one line out and returns the answer to show.
    QString execute(const QString& line);

  signals:
    void answered(const QString& text);
    void quitAsked();

  private:
    void read();
    QString setFault(const QString& arguments);
    QString setValue(const QString& arguments);

    SunTracker& tracker_;
    QSocketNotifier notifier_;
    QByteArray input_;
};

} // namespace suntracker
