#pragma once

#include "simulators/sky-camera/SkyScene.h"

class QPainter;

namespace skycamera {

class SkyLight;

void drawStars(QPainter& painter, const SkyScene& scene, const SkyLight& light);
void drawSun(QPainter& painter, const SkyScene& scene, const SkyLight& light);
/// Hills, trees, an observatory and a mast, dark before the sky.
void drawHorizon(QPainter& painter, const SkyScene& scene, const SkyLight& light);

} // namespace skycamera
