#include "simulators/sky-camera/SkyPicture.h"

#include "simulators/sky-camera/JpegSegments.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QVector3D>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace skycamera {

namespace {

/// Sky and clouds are soft: calculated at this width at most, a large picture costs little more
/// than a small one.
constexpr int kGridWidth = 400;
/// The view, in degrees: across, and the elevations of its upper and lower edge.
constexpr double kAcross = 180.0;
constexpr double kTop = 88.0;
constexpr double kBottom = -6.0;

/// Red, green and blue, 0 to 255 each but not limited to it.
using Colour = QVector3D;

/// The colours of the hour, by the sun's elevation in degrees.
struct Hour {
    float sun;
    Colour zenith, horizon, cloud;
};

constexpr std::array kHours{
    Hour{-18.0F, {11, 15, 33}, {30, 36, 58}, {50, 54, 68}},
    Hour{-12.0F, {13, 20, 48}, {40, 47, 76}, {52, 55, 74}},
    Hour{-6.0F, {25, 43, 92}, {112, 98, 118}, {92, 78, 104}},
    Hour{-2.0F, {50, 82, 144}, {206, 146, 120}, {216, 138, 122}},
    Hour{2.0F, {74, 116, 182}, {238, 192, 146}, {255, 196, 150}},
    Hour{8.0F, {66, 122, 200}, {214, 212, 206}, {255, 236, 210}},
    Hour{20.0F, {52, 112, 200}, {188, 210, 232}, {255, 252, 246}},
    Hour{60.0F, {38, 98, 192}, {172, 204, 234}, {255, 255, 254}},
};

/// Not `std::lerp`: its guarantees cost half of a picture's time.
template <class Value>
Value mix(const Value& a, const Value& b, float t) {
    return a + (b - a) * t;
}

/// 0 below `low`, 1 above `high`, smooth between them.
float smoothStep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

Hour hourOf(float sun) {
    const float known = std::clamp(sun, kHours.front().sun, kHours.back().sun);
    const auto* b =
        std::find_if(&kHours[1], &kHours.back(), [&](const Hour& h) { return h.sun >= known; });
    const Hour& a = *(b - 1);
    const float t = (known - a.sun) / (b->sun - a.sun);
    return {sun, mix(a.zenith, b->zenith, t), mix(a.horizon, b->horizon, t),
            mix(a.cloud, b->cloud, t)};
}

/// A number from 0 to 1 that depends on nothing but its arguments, the same on every platform.
float unitHash(int a, int b, quint32 seed) {
    quint32 h = static_cast<quint32>(a) * 0x9E3779B1U ^
                (static_cast<quint32>(b) * 0x85EBCA77U + seed * 0xC2B2AE3DU);
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return static_cast<float>((h ^ (h >> 15)) >> 8) / 16'777'216.0F;
}

/// Smooth, from 0 to 1, with features about one unit wide.
float valueNoise(double x, double y, quint32 seed) {
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    const float u = smoothStep(0.0F, 1.0F, static_cast<float>(x - left));
    const float v = smoothStep(0.0F, 1.0F, static_cast<float>(y - top));
    return mix(mix(unitHash(left, top, seed), unitHash(left + 1, top, seed), u),
               mix(unitHash(left, top + 1, seed), unitHash(left + 1, top + 1, seed), u), v);
}

/// Octaves of value noise, from 0 to 1, each turned a little so that the lattice does not show.
float fractalNoise(double x, double y, int octaves, quint32 seed) {
    float sum = 0.0F;
    float weight = 1.0F;
    float total = 0.0F;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * valueNoise(x, y, seed + static_cast<quint32>(i));
        total += weight;
        weight *= 0.5F;
        const double turned = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x;
        x = turned;
    }
    return sum / total;
}

/// The sky of a moment.
class Sky {
  public:
    explicit Sky(const SkyScene& scene)
        : seed_(scene.seed), facing_(scene.site.latitude >= 0 ? 180.0 : 0.0),
          sun_(sunPosition(QDateTime::fromSecsSinceEpoch(scene.time.toSecsSinceEpoch(), Qt::UTC),
                           scene.site)),
          hour_(hourOf(static_cast<float>(sun_.elevation))),
          seconds_(static_cast<double>(scene.time.toSecsSinceEpoch() - 946'684'800)),
          // the weather changes within hours
          clear_(mix(
              0.66F, 0.40F,
              smoothStep(0.2F, 0.8F, fractalNoise(seconds_ / 9000.0, 0.5, 2, scene.seed + 77)))),
          aspect_(static_cast<float>(scene.size.width()) /
                  static_cast<float>(scene.size.height())) {}

    /// `x` and `y` from 0 to 1, from the upper left corner of the view.
    Colour at(double x, double y) const {
        const double elevation = kTop - y * (kTop - kBottom);
        const auto height = static_cast<float>(std::clamp(elevation / 90.0, 0.0, 1.0));
        const Colour clear = mix(hour_.horizon, hour_.zenith, 1.0F - std::pow(1.0F - height, 3.0F));
        const Colour seen = clouded(sunlit(clear, x, y), x, elevation);
        return mix(hour_.horizon * Colour(0.24F, 0.26F, 0.20F), seen,
                   smoothStep(-0.5F, 0.5F, static_cast<float>(elevation - 3.0)));
    }

  private:
    double side(double azimuth) const { return std::remainder(azimuth - facing_, 360.0); }
    Colour sunlit(const Colour& sky, double x, double y) const;
    Colour clouded(const Colour& sky, double x, double elevation) const;

