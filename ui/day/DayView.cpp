#include "ui/day/DayView.h"

#include "ui/Text.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

#include <algorithm>

namespace orvane {
namespace {
constexpr Ticks kLookInterval = 1s;
}

DayView::DayView(Parts parts, QWidget* parent)
    : QWidget(parent), parts_(parts),
      timer_(
          parts.clock, kLookInterval, [this] { refresh(); }, parts.faults.reporter("DayView")) {
    setObjectName("dayView");
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize DayView::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 120, DayLayout::heightFor(font())};
}

QSize DayView::minimumSizeHint() const {
    return {0, DayLayout::heightFor(font())};
}

void DayView::refresh() {
    parts_.days.refresh();
    const bool newSun = computeSun();
    if (std::exchange(shown_, parts_.days.revision()) == parts_.days.revision() && !newSun) return;
    mergeMarks();
    update();
}

/// Nothing when the site's sun cannot be computed. Whether it has been computed anew.
bool DayView::computeSun() {
    const auto day = parts_.days.folder().day();
    if (day == sunDay_ && site_ == parts_.module.site) return false;
    sunDay_ = day;
    site_ = parts_.module.site;
    sun_ = sunOfDay(*site_, dayOf(WallTime(day)));
    return true;
}

void DayView::mergeMarks() {
    marks_ = dayMarks(parts_.days.plan(), dayLayout().columnMinutes());
    describe();
}

void DayView::describe() {
    const QString text = toQString(parts_.days.plan().text);
    const int index = selected();
    setAccessibleName("Today: " + text);
    setAccessibleDescription(index < 0 ? text
                                       : text + "; " + textOf(static_cast<std::size_t>(index)));
}

QString DayView::textOf(std::size_t index) const {
    const DayMark& mark = marks_[index];
    return toQString(markText(mark, parts_.days.detailOf(mark.worst)));
}

/// The index of the keyboard's mark; -1 for none.
int DayView::selected() const {
    if (selectedMinute_ < 0) return -1;
    const auto found = std::ranges::find_if(marks_, [this](const DayMark& mark) {
        return mark.first <= selectedMinute_ && selectedMinute_ <= mark.last;
    });
    return found == marks_.end() ? -1 : static_cast<int>(found - marks_.begin());
}

/// How many marks lie before the line of the present time, where the keyboard starts from.
int DayView::marksBeforeNow() const {
    const int now = parts_.days.minuteOfDay();
    return static_cast<int>(
        std::ranges::count_if(marks_, [now](const DayMark& mark) { return mark.first <= now; }));
}

void DayView::select(int index) {
    const auto mark = static_cast<std::size_t>(index);
    selectedMinute_ = marks_[mark].first;
    describe();
    update();
    const QPointF below = markRect(mark).bottomLeft();
    QToolTip::showText(mapToGlobal(below.toPoint()), textOf(mark), this);
}

bool DayView::event(QEvent* event) {
    if (event->type() == QEvent::FontChange) updateGeometry();
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const DayLayout day = dayLayout();
    const int index = day.markAt(marks_, help->pos());
    if (index < 0) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    const auto mark = static_cast<std::size_t>(index);
    // the tip goes as soon as the mouse leaves the mark
    const QRect area = day.markRect(marks_, mark).adjusted(-2, 0, 2, 0).toAlignedRect();
    QToolTip::showText(help->globalPos(), textOf(mark), this, area);
    return true;
}

void DayView::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(marks_.size()) - 1;
    const int present = selected();
    int index = present;
    switch (event->key()) {
    case Qt::Key_Left:
        index = std::max((present < 0 ? marksBeforeNow() : present) - 1, 0);
        break;
    case Qt::Key_Right:
        index = std::min(present < 0 ? marksBeforeNow() : present + 1, last);
        break;
    case Qt::Key_Home:
        index = 0;
        break;
    case Qt::Key_End:
        index = last;
        break;
    default:
        return QWidget::keyPressEvent(event);
    }
    if (last >= 0) select(index);
}

void DayView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    QToolTip::hideText();
    selectedMinute_ = -1;
    describe();
    update();
}

void DayView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const DayLayout day = dayLayout();
    DayDrawing(painter, day, palette())
        .draw({parts_.days.plan(), sun_, marks_, parts_.days.minuteOfDay(), selected()});
    if (!hasFocus()) return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void DayView::resizeEvent(QResizeEvent*) {
    mergeMarks();
}

void DayView::showEvent(QShowEvent*) {
    refresh();
    if (!timer_.enabled()) timer_.enable();
}

void DayView::hideEvent(QHideEvent*) {
    timer_.disable();
}

} // namespace orvane
