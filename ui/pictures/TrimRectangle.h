#pragma once

#include <QRect>
#include <QRectF>

namespace orvane {

// The rectangle that is cut out of a picture, in its pixels.

inline constexpr int kLeastSide = 2; ///< a smaller rectangle was a click

/// The pixels that `part` touches.
QRect pixelsOf(QRectF part, QSize picture);
/// Half as wide and high as what is seen of the picture, in its middle.
QRect middleOf(QRectF seen, QSize picture);
/// `rectangle` moved, as far as the picture goes.
QRect movedBy(QRect rectangle, QPoint by, QSize picture);
/// Its right and lower edge moved, as far as the picture and the least size go.
QRect sizedBy(QRect rectangle, QPoint by, QSize picture);

} // namespace orvane