    quint32 seed_;
    double facing_;
    SkyDirection sun_;
    Hour hour_;
    double seconds_;
    float clear_; ///< the noise above which there is cloud: high on a fine day
    float aspect_;
};

/// The sun's disc and glow, round in the picture, and the red of dawn and dusk around them.
Colour Sky::sunlit(const Colour& sky, double x, double y) const {
    const double sunX = 0.5 + side(sun_.azimuth) / kAcross;
    const double sunY = (kTop - sun_.elevation) / (kTop - kBottom);
    const float dx = static_cast<float>(x - sunX) * aspect_;
    const auto dy = static_cast<float>(y - sunY);
    const float distance = std::sqrt(dx * dx + dy * dy);
    const float day = smoothStep(-3.0F, 4.0F, hour_.sun);
    const float low = smoothStep(-13.0F, -2.0F, hour_.sun) * (1 - smoothStep(3, 16, hour_.sun));
    const float dusk = low * std::exp(-dx * dx / 0.35F - dy * dy / 0.035F);
    const float halo = 0.55F * std::exp(-distance / 0.05F) + 0.2F * std::exp(-distance / 0.25F);
    const float light = day * std::max(halo, 1.0F - smoothStep(0.012F, 0.018F, distance));
    const Colour white = mix(Colour(255, 252, 244), Colour(255, 206, 140), low);
    return mix(sky + Colour(120, 52, 2) * dusk, white, light);
}

/// A flat layer of clouds seen from below: the farther, the lower and the smaller.
Colour Sky::clouded(const Colour& sky, double x, double elevation) const {
    constexpr double kDegree = std::numbers::pi / 180.0;
    // bent so that neither the horizon nor the zenith degenerates
    const double away = 1.6 / std::tan((std::max(elevation, 0.0) * 0.72 + 7.0) * kDegree);
    const double across = (x - 0.5) * kAcross * kDegree;
    const float noise = fractalNoise(away * std::sin(across) + seconds_ * 0.0030,
                                     away * std::cos(across) + seconds_ * 0.0011, 5, seed_);
    const float cover = 0.94F * smoothStep(clear_, clear_ + 0.16F, noise) *
                        smoothStep(-1.0F, 14.0F, static_cast<float>(elevation));
    // the thicker, the less light comes through
    const float shade = smoothStep(clear_ + 0.04F, clear_ + 0.40F, noise);
    const Colour lit = mix(hour_.cloud, sky, 0.25F);
    return mix(sky, mix(lit, hour_.cloud * Colour(0.71F, 0.74F, 0.78F), shade), cover);
}

int toByte(float value) {
    return static_cast<int>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

QImage skyOf(const SkyScene& scene) {
    const Sky sky(scene);
    const int width = std::min(scene.size.width() / 2, kGridWidth);
    const int height = std::max(1, scene.size.height() * width / scene.size.width());
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const Colour colour = sky.at((x + 0.5) / width, (y + 0.5) / height);
            line[x] = qRgb(toByte(colour.x()), toByte(colour.y()), toByte(colour.z()));
        }
    }
    return image.scaled(scene.size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// A sensor's grain, which also hides the steps of 8-bit colour. Each frame has its own.
void addNoise(QImage& image, const SkyScene& scene) {
    quint32 random = static_cast<quint32>(scene.frame) * 0x9E3779B1U + scene.seed + 1U;
    random = random == 0 ? 1 : random;
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            random ^= random << 13;
            random ^= random >> 17;
            random ^= random << 5;
            const int noise = static_cast<int>(random >> 30) - 1;
            auto grained = [&](int value) { return std::clamp(value + noise, 0, 255); };
            line[x] =
                qRgb(grained(qRed(line[x])), grained(qGreen(line[x])), grained(qBlue(line[x])));
        }
    }
}

} // namespace

SkyPicture::SkyPicture() : font_(QString(":/skycamera/DejaVuSans.ttf"), 100.0) {}

QByteArray SkyPicture::jpeg(const SkyScene& scene) const {
    QImage image = skyOf(scene);
    addNoise(image, scene);
    burnIn(image, scene);
    QByteArray file;
    QBuffer buffer(&file);
    image.save(&buffer, "JPEG", scene.jpegQuality);
    return withExif(file, scene.time);
}

void SkyPicture::burnIn(QImage& image, const SkyScene& scene) const {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double unit = std::max(image.height() / 40.0, 8.0);
    painter.fillRect(QRectF(0, 0, image.width(), 1.6 * unit), QColor(0, 0, 0, 90));
    const QString text = scene.time.toString("yyyy/MM/dd  HH:mm:ss") +
                         QString("   No. %1").arg(scene.frame, 6, 10, QChar('0')) +
                         (scene.recording ? "   REC" : "");
    QPainterPath path;
    QPointF at;
    const QList<quint32> glyphs = font_.glyphIndexesForString(text);
    const QList<QPointF> advances = font_.advancesForGlyphIndexes(glyphs);
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        path.addPath(font_.pathForGlyph(glyphs[i]).translated(at));
        at += advances[i];
    }
    const double scale = 0.95 * unit / font_.pixelSize();
    painter.setTransform(QTransform(scale, 0, 0, scale, 0.6 * unit, 1.15 * unit));
    painter.fillPath(path, QColor(250, 250, 245));
}

} // namespace skycamera
