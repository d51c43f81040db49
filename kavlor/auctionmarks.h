// SPDX-License-Identifier: MIT

#pragma once

class QPainter;
struct CAuctionRow;

/**
 * Paints the row of marks in an auction's strip: how often it was viewed and bid on, the arrow of a
 * reserve price that is met, and the sale. The last is always there; its colours tell whether the
 * auction is over.
 */
void paintAuctionMarks(QPainter *painter, const CAuctionRow &auction);
