#include "simulators/sky-camera/SkyPicture.h"

#include "simulators/sky-camera/ExifHeader.h"
#include "simulators/sky-camera/Scenery.h"
#include "simulators/sky-camera/SkyLight.h"

#include <QBuffer>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace skycamera {

SkyPicture::SkyPicture() : font_(QString(":/skycamera/DejaVuSans.ttf"), 100.0) {}

QByteArray SkyPicture::jpeg(const SkyScene& wanted) const {
    SkyScene scene = wanted;
    scene.time.setTime(
        QTime(wanted.time.time().hour(), wanted.time.time().minute(), wanted.time.time().second()));
    const SkyLight light(scene);
    QImage image = light.image(scene.frame);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawStars(painter, scene, light);
    drawSun(painter, scene, light);
    drawHorizon(painter, scene, light);
    drawOverlay(painter, scene);
    painter.end();

    QByteArray file;
    QBuffer buffer(&file);
    image.save(&buffer, "JPEG", scene.jpegQuality);
    return withExif(file, exifSegment(scene.time, scene.size));
}

void SkyPicture::drawOverlay(QPainter& painter, const SkyScene& scene) const {
    const double unit = std::max(scene.size.height() / 40.0, 8.0);
    painter.fillRect(QRectF(0, 0, scene.size.width(), 1.6 * unit), QColor(0, 0, 0, 90));
    const QString text =
        scene.time.toString("yyyy/MM/dd  HH:mm:ss") +
        QString("   No. %1").arg(static_cast<qulonglong>(scene.frame), 6, 10, QChar('0'));
    drawText(painter, {0.6 * unit, 1.15 * unit}, 0.95 * unit, text);
    if (!scene.recording) return;
    painter.setBrush(QColor(230, 40, 30));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(scene.size.width() - 3.6 * unit, 0.8 * unit), 0.35 * unit,
                        0.35 * unit);
    drawText(painter, {scene.size.width() - 2.9 * unit, 1.15 * unit}, 0.95 * unit, "REC");
}

void SkyPicture::drawText(QPainter& painter, QPointF baseline, double height,
                          const QString& text) const {
    QPainterPath path;
    QPointF at;
    const QList<quint32> glyphs = font_.glyphIndexesForString(text);
    const QList<QPointF> advances = font_.advancesForGlyphIndexes(glyphs);
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        path.addPath(font_.pathForGlyph(glyphs[i]).translated(at));
        at += advances[i];
    }
    painter.save();
    painter.translate(baseline);
    painter.scale(height / font_.pixelSize(), height / font_.pixelSize());
    painter.fillPath(path, QColor(250, 250, 245));
    painter.restore();
}

} // namespace skycamera
