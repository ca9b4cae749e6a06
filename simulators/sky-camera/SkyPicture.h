#pragma once

#include "simulators/sky-camera/SunPosition.h"

#include <QByteArray>
#include <QDateTime>
#include <QRawFont>
#include <QSize>

class QImage;

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
    /// Shows the mark "REC".
    bool recording = false;
};

/// What the fault "huge" makes of a picture.
inline constexpr QSize kHugeSize(5472, 3648);

/// Renders what the camera sees: half of the horizon towards the noon sun, from a little below the
/// horizon to almost overhead, with drifting clouds, sensor noise, date, time and number burnt in;
/// as JPEG with an EXIF header. Needs a QGuiApplication, but no installed fonts.
class SkyPicture {
  public:
    SkyPicture();

    QByteArray jpeg(const SkyScene& scene) const;

  private:
    void burnIn(QImage& image, const SkyScene& scene) const;

    QRawFont font_;
};

} // namespace skycamera
