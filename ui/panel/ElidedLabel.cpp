#include "ui/panel/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace orvane {

ElidedLabel::ElidedLabel(QWidget* parent, Qt::TextElideMode mode) : QLabel(parent), mode_(mode) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const {
    const QMargins margins = contentsMargins();
    // Advances are fractions of a pixel, rounded: one more keeps a text that just fits from being
    // cut.
    return {fontMetrics().horizontalAdvance(shortest_) + 1 + margins.left() + margins.right(),
            fontMetrics().height() + margins.top() + margins.bottom()};
}

void ElidedLabel::setFixed(const QString& text) {
    shortest_ = text;
    isFixed_ = true;
    setFixedSize(minimumSizeHint());
}

QFont ElidedLabel::drawnFont() const {
    if (!narrowFont_) return font();
    const bool wide = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
    return wide ? *narrowFont_ : font();
}

bool ElidedLabel::fits() const {
    return QFontMetrics(drawnFont()).horizontalAdvance(text()) <= contentsRect().width();
}

bool ElidedLabel::event(QEvent* event) {
    const bool otherLetters =
        event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
    if (otherLetters && isFixed_) setFixed(shortest_);
    // A text that fits leaves the place to the tool tip that says what the label is.
    if (event->type() != QEvent::ToolTip || fits()) return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(drawnFont());
    const int width = contentsRect().width();
    const QString shown =
        isFixed_ ? text() : painter.fontMetrics().elidedText(text(), mode_, width);
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(),
                          isEnabled(), shown, foregroundRole());
}

} // namespace orvane
