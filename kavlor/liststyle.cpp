// SPDX-License-Identifier: MIT

#include "liststyle.h"

#include <QPixmap>

qreal listPoints(int points)
{
    return points * 96.0 / QPixmap(1, 1).logicalDpiY();
}

QFont listFont(const QString &family, int points, QFont::Weight weight)
{
    QFont font(family, points, weight);
    font.setPointSizeF(listPoints(points));
    return font;
}

const ListStyle &listStyle()
{
    static const ListStyle theOne;
    return theOne;
}
