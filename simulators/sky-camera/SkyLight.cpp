#include "simulators/sky-camera/SkyLight.h"

#include "simulators/sky-camera/SkyNoise.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace skycamera {

namespace {

constexpr int kGridWidth = 400;
constexpr double kDegree = std::numbers::pi / 180.0;

// clang-format off
constexpr std::array kPalettes{
    //      sun      zenith           horizon          lit cloud        shaded cloud     ground
    Palette{-18.0F, {5, 7, 17},      {15, 18, 31},    {29, 31, 41},    {13, 15, 23},    {3, 4, 6}},
    Palette{-12.0F, {9, 15, 39},     {30, 37, 64},    {36, 38, 54},    {16, 19, 32},    {4, 5, 8}},
    Palette{-6.0F,  {25, 43, 92},    {112, 98, 118},  {92, 78, 104},   {36, 40, 64},    {9, 10, 14}},
    Palette{-2.0F,  {50, 82, 144},   {206, 146, 120}, {216, 138, 122}, {82, 76, 100},   {17, 17, 20}},
    Palette{2.0F,   {74, 116, 182},  {238, 192, 146}, {255, 196, 150}, {122, 110, 126}, {30, 30, 28}},
    Palette{8.0F,   {66, 122, 200},  {214, 212, 206}, {255, 236, 210}, {142, 142, 154}, {44, 47, 36}},
    Palette{20.0F,  {52, 112, 200},  {188, 210, 232}, {255, 252, 246}, {156, 163, 176}, {56, 64, 42}},
    Palette{60.0F,  {38, 98, 192},   {172, 204, 234}, {255, 255, 254}, {164, 172, 186}, {64, 74, 48}},
};
// clang-format on

Colour operator+(Colour a, Colour b) {
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}

Colour operator*(float k, Colour a) {
    return {k * a.r, k * a.g, k * a.b};
}

int toByte(float value) {
    return static_cast<int>(std::lround(std::clamp(value, 0.0F, 255.0F)));
}

} // namespace

Colour mix(Colour a, Colour b, float t) {
    return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t)};
}

QRgb toRgb(Colour colour) {
    return qRgb(toByte(colour.r), toByte(colour.g), toByte(colour.b));
}

Palette paletteAt(float sunElevation) {
    const float sun =
        std::clamp(sunElevation, kPalettes.front().sunElevation, kPalettes.back().sunElevation);
    std::size_t i = 1;
    while (i + 1 < kPalettes.size() && kPalettes[i].sunElevation < sun)
        ++i;
    const Palette& a = kPalettes[i - 1];
    const Palette& b = kPalettes[i];
    const float t = (sun - a.sunElevation) / (b.sunElevation - a.sunElevation);
    return {sunElevation,
            mix(a.zenith, b.zenith, t),
            mix(a.horizon, b.horizon, t),
            mix(a.cloudLit, b.cloudLit, t),
            mix(a.cloudShade, b.cloudShade, t),
            mix(a.ground, b.ground, t)};
}

SkyLight::SkyLight(const SkyScene& scene)
    : scene_(scene), view_(scene.size, scene.site), sun_(sunPosition(scene.time, scene.site)),
      sunPixel_(view_.pixelOf(sun_)), palette_(paletteAt(static_cast<float>(sun_.elevation))),
      seconds_(static_cast<double>(scene.time.toSecsSinceEpoch() - 946'684'800)) {
    // The weather changes within hours.
    const float weather = fractalNoise(seconds_ / 9000.0, 0.5, 2, scene.seed + 77);
    cloudThreshold_ = mix(0.66F, 0.40F, smoothStep(0.2F, 0.8F, weather));
    width_ = std::clamp(scene.size.width() / 2, 2, kGridWidth);
    height_ = std::clamp(scene.size.height() * width_ / scene.size.width(), 2, 2 * kGridWidth);
    calculate();
}

void SkyLight::calculate() {
    const auto cells = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    colours_.resize(cells);
    covers_.resize(cells);
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            const QPointF pixel((x + 0.5) * scene_.size.width() / width_,
                                (y + 0.5) * scene_.size.height() / height_);
            const SkyDirection direction = view_.directionOf(pixel);
            const Colour clear = clearSky(pixel, static_cast<float>(direction.elevation));
            const Cloud cloud = cloudIn(direction);
            // Thin cloud lets the sky around the sun shine through and takes on its colour.
            const Colour lit = mix(palette_.cloudLit, clear + 0.35F * palette_.cloudLit, 0.25F);
            const Colour colour = mix(palette_.cloudShade, lit, cloud.light);
            colours_[index(x, y)] = mix(clear, colour, cloud.cover);
            covers_[index(x, y)] = cloud.cover;
        }
    }
}

