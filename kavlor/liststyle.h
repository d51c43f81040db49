// SPDX-License-Identifier: MIT

#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>

/**
 * The size that letters of @p points take on a screen of 96 dots to the inch, in the points of this
 * one: a cell has one size, which does not grow with the letters that the desktop asks for.
 */
qreal listPoints(int points);

/** A font of the lists, @p points large in that sense. */
QFont listFont(const QString &family, int points, QFont::Weight weight);

/**
 * The colours and fonts in which the cells of the two lists, categories and auctions, are painted.
 *
 * Everything else that a member sees takes its own from the style sheets.
 */
struct ListStyle
{
    // Both lists
    QColor titleColor{249, 167, 31}; ///< of an auction, of a top-level category
    QFont titleFont = listFont(QStringLiteral("LargeSystemFont"), 21, QFont::Bold);

    // The list of auctions
    QColor numberColor{25, 5, 10};
    static constexpr int numberPoints = 14; ///< smaller where a number is long
    QFont numberFont = listFont(QStringLiteral("SmallSystemFont"), numberPoints, QFont::DemiBold);

    // The list of categories
    QColor lowerNameColor{121, 85, 143};
    QFont lowerNameFont = listFont(QStringLiteral("SmallSystemFont"), 21, QFont::Normal);
    QColor childrenColor{73, 117, 166};
    QColor chosenChildrenColor{41, 41, 0};
    QFont childrenFont = listFont(QStringLiteral("SmallSystemFont"), 14, QFont::Normal);
    QColor markerColor{126, 131, 137};
    QFont markerFont = listFont(QStringLiteral("LargeSystemFont"), 31, QFont::Bold);
    QColor separatorColor{73, 117, 166};
    QBrush brush{QColor(126, 131, 169)};
};

/** Made on first use and kept. */
const ListStyle &listStyle();
