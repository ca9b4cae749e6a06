#pragma once

#include <QWidget>

#include <vector>

namespace orvane {

/// Gives a control the focus, and scrolls to it where it is out of sight.
void giveFocus(QWidget& control, Qt::FocusReason reason);

/// One closed ring of Tab and Shift+Tab through a window, its sub-windows included: a sub-window
/// has a ring of its own otherwise, which the keyboard does not leave. It remembers nothing:
/// controls that come, go or are locked meanwhile need not be told to it.
class FocusRing {
  public:
    /// `parts` of `window` in the order in which they are read; what is in none of them comes
    /// first. Within a part it is the order that `QWidget::setTabOrder` gave.
    FocusRing(QWidget& window, std::vector<const QWidget*> parts)
        : window_(window), parts_(std::move(parts)) {}

    /// Every control that takes the focus at present.
    std::vector<QWidget*> stops() const;
    /// Gives the focus to the next control or the previous one. False: there is none.
    bool step(bool next) const;

  private:
    std::size_t partOf(const QWidget& control) const;

    QWidget& window_;
    std::vector<const QWidget*> parts_;
};

} // namespace orvane
