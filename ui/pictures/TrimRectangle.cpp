#include "ui/pictures/TrimRectangle.h"

#include <algorithm>

namespace orvane {

QRect pixelsOf(QRectF part, QSize picture) {
    return part.toAlignedRect() & QRect({}, picture);
}

QRect middleOf(QRectF seen, QSize picture) {
    QRectF half({}, seen.size() / 2);
    half.moveCenter(seen.center());
    return pixelsOf(half, picture);
}

QRect movedBy(QRect rectangle, QPoint by, QSize picture) {
    const QSize last = picture - rectangle.size();
    const QPoint wanted = rectangle.topLeft() + by;
    rectangle.moveTo(std::clamp(wanted.x(), 0, last.width()),
                     std::clamp(wanted.y(), 0, last.height()));
    return rectangle;
}

QRect sizedBy(QRect rectangle, QPoint by, QSize picture) {
    const QSize wanted = rectangle.size() + QSize(by.x(), by.y());
    const QSize room(picture.width() - rectangle.left(), picture.height() - rectangle.top());
    rectangle.setSize(wanted.expandedTo({kLeastSide, kLeastSide}).boundedTo(room));
    return rectangle;
}

} // namespace orvane
