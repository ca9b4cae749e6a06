#pragma once

#include "platform/qt/JpegPlanes.h"

#include <QImage>
#include <QString>

namespace orvane {

/// A text for the lower left corner of a picture, white with a thin dark outline; its size is 1/30
/// of the picture's height, at least 12 pixels.
class TextStamp {
  public:
    TextStamp(QSize picture, const QString& text, const QString& fontFamily);
    /// Draws what belongs into `rows`, Format_RGB32, of which the first is the picture's row `top`.
    /// Only the pixels around the text are touched.
    void draw(QImage& rows, int top = 0) const;
    /// The same into planes, whose first row is the picture's row `top`.
    void draw(JpegPlanes& planes, int top) const;

  private:
    QImage image_;
    QPoint corner_; ///< of the image in the picture
};

} // namespace orvane
