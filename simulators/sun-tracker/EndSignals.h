#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace suntracker {

/// Turns the signals that ask a program to end (Ctrl+C, kill, a closed terminal) into an event of
/// its loop, so that everything is put away on the way out.
class EndSignals final : public QObject {
    Q_OBJECT

  public:
    explicit EndSignals(QObject* parent = nullptr);
    ~EndSignals() override;

  signals:
    void arrived();

  private:
    int descriptor_;
    QSocketNotifier notifier_;
};

} // namespace suntracker
