#include "platform/qt/TextStamp.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace orvane {

namespace {

constexpr int kHeightShare = 30;
constexpr int kSmallest = 12; ///< pixels
constexpr int kOpaque = 255;

QFont stampFont(const QString& family, int pixelSize) {
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    return font;
}

/// The opacity of each pixel of the text, drawn with its baseline starting at `start`.
std::vector<uchar> letters(const QString& text, const QFont& font, QSize size, QPoint start) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(start, text);
    painter.end();
    std::vector<uchar> opacity(static_cast<std::size_t>(size.width()) *
                               static_cast<std::size_t>(size.height()));
    const auto* pixels = reinterpret_cast<const QRgb*>(image.constBits());
    std::transform(pixels, pixels + opacity.size(), opacity.begin(),
                   [](QRgb pixel) { return static_cast<uchar>(qAlpha(pixel)); });
    return opacity;
}

/// Copies on a circle make the outline: the most opaque of them in each pixel. Many times faster
/// than stroking the letters' paths. A copy that runs over a row's end meets the next row's border,
/// which is empty.
std::vector<uchar> outlineOf(const std::vector<uchar>& letters, int width, int outline) {
    std::vector<uchar> result = letters;
    const int copies = outline <= 2 ? 8 : 16;
    for (int i = 0; i < copies; ++i) {
        const double angle = 2 * std::numbers::pi * i / copies;
        const auto shift =
            std::lround(outline * std::sin(angle)) * width + std::lround(outline * std::cos(angle));
        const auto* from = letters.data() + std::max(0L, -shift);
        auto* to = result.data() + std::max(0L, shift);
        const auto count = static_cast<long>(letters.size()) - std::abs(shift);
        for (long pixel = 0; pixel < count; ++pixel)
            to[pixel] = std::max(to[pixel], from[pixel]);
    }
    return result;
}

/// White letters in a dark outline, all else transparent.
QImage outlined(const std::vector<uchar>& letters, QSize size, int outline) {
    const std::vector<uchar> dark = outlineOf(letters, size.width(), outline);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    auto* pixels = reinterpret_cast<QRgb*>(image.bits());
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const int white = letters[i];
        pixels[i] = qRgba(white, white, white, white + dark[i] * (255 - white) / 255);
    }
    return image;
}

/// Takes the colour from a row, where `opacity` is that of the four pixels of each sample together.
void fade(JSAMPROW row, const std::vector<int>& opacity) {
    for (const int sum : opacity) {
        *row = static_cast<JSAMPLE>(CENTERJSAMPLE +
                                    (*row - CENTERJSAMPLE) * (4 * kOpaque - sum) / (4 * kOpaque));
        ++row;
    }
}

} // namespace

TextStamp::TextStamp(QSize picture, const QString& text, const QString& fontFamily) {
    if (text.isEmpty()) return;
    const int pixelSize = std::max(kSmallest, picture.height() / kHeightShare);
    const int outline = std::max(1, pixelSize / 12);
    const int margin = pixelSize / 2;
    const QFont font = stampFont(fontFamily, pixelSize);
    const int border = outline + 1;
    const QRect box =
        QFontMetrics(font).tightBoundingRect(text).adjusted(-border, -border, border, border);
    corner_ = QPoint(margin - border, picture.height() - margin + border - box.height());
    image_ = outlined(letters(text, font, box.size(), -box.topLeft()), box.size(), outline);
}

void TextStamp::draw(QImage& rows, int top) const {
    const QRect region = QRect(corner_, image_.size()) & QRect(0, top, rows.width(), rows.height());
    if (region.isEmpty()) return;
    // A view of the region alone: the painter's coordinates end far below JPEG's 65500 lines.
    QImage view(rows.scanLine(region.top() - top) + 4 * region.left(), region.width(),
                region.height(), rows.bytesPerLine(), QImage::Format_RGB32);
    QPainter(&view).drawImage(corner_ - region.topLeft(), image_);
}

/// White and dark are brightness alone: colour goes where they are opaque. Each of its samples
/// belongs to four pixels.
void TextStamp::draw(JpegPlanes& planes, int top) const {
    const QRect rows(0, top, planes.width(), planes.bands() * JpegPlanes::kBand);
    const QRect region = QRect(corner_, image_.size()) & rows;
    std::vector<int> opacity(static_cast<std::size_t>(planes.width() / 2));
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const auto* stamp = reinterpret_cast<const QRgb*>(image_.constScanLine(y - corner_.y()));
        JSAMPROW row = planes.row(0, y - top);
        for (int x = region.left(); x <= region.right(); ++x) {
            const QRgb over = stamp[x - corner_.x()];
            row[x] = static_cast<JSAMPLE>(qRed(over) + row[x] * (kOpaque - qAlpha(over)) / kOpaque);
            opacity[static_cast<std::size_t>(x / 2)] += qAlpha(over);
        }
        if (y % 2 == 0 && y != region.bottom()) continue;
        for (const int plane : {1, 2})
            fade(planes.row(plane, (y - top) / 2), opacity);
        std::ranges::fill(opacity, 0);
    }
}

} // namespace orvane
