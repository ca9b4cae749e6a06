#pragma once

#include "simulators/sky-camera/SunPosition.h"

#include <QDateTime>
#include <QPointF>
#include <QSize>
#include <cmath>

namespace skycamera {

/// Everything a picture depends on. The same scene gives the same bytes, so a picture of any past
/// moment can be made again at any time.
struct SkyScene {
    /// Calendar time of the camera's clock; only whole seconds count.
    QDateTime time;
    quint64 frame = 0;
    quint32 seed = 1;
    SkySite site;
    QSize size{1280, 960};
    /// 1 to 100.
    int jpegQuality = 85;
    /// Shows the red "REC" mark.
    bool recording = false;
};

/// What the fault "huge" makes of a picture.
inline constexpr QSize kHugeSize(5472, 3648);

/// The camera's view: half of the horizon towards the noon sun, from a little below the horizon to
/// almost overhead. Angles map linearly to pixels.
class SkyView {
  public:
    SkyView(QSize size, const SkySite& site)
        : width_(size.width()), height_(size.height()), facing_(site.latitude >= 0 ? 180.0 : 0.0) {}

    QPointF pixelOf(SkyDirection direction) const {
        return {(0.5 + side(direction.azimuth) / kAcross) * width_,
                (kTop - direction.elevation) / (kTop - kBottom) * height_};
    }
    SkyDirection directionOf(QPointF pixel) const {
        return {kTop - pixel.y() / height_ * (kTop - kBottom),
                facing_ + (pixel.x() / width_ - 0.5) * kAcross};
    }
    /// Degrees right of the view's middle, -180 to 180.
    double side(double azimuth) const { return std::remainder(azimuth - facing_, 360.0); }

  private:
    static constexpr double kAcross = 180.0;
    static constexpr double kTop = 88.0;
    static constexpr double kBottom = -6.0;

    double width_;
    double height_;
    double facing_;
};

} // namespace skycamera
