#pragma once

#include <QImage>
#include <QString>

namespace orvane {

/// Draws `text` into the lower left corner of a Format_RGB32 picture, white with a thin dark
/// outline; its size is 1/30 of the picture's height, at least 12 pixels. Only the pixels around
/// the text are touched.
void drawStamp(QImage& picture, const QString& text, const QString& fontFamily);

} // namespace orvane
