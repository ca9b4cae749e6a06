#include "platform/qt/TextStamp.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>

namespace orvane {

namespace {

constexpr int kHeightShare = 30;
constexpr int kSmallest = 12; ///< pixels

QPainterPath outlineOf(const QString& text, const QString& fontFamily, int pixelSize) {
    QFont font(fontFamily);
    font.setPixelSize(pixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    QPainterPath path;
    path.addText(0, 0, font, text);
    return path;
}

} // namespace

void drawStamp(QImage& picture, const QString& text, const QString& fontFamily) {
    const int pixelSize = std::max(kSmallest, picture.height() / kHeightShare);
    const double pen = pixelSize / 6.0; // half of it lies outside the letters
    const double margin = pixelSize / 2.0;
    QPainterPath path = outlineOf(text, fontFamily, pixelSize);
    const QRectF box = path.boundingRect();
    path.translate(margin - box.left(), picture.height() - margin - box.bottom());
    const QRect region =
        path.boundingRect().adjusted(-pen, -pen, pen, pen).toAlignedRect() & picture.rect();
    if (region.isEmpty()) return;

    // A view of the region alone: the painter's coordinates end far below JPEG's 65500 lines.
    QImage view(picture.scanLine(region.top()) + 4 * region.left(), region.width(), region.height(),
                picture.bytesPerLine(), QImage::Format_RGB32);
    QPainter painter(&view);
    painter.setRenderHint(QPainter::Antialiasing);
    path.translate(-region.topLeft());
    painter.strokePath(path, QPen(Qt::black, pen, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, Qt::white);
}

} // namespace orvane
