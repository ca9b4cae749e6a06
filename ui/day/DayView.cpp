#include "ui/day/DayView.h"

#include "ui/Text.h"
#include "ui/day/DayBar.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

#include <algorithm>

namespace orvane {
namespace {

constexpr Ticks kLookInterval = 1s;

} // namespace

QImage imageOf(const Pixels& pixels) {
    const auto* data = reinterpret_cast<const uchar*>(pixels.data.data());
    return QImage(data, pixels.width, pixels.height, pixels.width * 4, QImage::Format_RGB32).copy();
}

DayView::DayView(Parts parts, QWidget* parent)
    : QWidget(parent), parts_(parts), bar_(new DayBar(parts.day, this)),
      timer_(
          parts.clock, kLookInterval, [this] { refresh(); }, parts.faults.reporter("DayView")) {
    setObjectName("dayView");
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(bar_, &DayBar::turned, this, &DayView::turned);
    connect(bar_, &DayBar::calendarWanted, this, &DayView::calendarWanted);
    connect(this, &DayView::turned, this, &DayView::refresh);
}

/// The line of text begins behind the bar.
DayLayout DayView::dayLayout() const {
    DayLayout day(rect(), font());
    day.text.setLeft(bar_->geometry().right() + day.unit * 0.6);
    return day;
}

QSize DayView::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 120, DayLayout::heightFor(font())};
}

QSize DayView::minimumSizeHint() const {
    return {0, DayLayout::heightFor(font())};
}

QWidget& DayView::bar() {
    return *bar_;
}

void DayView::refresh() {
    parts_.day.refresh();
    const bool newSun = computeSun();
    const std::int64_t revision = parts_.day.revision();
    // Most seconds bring nothing new, and nothing is drawn.
    if (std::exchange(shown_, revision) == revision && !newSun) return;
    keogram_ = keogramShown_ ? imageOf(parts_.day.keogram()) : QImage();
    bar_->follow();
    mergeMarks();
    update();
    emit dayChanged();
}

void DayView::showKeogram(bool shown) {
    keogramShown_ = shown;
    shown_ = -1;
    refresh();
}

void DayView::setFilm(int minute) {
    if (std::exchange(film_, minute) != minute) update();
}

/// Nothing when the site's sun cannot be computed. Whether it has been computed anew.
bool DayView::computeSun() {
    const auto day = parts_.day.day();
    // A table of a day's minutes: not worked out anew each second.
    if (day == sunDay_ && site_ == parts_.module.site) return false;
    sunDay_ = day;
    site_ = parts_.module.site;
    sun_ = sunOfDay(*site_, dayOf(WallTime(day)));
    return true;
}

void DayView::mergeMarks() {
    // The width decides how many minutes share a mark, so each resize merges anew.
    marks_ = dayMarks(parts_.day.plan(), dayLayout().columnMinutes());
    describe();
}

void DayView::describe() {
    const QString text = toQString(parts_.day.plan().text);
    const int index = selected();
    const QString name =
        parts_.day.isToday() ? "Today" : toQString(dateText(WallTime(parts_.day.day())));
    setAccessibleName(name + ": " + text);
    setAccessibleDescription(index < 0 ? text
                                       : text + "; " + textOf(static_cast<std::size_t>(index)));
}

QString DayView::textOf(std::size_t index) const {
    const DayMark& mark = marks_[index];
    return toQString(markText(mark, parts_.day.detailOf(mark.worst)));
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
    const int now = parts_.day.now().value_or(kDayMinutes);
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
    // The height follows the font, which a layout does not know.
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

/// The mark that a key leads to; -1: the key is none of the band's.
int DayView::selectionAfter(int key) const {
    const int last = static_cast<int>(marks_.size()) - 1;
    const int present = selected();
    switch (key) {
    case Qt::Key_Left:
        return std::max((present < 0 ? marksBeforeNow() : present) - 1, 0);
    case Qt::Key_Right:
        return std::min(present < 0 ? marksBeforeNow() : present + 1, last);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    default:
        return -1;
    }
}

void DayView::keyPressEvent(QKeyEvent* event) {
    const int index = marks_.empty() ? -1 : selectionAfter(event->key());
    const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (index >= 0) return select(index);
    if (opens && selected() >= 0) return openMark(static_cast<std::size_t>(selected()));
    QWidget::keyPressEvent(event);
}

void DayView::mousePressEvent(QMouseEvent* event) {
    QWidget::mousePressEvent(event);
    if (event->button() != Qt::LeftButton) return;
    if (film_ >= 0) return seek(event->position());
    const DayLayout day = dayLayout();
    const int index = day.markAt(marks_, event->position());
    if (index >= 0) openMark(static_cast<std::size_t>(index));
}

void DayView::mouseMoveEvent(QMouseEvent* event) {
    QWidget::mouseMoveEvent(event);
    if (film_ >= 0 && event->buttons().testFlag(Qt::LeftButton)) seek(event->position());
}

void DayView::seek(const QPointF& position) {
    const DayLayout day = dayLayout();
    const double minute = (position.x() - day.plot.left()) / day.pixelsPerMinute();
    emit minuteSought(std::clamp(static_cast<int>(minute), 0, kDayMinutes - 1));
}

/// Of several minutes the first that has a picture. Where there is none the tip tells why.
void DayView::openMark(std::size_t index) {
    for (int minute = marks_[index].first; minute <= marks_[index].last; ++minute) {
        const std::filesystem::path file = parts_.day.pictureOf(minute);
        if (!file.empty()) {
            QToolTip::hideText();
            return emit pictureWanted(file);
        }
    }
    const QPointF below = markRect(index).bottomLeft();
    QToolTip::showText(mapToGlobal(below.toPoint()), textOf(index), this);
}

void DayView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    QToolTip::hideText();
    // The band is left: the next time the keyboard starts at the present again.
    selectedMinute_ = -1;
    describe();
    update();
}

void DayView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const DayLayout day = dayLayout();
    DayDrawing(painter, day, palette())
        .draw({parts_.day.plan(), sun_, marks_, keogram_, parts_.day.now(), film_, selected()});
    if (!hasFocus()) return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void DayView::placeBar() {
    // Not `dayLayout`, whose text begins behind the bar that is placed here.
    const DayLayout day(rect(), font());
    bar_->setGeometry(static_cast<int>(day.text.left()), static_cast<int>(day.text.top()),
                      bar_->sizeHint().width(), static_cast<int>(day.text.height()));
}

void DayView::resizeEvent(QResizeEvent*) {
    placeBar();
    mergeMarks();
}

void DayView::showEvent(QShowEvent*) {
    refresh();
    placeBar(); // it is wider with its date than before the first look
    if (!timer_.enabled()) timer_.enable();
}

void DayView::hideEvent(QHideEvent*) {
    timer_.disable();
}

} // namespace orvane
