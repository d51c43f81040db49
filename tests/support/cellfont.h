// SPDX-License-Identifier: MIT

#pragma once

#include <QFont>
#include <QPixmap>

/** The font of a painted cell: as large as on a screen of 96 dots to the inch, wherever it runs. */
inline QFont cellFont(const char *family, int points, QFont::Weight weight)
{
    QFont font(QLatin1String(family), points, weight);
    font.setPointSizeF(points * 96.0 / QPixmap(1, 1).logicalDpiY());
    return font;
}
