#include "ui/pictures/FullScreen.h"

#include "ui/Banner.h"
#include "ui/WishBar.h"
#include "ui/panel/PanelControls.h"
#include "ui/pictures/PictureArea.h"

#include <QKeyEvent>
#include <QMainWindow>
#include <QMenuBar>

#include <utility>

namespace orvane {
namespace {

/// A menu bar that is hidden takes the keys of its entries along; one without height does not.
void showMenuBar(QWidget& window, bool on) {
    if (auto* main = qobject_cast<QMainWindow*>(&window))
        main->menuBar()->setMaximumHeight(on ? QWIDGETSIZE_MAX : 0);
}

} // namespace

FullScreen::FullScreen(QMenu& menu, PictureArea& area) : QObject(&area), area_(area) {
    menu.addSeparator();
    entry_ = addEntry(menu,
                      {"mnuViewFullScreen", "F&ull Screen",
                       "Shows the picture in front alone on the whole screen, and back."},
                      {Qt::Key_F11}, this, &FullScreen::toggle);
    entry_->setCheckable(true);
    area_.window()->installEventFilter(this);
    connect(&area_, &QMdiArea::subWindowActivated, this, &FullScreen::follow);
    follow();
}

std::optional<QRect> FullScreen::frameBefore() const {
    return on_ ? std::optional(frameBefore_) : std::nullopt;
}

/// The system may end it too. Escape comes here when the picture has no use for it.
bool FullScreen::eventFilter(QObject* watched, QEvent* event) {
    if (!on_) return false;
    const bool left = event->type() == QEvent::WindowStateChange && !area_.window()->isFullScreen();
    const bool escape = event->type() == QEvent::KeyPress &&
                        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
    if (left || escape) end();
    return escape || QObject::eventFilter(watched, event);
}

void FullScreen::toggle() {
    QMdiSubWindow* frame = area_.currentSubWindow();
    if (on_) {
        end();
    } else if (frame != nullptr) {
        begin(*frame);
    }
    // The action has checked itself, whether there was a window to show or not.
    entry_->setChecked(on_);
}

void FullScreen::begin(QMdiSubWindow& frame) {
    QWidget& window = *area_.window();
    on_ = true;
    frameBefore_ = window.frameGeometry();
    areaBefore_ = area_.viewport()->size();
    windowsBefore_ = area_.subWindowList();
    wasMaximised_ = frame.isMaximized();
    hideOthers();
    window.setWindowState(window.windowState() | Qt::WindowFullScreen);
    frame.showMaximized();
    frame.widget()->setFocus();
}

/// Whatever stands beside the area, but for what is there only to tell something.
void FullScreen::hideOthers() {
    showMenuBar(*area_.window(), false);
    for (QWidget* part = &area_; !part->isWindow(); part = part->parentWidget())
        for (auto* other : part->parentWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (other != part && !other->isWindow() && !other->isHidden() &&
                qobject_cast<QMenuBar*>(other) == nullptr &&
                dynamic_cast<WishBar*>(other) == nullptr &&
                dynamic_cast<Banner*>(other) == nullptr) {
                other->hide();
                hidden_ << other;
            }
}

void FullScreen::end() {
    on_ = false;
    QWidget& window = *area_.window();
    // Before anything is shown again: the size that new windows were placed in.
    const QSize whole = area_.viewport()->size();
    for (const QPointer<QWidget>& part : std::exchange(hidden_, {}))
        if (part != nullptr) part->show();
    showMenuBar(window, true);
    window.setWindowState(window.windowState() & ~Qt::WindowFullScreen);
    QMdiSubWindow* frame = area_.currentSubWindow();
    if (frame != nullptr && !wasMaximised_) frame->showNormal();
    shrinkNewOnes(whole);
    follow();
}

/// A window that was opened meanwhile has its place in an area as large as the screen.
void FullScreen::shrinkNewOnes(QSize from) {
    const double across = double(areaBefore_.width()) / from.width();
    const double down = double(areaBefore_.height()) / from.height();
    for (QMdiSubWindow* frame : area_.subWindowList()) {
        if (frame->isMaximized() || windowsBefore_.contains(frame)) continue;
        const QRectF place = frame->geometry();
        frame->setGeometry(QRectF(place.x() * across, place.y() * down, place.width() * across,
                                  place.height() * down)
                               .toRect());
    }
}

void FullScreen::follow() {
    const bool any = area_.currentSubWindow() != nullptr;
    if (on_ && !any) return end();
    entry_->setEnabled(any);
    entry_->setChecked(on_);
}

} // namespace orvane
