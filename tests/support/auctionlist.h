// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>
#include <QString>

// What the service sends about a member's auctions.

/** One line of a list of auctions, without its line feed. */
struct AuctionLine
{
    uint id = 1;
    QString title = QStringLiteral("Auction");
    int reservePrice = 20;
    int buyItNowPrice = 50;
    bool finished = false;
    int views = 3;
    int bids = 2;
    int item10 = 0;

    QString text() const;
};

/** A whole reply of @p count auctions that can be changed, with the ids from 1 on. */
QString auctionReply(int count);
/** A whole reply of the one line. */
QString auctionReply(const AuctionLine &line);

/** The bytes of a picture in one colour, as the service sends a thumbnail. */
QByteArray thumbnailBytes(const QColor &color, QSize size = QSize(220, 165));
