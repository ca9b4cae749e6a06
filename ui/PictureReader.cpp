#include "ui/PictureReader.h"

#include <QImageReader>

namespace orvane {

QImage readPicture(QIODevice& source, QSize bound) {
    QImageReader reader(&source, "jpeg");
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!size.isValid()) return {};
    if (size.width() > bound.width() || size.height() > bound.height())
        reader.setScaledSize(size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    return reader.read();
}

} // namespace orvane