Colour SkyLight::clearSky(QPointF pixel, float elevation) const {
    const float height = std::clamp(elevation / 90.0F, 0.0F, 1.0F);
    const Colour sky = mix(palette_.horizon, palette_.zenith, 1.0F - std::pow(1.0F - height, 3.0F));

    const auto scale = static_cast<float>(1.0 / scene_.size.height());
    const float dx = static_cast<float>(pixel.x() - sunPixel_.x()) * scale;
    const float dy = static_cast<float>(pixel.y() - sunPixel_.y()) * scale;
    const auto sun = static_cast<float>(sun_.elevation);
    const float distance = std::sqrt(dx * dx + dy * dy);
    const float day = smoothStep(-3.0F, 4.0F, sun);
    const float low = smoothStep(-13.0F, -2.0F, sun) * (1.0F - smoothStep(3.0F, 16.0F, sun));

    const float dusk = low * std::exp(-dx * dx / 0.35F - dy * dy / 0.035F);
    const float halo =
        day * (0.55F * std::exp(-distance / 0.05F) + 0.2F * std::exp(-distance / 0.25F));
    const Colour white = mix(Colour{255, 252, 244}, Colour{255, 206, 140}, low);
    return mix(sky + dusk * Colour{120, 52, 2}, white, std::min(halo, 1.0F));
}

SkyLight::Cloud SkyLight::cloudIn(SkyDirection direction) const {
    const auto elevation = static_cast<float>(direction.elevation);
    if (elevation < -1.0F) return {0.0F, 0.0F};
    // A flat layer seen from below: the farther, the lower and the smaller.
    // Bent so that neither the horizon nor the zenith degenerates.
    const double height = std::max(direction.elevation, 0.0) * 0.72 + 7.0;
    const double far = 1.6 / std::tan(height * kDegree);
    const double side = view_.side(direction.azimuth) * kDegree;
    const double sunSide = view_.side(sun_.azimuth) * kDegree;
    const double x = far * std::sin(side) + seconds_ * 0.0030;
    const double y = far * std::cos(side) + seconds_ * 0.0011;

    const float noise = fractalNoise(x, y, 6, scene_.seed);
    // The same place a little nearer to the sun: thinner there means lit here.
    const float towardsSun =
        fractalNoise(x + 0.12 * std::sin(sunSide), y + 0.12 * std::cos(sunSide), 4, scene_.seed);
    const float cover = smoothStep(cloudThreshold_, cloudThreshold_ + 0.16F, noise);
    const float thick = smoothStep(cloudThreshold_, cloudThreshold_ + 0.32F, noise);
    const float light = 0.85F + 3.2F * (noise - towardsSun) - 0.6F * thick;
    return {0.94F * cover * smoothStep(-1.0F, 14.0F, elevation), std::clamp(light, 0.0F, 1.0F)};
}

float SkyLight::cloudAt(QPointF pixel) const {
    const int x = static_cast<int>(pixel.x() * width_ / scene_.size.width());
    const int y = static_cast<int>(pixel.y() * height_ / scene_.size.height());
    return covers_[index(std::clamp(x, 0, width_ - 1), std::clamp(y, 0, height_ - 1))];
}

void SkyLight::interpolateRow(double gridY, std::vector<Colour>& row) const {
    const int y = std::clamp(static_cast<int>(gridY), 0, height_ - 2);
    const auto t = static_cast<float>(std::clamp(gridY - y, 0.0, 1.0));
    for (int x = 0; x < width_; ++x)
        row[static_cast<std::size_t>(x)] = mix(gridColour(x, y), gridColour(x, y + 1), t);
}

QImage SkyLight::image(quint64 frame) const {
    QImage image(scene_.size, QImage::Format_RGB32);
    std::vector<Colour> row(static_cast<std::size_t>(width_));
    const float grain = mix(5.0F, 2.0F, smoothStep(-12.0F, 0.0F, palette_.sunElevation));
    quint32 random = hashOf(static_cast<quint32>(frame), 1, scene_.seed) | 1U;
    const float step = static_cast<float>(width_) / static_cast<float>(image.width());
    for (int y = 0; y < image.height(); ++y) {
        interpolateRow((y + 0.5) * height_ / image.height() - 0.5, row);
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const float at = std::max(0.0F, (static_cast<float>(x) + 0.5F) * step - 0.5F);
            const auto left = std::min(static_cast<std::size_t>(at), row.size() - 2);
            const float t = std::min(at - static_cast<float>(left), 1.0F);
            random ^= random << 13;
            random ^= random >> 17;
            random ^= random << 5;
            const float noise = grain * (static_cast<float>(random >> 8) / 16'777'216.0F - 0.5F);
            line[x] = toRgb(mix(row[left], row[left + 1], t) + Colour{noise, noise, noise});
        }
    }
    return image;
}

} // namespace skycamera
