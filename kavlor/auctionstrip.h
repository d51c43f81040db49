// SPDX-License-Identifier: MIT

#pragma once

#include <QPixmap>
#include <QSize>

struct CAuctionRow;

/** The size of every strip, in pixels. */
constexpr QSize auctionStripSize(680, 90);

/**
 * Paints what the list tells of one auction on a transparent ground: its title over the marks that
 * paintAuctionMarks() paints. @p pixelRatio is how many pixels of the screen take the place of one
 * of the strip's.
 */
QPixmap paintAuctionStrip(const CAuctionRow &auction, qreal pixelRatio = 1);
