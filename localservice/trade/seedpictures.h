// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

/** The landscapes that stand in for members' photos in a seeded service. */
enum class SeedScene { Sunset, Mountains, CityNight, Storm, Forest, Balloons, Beach };

/** The same picture every time. */
QImage seedPicture(SeedScene scene, const QSize &size);
