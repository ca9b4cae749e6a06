#pragma once

#include "platform/Clock.h"
#include "platform/Operator.h"

#include <QPointer>
#include <QWidget>

namespace orvane {

/// The operator at the screen, asked by message boxes. A box belongs to the task that shows it and
/// goes with it; one whose window is destroyed counts as cancelled. Boxes are opened, never
/// executed: the event loop that runs is the program's own, and several tasks may have one open at
/// once.
class QtOperator final : public Operator {
  public:
    explicit QtOperator(Clock& clock) : clock_(clock) {}

    /// The window that boxes stand before and block, but for a modal dialog in use, which goes
    /// first. Without either they stand alone.
    void setParentWindow(QWidget* window) { window_ = window; }

    Task<> tell(std::string text) override;
    Task<bool> ask(std::string text) override;
    Task<bool> confirm(std::string text) override;
    void beep() override;

  private:
    Clock& clock_;
    QPointer<QWidget> window_;
};

} // namespace orvane
