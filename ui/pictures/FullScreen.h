#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QRect>

#include <optional>

class QAction;
class QMdiSubWindow;
class QMenu;
class QWidget;

namespace orvane {

class PictureArea;

/// The picture window in front alone on the whole screen, and back. It stays a part of the main
/// window, whose other parts are hidden meanwhile, so that menus, keys, boxes and warnings work as
/// ever. Another window that comes to the front takes its place; without any it ends. The entry,
/// Escape, the system and the last window's end all lead back the same way. The area owns it.
class FullScreen : public QObject {
    Q_OBJECT

  public:
    /// Adds the entry to `menu`.
    FullScreen(QMenu& menu, PictureArea& area);

    /// The main window's frame as it was before; nothing while this is off.
    std::optional<QRect> frameBefore() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void toggle();
    void begin(QMdiSubWindow& frame);
    void end();
    void follow();
    void hideOthers();
    void shrinkNewOnes(QSize from);

    PictureArea& area_;
    QAction* entry_;
    bool on_ = false;
    bool wasMaximised_ = false; ///< the window in front, inside the main window
    QRect frameBefore_;
    QSize areaBefore_;
    QList<QMdiSubWindow*> windowsBefore_;
    /// Only these are shown again: what was hidden before stays so.
    QList<QPointer<QWidget>> hidden_;
};

} // namespace orvane
