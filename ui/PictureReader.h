#pragma once

#include <QImage>
#include <QSize>

class QIODevice;

namespace orvane {

/// Decodes a JPEG no larger than `bound`, so that memory stays bounded whatever the picture's size.
/// Null when it cannot be read.
QImage readPicture(QIODevice& source, QSize bound);

} // namespace orvane
