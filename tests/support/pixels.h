// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QImage>

/** True when no channel of the two colours is further apart than @p tolerance. */
inline bool isNear(const QColor &colour, const QColor &wanted, int tolerance = 2)
{
    return qAbs(colour.red() - wanted.red()) <= tolerance
        && qAbs(colour.green() - wanted.green()) <= tolerance
        && qAbs(colour.blue() - wanted.blue()) <= tolerance;
}

/** True when some pixel of the image has that colour, as the inside of letters has theirs. */
inline bool showsColour(const QImage &image, const QColor &colour)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isNear(image.pixelColor(x, y), colour))
                return true;
        }
    }
    return false;
}
