#include "ui/panel/PanelScroll.h"

#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace orvane {
namespace {
/// Pixels; less would cut the texts of the status.
constexpr int kUsualWidth = 330;
} // namespace

PanelScroll::PanelScroll(QWidget& panel, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    // Else it would be a stop of the Tab key at which nothing is seen.
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(&panel);
    // A scroll area does not take over its widget's minimum width, so that has to be watched.
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
    // Worked out, since the bar may be shown or hidden only after this.
    const bool scrolls = height() < needed.height();
    setFixedWidth(std::max(kUsualWidth, needed.width()) +
                  (scrolls ? verticalScrollBar()->sizeHint().width() : 0));
}

} // namespace orvane
