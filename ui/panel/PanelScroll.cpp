#include "ui/panel/PanelScroll.h"

#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace orvane {
namespace {
constexpr int kUsualWidth = 330;
}

PanelScroll::PanelScroll(QWidget& panel, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(&panel);
    panel.installEventFilter(this);
    fitWidth();
}

bool PanelScroll::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::FontChange) fitWidth();
    return QScrollArea::eventFilter(watched, event);
}

void PanelScroll::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fitWidth();
}

void PanelScroll::fitWidth() {
    const QSize needed = widget()->minimumSizeHint();
    const bool scrolls = height() < needed.height();
    setFixedWidth(std::max(kUsualWidth, needed.width()) +
                  (scrolls ? verticalScrollBar()->sizeHint().width() : 0));
}

} // namespace orvane
