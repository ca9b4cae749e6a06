#include "platform/qt/TextStamp.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane {

namespace {

constexpr int kHeightShare = 30;
constexpr int kSmallest = 12; ///< pixels

QFont stampFont(const QString& family, int pixelSize) {
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

/// The text in one colour, drawn with its baseline starting at `start`, all else transparent.
QImage letters(const QString& text, const QFont& font, QSize size, QPoint start, QColor colour) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(start, text);
    return image;
}

/// Dark copies on a circle make the outline: many times faster than stroking the letters' paths.
void drawOutlined(QPainter& painter, const QImage& dark, const QImage& white, int outline) {
    const int copies = outline <= 2 ? 8 : 16;
    for (int i = 0; i < copies; ++i) {
        const double angle = 2 * std::numbers::pi * i / copies;
        painter.drawImage(QPoint(static_cast<int>(std::lround(outline * std::cos(angle))),
                                 static_cast<int>(std::lround(outline * std::sin(angle)))),
                          dark);
    }
    painter.drawImage(QPoint(0, 0), white);
}

} // namespace

void drawStamp(QImage& picture, const QString& text, const QString& fontFamily) {
    const int pixelSize = std::max(kSmallest, picture.height() / kHeightShare);
    const int outline = std::max(1, pixelSize / 12);
    const int margin = pixelSize / 2;
    const QFont font = stampFont(fontFamily, pixelSize);
    const int border = outline + 1;
    const QRect box =
        QFontMetrics(font).tightBoundingRect(text).adjusted(-border, -border, border, border);
    const QPoint corner(margin - border, picture.height() - margin + border - box.height());
    const QRect region = QRect(corner, box.size()) & picture.rect();
    if (text.isEmpty() || region.isEmpty()) return;

    // A view of the region alone: the painter's coordinates end far below JPEG's 65500 lines.
    QImage view(picture.scanLine(region.top()) + 4 * region.left(), region.width(), region.height(),
                picture.bytesPerLine(), QImage::Format_RGB32);
    QPainter painter(&view);
    painter.translate(corner - region.topLeft());
    drawOutlined(painter, letters(text, font, box.size(), -box.topLeft(), Qt::black),
                 letters(text, font, box.size(), -box.topLeft(), Qt::white), outline);
}

} // namespace orvane
