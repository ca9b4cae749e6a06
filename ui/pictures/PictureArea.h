#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>

namespace orvane {

/// The part of the main window that holds the picture windows. A picture window that fills it goes
/// on filling it when its size changes.
class PictureArea : public QMdiArea {
    Q_OBJECT

  public:
    explicit PictureArea(QWidget* parent = nullptr);

    /// Adds a window that goes when it is closed, at its own size and a little beside the last one.
    QMdiSubWindow& add(QWidget& window, QSize size);
    /// Brings a window of the area to the front.
    void bring(const QWidget& window);
    void fill(QMdiSubWindow& frame) { frame.setGeometry(viewport()->rect()); }

    /// Public for the windows in it, which hand Tab on to what is around them.
    bool focusNextPrevChild(bool next) override { return QMdiArea::focusNextPrevChild(next); }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QRect filled_; ///< what a filling window's place is
};

} // namespace orvane
