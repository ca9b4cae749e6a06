#pragma once

#include "simulators/sky-camera/SkyScene.h"

#include <QImage>
#include <vector>

namespace skycamera {

/// Red, green and blue, 0 to 255 each but not limited to it before it is drawn.
struct Colour {
    float r = 0;
    float g = 0;
    float b = 0;
};

Colour mix(Colour a, Colour b, float t);
QRgb toRgb(Colour colour);

/// The colours of the hour, by the sun's elevation.
struct Palette {
    float sunElevation;
    Colour zenith;
    Colour horizon;
    Colour cloudLit;
    Colour cloudShade;
    Colour ground;
};

Palette paletteAt(float sunElevation);

/// The sky without its stars and the sun's disc, calculated on a coarse grid: sky and clouds are
/// soft, and a 20-megapixel picture takes hardly longer than a small one.
class SkyLight {
  public:
    explicit SkyLight(const SkyScene& scene);

    /// The sky at full size, with a little sensor grain that also hides the steps of 8-bit colour.
    QImage image(quint64 frame) const;
    /// How much of the sky the clouds hide at a pixel of the full size: 0 to 1.
    float cloudAt(QPointF pixel) const;
    SkyDirection sun() const { return sun_; }
    const Palette& palette() const { return palette_; }

  private:
    struct Cloud {
        float cover;
        /// 0 in shade, 1 in the sun's light.
        float light;
    };

    void calculate();
    Colour clearSky(QPointF pixel, float elevation) const;
    Cloud cloudIn(SkyDirection direction) const;
    Colour gridColour(int x, int y) const { return colours_[index(x, y)]; }
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }
    void interpolateRow(double gridY, std::vector<Colour>& row) const;

    SkyScene scene_;
    SkyView view_;
    SkyDirection sun_;
    QPointF sunPixel_;
    Palette palette_;
    double seconds_;
    /// The noise above which there is cloud: high on a fine day.
    float cloudThreshold_;
    int width_;
    int height_;
    std::vector<Colour> colours_;
    std::vector<float> covers_;
};

} // namespace skycamera
