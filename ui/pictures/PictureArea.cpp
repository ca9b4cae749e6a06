#include "ui/pictures/PictureArea.h"

namespace orvane {

PictureArea::PictureArea(QWidget* parent) : QMdiArea(parent) {
    setAccessibleName("Pictures");
    setBackground(palette().color(QPalette::Window).darker(125));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

void PictureArea::resizeEvent(QResizeEvent* event) {
    const QRect before = filled_;
    QMdiArea::resizeEvent(event);
    filled_ = viewport()->rect();
    for (QMdiSubWindow* frame : subWindowList())
        if (!frame->isMaximized() && !frame->isMinimized() && frame->geometry() == before)
            fill(*frame);
}

} // namespace orvane
