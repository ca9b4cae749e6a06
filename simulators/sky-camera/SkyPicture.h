#pragma once

#include "simulators/sky-camera/SkyScene.h"

#include <QByteArray>
#include <QRawFont>

class QPainter;

namespace skycamera {

class SkyLight;

/// Renders what the camera sees: the sky with its sun, clouds and stars, a horizon, date and time
/// burnt in; as JPEG with an EXIF header. Needs a QGuiApplication, but no installed fonts.
class SkyPicture {
  public:
    SkyPicture();

    QByteArray jpeg(const SkyScene& scene) const;

  private:
    void drawOverlay(QPainter& painter, const SkyScene& scene) const;
    void drawText(QPainter& painter, QPointF baseline, double height, const QString& text) const;

    QRawFont font_;
};

} // namespace skycamera
