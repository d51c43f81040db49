// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QtMath>

/** How much light a colour gives, from 0 for black to 1 for white. */
inline double luminance(const QColor &colour)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : qPow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

/** The contrast of two colours, from 1 for equal ones to 21; text reads well from 4.5 on. */
inline double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return qMax(a, b) / qMin(a, b);
}
