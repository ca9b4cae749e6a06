#include "simulators/sky-camera/Scenery.h"

#include "simulators/sky-camera/SkyLight.h"
#include "simulators/sky-camera/SkyNoise.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <numbers>

namespace skycamera {

namespace {

constexpr int kStars = 1400;

QColor withAlpha(Colour colour, float alpha) {
    QColor result = QColor::fromRgb(toRgb(colour));
    result.setAlphaF(std::clamp(alpha, 0.0F, 1.0F));
    return result;
}

/// The hills' outline in degrees above the horizon, `across` from 0 at the left to 1 at the right.
double hillHeight(double across, quint32 seed) {
    return 1.0 + 6.5 * static_cast<double>(fractalNoise(across * 5.0, 3.5, 4, seed));
}

double treeHeight(double across, quint32 seed) {
    const double ground = 0.2 + 2.6 * static_cast<double>(fractalNoise(across * 4.0, 8.5, 2, seed));
    const double wood =
        static_cast<double>(smoothStep(0.36F, 0.56F, fractalNoise(across * 7.0, 1.5, 2, seed + 5)));
    const double crowns = static_cast<double>(fractalNoise(across * 90.0, 2.5, 4, seed + 9));
    return ground + wood * (0.6 + 2.4 * crowns);
}

template <typename Height>
void fillOutline(QPainter& painter, const SkyScene& scene, const SkyView& view, const QBrush& brush,
                 Height height) {
    const double width = scene.size.width();
    const double step = std::max(1.0, width / 1000.0);
    QPolygonF outline;
    for (double x = -step; x <= width + step; x += step) {
        const double y = view.pixelOf({height(x / width, scene.seed), 180.0}).y();
        outline << QPointF(x, y);
    }
    outline << QPointF(width + step, scene.size.height()) << QPointF(-step, scene.size.height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawPolygon(outline);
}

/// The observatory's dome and the mast, standing on the trees' ground; `unit` is one degree.
void drawBuildings(QPainter& painter, const SkyScene& scene, const SkyView& view, QColor colour,
                   float night) {
    const double unit = scene.size.height() / 96.0;
    const double base = view.pixelOf({2.4, 180.0}).y();
    const QPointF dome(0.79 * scene.size.width(), base - 3.2 * unit);
    painter.setBrush(colour);
    painter.drawRect(QRectF(dome.x() - 2.2 * unit, dome.y(), 4.4 * unit, 7.0 * unit));
    painter.drawPie(QRectF(dome.x() - 2.5 * unit, dome.y() - 2.5 * unit, 5.0 * unit, 5.0 * unit), 0,
                    180 * 16);
    painter.drawRect(QRectF(dome.x() - 9.0 * unit, dome.y() + 1.4 * unit, 7.0 * unit, 6.0 * unit));

    const QPointF mast(0.17 * scene.size.width(), base - 11.0 * unit);
    painter.drawPolygon(QPolygonF{mast, mast + QPointF(0.45 * unit, 14 * unit),
                                  mast + QPointF(-0.45 * unit, 14 * unit)});
    if (night <= 0.0F) return;
    for (int i = 0; i < 3; ++i) {
        if (unitHash(i, 3, scene.seed + static_cast<quint32>(scene.time.time().hour())) < 0.3F)
            continue;
        painter.setBrush(withAlpha({255, 206, 120}, 0.85F * night));
        painter.drawRect(QRectF(dome.x() - (8.2 - 2.2 * i) * unit, dome.y() + 2.0 * unit,
                                0.8 * unit, 0.7 * unit));
    }
    painter.setBrush(
        withAlpha({255, 60, 40}, night * (scene.time.time().second() % 2 ? 0.95F : 0.2F)));
    painter.drawEllipse(mast, 0.3 * unit, 0.3 * unit);
}

} // namespace

void drawStars(QPainter& painter, const SkyScene& scene, const SkyLight& light) {
    const float night = 1.0F - smoothStep(-14.0F, -6.0F, light.palette().sunElevation);
    if (night <= 0.0F) return;
    const SkyView view(scene.size, scene.site);
    const double scale = std::max(scene.size.height() / 960.0, 0.5);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < kStars; ++i) {
        const double ascension = 360.0 * static_cast<double>(unitHash(i, 1, scene.seed));
        const double height = 2.0 * static_cast<double>(unitHash(i, 2, scene.seed)) - 1.0;
        const SkyDirection direction = starPosition(
            ascension, std::asin(height) * 180.0 / std::numbers::pi, scene.time, scene.site);
        if (direction.elevation < 0.5) continue;
        const QPointF pixel = view.pixelOf(direction);
        // Few bright stars, many faint ones; fainter in the haze above the horizon.
        const float brightness = std::pow(unitHash(i, 3, scene.seed), 5.0F);
        const float haze = smoothStep(0.0F, 20.0F, static_cast<float>(direction.elevation));
        const float clear = 1.0F - light.cloudAt(pixel);
        const Colour tint =
            mix(Colour{255, 224, 196}, Colour{200, 218, 255}, unitHash(i, 4, scene.seed));
        painter.setBrush(
            withAlpha(tint, night * haze * clear * clear * (0.25F + 0.75F * brightness)));
        const double radius = scale * (0.65 + 1.0 * static_cast<double>(brightness));
        painter.drawEllipse(pixel, radius, radius);
    }
}

void drawSun(QPainter& painter, const SkyScene& scene, const SkyLight& light) {
    const SkyDirection sun = light.sun();
    if (sun.elevation < -2.0) return;
    const QPointF pixel = SkyView(scene.size, scene.site).pixelOf(sun);
    const float low = 1.0F - smoothStep(2.0F, 18.0F, static_cast<float>(sun.elevation));
    const float clear = 1.0F - 0.9F * light.cloudAt(pixel);
    const Colour disc = mix(Colour{255, 255, 246}, Colour{255, 206, 130}, low);
    const double radius = scene.size.height() * 0.055;
    QRadialGradient gradient(pixel, radius);
    gradient.setColorAt(0.0, withAlpha(disc, clear));
    gradient.setColorAt(0.22, withAlpha(disc, clear));
    gradient.setColorAt(0.28, withAlpha(disc, 0.42F * clear));
    gradient.setColorAt(0.55, withAlpha(disc, 0.12F * clear));
    gradient.setColorAt(1.0, withAlpha(disc, 0.0F));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(pixel, radius, radius);
}

void drawHorizon(QPainter& painter, const SkyScene& scene, const SkyLight& light) {
    const SkyView view(scene.size, scene.site);
    const Palette& palette = light.palette();
    const Colour far = mix(palette.horizon, palette.ground, 0.58F);
    const Colour near = mix(palette.horizon, palette.ground, 0.93F);
    fillOutline(painter, scene, view, QColor::fromRgb(toRgb(far)), hillHeight);
    const float night = 1.0F - smoothStep(-6.0F, 0.0F, palette.sunElevation);
    drawBuildings(painter, scene, view, QColor::fromRgb(toRgb(near)), night);
    QLinearGradient meadow(view.pixelOf({1.0, 180.0}),
                           QPointF(scene.size.width() / 2.0, scene.size.height()));
    meadow.setColorAt(0.0, QColor::fromRgb(toRgb(near)));
    meadow.setColorAt(1.0, QColor::fromRgb(toRgb(mix(palette.ground, Colour{}, 0.55F))));
    fillOutline(painter, scene, view, meadow, treeHeight);
}

} // namespace skycamera
