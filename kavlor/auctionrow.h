// SPDX-License-Identifier: MIT

#pragma once

#include <QDateTime>
#include <QPixmap>
#include <QString>

/**
 * What the service tells of one auction of the member, as one row of the auctions list shows it.
 *
 * Prices are whole US dollars; 0 means that a price is not set. The items without a name of their
 * own are numbers of the service that the client only keeps.
 */
struct CAuctionRow
{
    QString title;
    QDateTime endDate;     ///< invalid when the service sent none that can be read
    bool finished = false; ///< the auction can no longer be changed
    int item2 = 0;
    int reservePrice = 0;
    int buyItNowPrice = 0;
    int item5 = 0;
    int views = 0;
    int item10 = 0; ///< equal to the reserve price once that is met
    int bids = 0;
    QPixmap thumbnail;       ///< as the service sent it; null when it has none or none arrived yet
    bool noThumbnail = true; ///< it has still to be asked for
};
