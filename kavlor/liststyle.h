// SPDX-License-Identifier: MIT

#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>

/**
 * The colours and fonts in which the cells of the two lists, categories and auctions, are painted.
 *
 * Everything else that a member sees takes its own from the style sheets.
 */
struct ListStyle
{
    // Both lists
    QColor titleColor{249, 167, 31}; ///< of an auction, of a top-level category
    QFont titleFont{QStringLiteral("LargeSystemFont"), 21, QFont::Bold};

    // The list of auctions
    QColor numberColor{25, 5, 10};
    QFont numberFont{QStringLiteral("SmallSystemFont"), 14, QFont::DemiBold};

    // The list of categories
    QColor lowerNameColor{121, 85, 143};
    QFont lowerNameFont{QStringLiteral("SmallSystemFont"), 21, QFont::Normal};
    QColor childrenColor{73, 117, 166};
    QColor chosenChildrenColor{41, 41, 0};
    QFont childrenFont{QStringLiteral("SmallSystemFont"), 14, QFont::Normal};
    QColor markerColor{126, 131, 137};
    QFont markerFont{QStringLiteral("LargeSystemFont"), 31, QFont::Bold};
    QColor separatorColor{73, 117, 166};
    QBrush brush{QColor(126, 131, 169)};
};

/** Made on first use and kept. */
const ListStyle &listStyle();
