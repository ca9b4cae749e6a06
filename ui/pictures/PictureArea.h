#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>

#include <utility>

namespace orvane {

/// The part of the main window that holds the picture windows. A picture window that fills it goes
/// on filling it when its size changes, and windows that were tiled stay so until one is moved. It
/// owns its windows, each of which goes when it is closed.
class PictureArea : public QMdiArea {
    Q_OBJECT

  public:
    explicit PictureArea(QWidget* parent = nullptr);

    /// Adds a window that goes when it is closed, at its own size and a little beside the last one.
    QMdiSubWindow& add(QWidget& window, QSize size);
    /// Brings a window of the area to the front.
    void bring(const QWidget& window);
    /// Lays the windows that are not minimised side by side, shaped as the pictures are.
    void tile();
    void fill(QMdiSubWindow& frame) { frame.setGeometry(viewport()->rect()); }

    /// Public for the windows in it, which hand Tab on to what is around them.
    bool focusNextPrevChild(bool next) override { return QMdiArea::focusNextPrevChild(next); }
    bool isEmpty() const { return subWindowList().isEmpty(); }

  signals:
    /// The first window has come (false), or the last one has gone.
    void emptied(bool isEmpty);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    QList<QMdiSubWindow*> framesToTile() const;
    void lay(const QList<QMdiSubWindow*>& frames);
    bool isTiled() const;
    void followWindows();

    QRect filled_;                                  ///< what a filling window's place is
    QList<std::pair<QMdiSubWindow*, QRect>> tiles_; ///< where `tile` laid them
    bool wasEmpty_ = true;
};

} // namespace orvane
