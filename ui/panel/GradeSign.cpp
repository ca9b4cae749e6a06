#include "ui/panel/GradeSign.h"

#include "ui/panel/PanelControls.h"

#include <QPainter>

namespace orvane {

QColor colourOf(Grade grade, bool dark) {
    switch (grade) {
    case Grade::Well:
        return dark ? "#5cc46a" : "#2e8b3d";
    case Grade::Attention:
        return dark ? "#f0b23a" : "#c47a00";
    case Grade::Trouble:
        return dark ? "#ff6f61" : "#c62828";
    case Grade::Off:
        break;
    }
    return dark ? "#9aa4ae" : "#76808a";
}

GradeSign::GradeSign(QWidget* parent) : QWidget(parent) {
    const int side = fontMetrics().height();
    setFixedSize(side, side);
}

void GradeSign::show(Grade grade) {
    grade_ = grade;
    update();
}

void GradeSign::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(width() / 16.0, height() / 16.0); // the shapes are drawn in a square of 16
    paint(painter, colourOf(grade_, isDark(palette())));
}

void GradeSign::paint(QPainter& painter, const QColor& colour) const {
    const QPen inner(isDark(palette()) ? Qt::black : Qt::white, 2, Qt::SolidLine, Qt::RoundCap);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    switch (grade_) {
    case Grade::Off:
        painter.setPen(QPen(colour, 2));
        painter.setBrush(Qt::NoBrush);
        return painter.drawEllipse(QRectF(3, 3, 10, 10));
    case Grade::Well:
        return painter.drawEllipse(QRectF(2, 2, 12, 12));
    case Grade::Attention:
        painter.drawPolygon(QPolygonF({{8, 1}, {15.5, 14.5}, {0.5, 14.5}}));
        painter.setPen(inner);
        painter.drawLine(QPointF(8, 6), QPointF(8, 9));
        return painter.drawLine(QPointF(8, 12), QPointF(8, 12.2));
    case Grade::Trouble:
        painter.drawRect(QRectF(1.5, 1.5, 13, 13));
        painter.setPen(inner);
        painter.drawLine(QPointF(5, 5), QPointF(11, 11));
        return painter.drawLine(QPointF(11, 5), QPointF(5, 11));
    }
}

} // namespace orvane
