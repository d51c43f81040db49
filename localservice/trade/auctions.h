// SPDX-License-Identifier: MIT

#pragma once

#include "database.h"
#include "result.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

/**
 * The auctions with their bids, from creation to their end after seven days.
 *
 * Prices are whole US dollars; 0 = not set. Every operation first ends the auctions whose time is
 * up: one with a bid that meets its reserve is sold to the highest bidder, another ends unsold.
 * The seller is alerted by mail of what he chose to hear of. With a failure nothing was changed.
 */
class Auctions
{
public:
    static constexpr qint64 maxPrice = 999999999;
    static constexpr int maxTitle = 500;

    enum State { Running, Sold, Unsold };

    struct NewAuction
    {
        qint64 member = 0;
        qint64 category = 0;
        QString title;
        QString description;
        QString captured; ///< "yyyyMMddhhmmss", or empty
        qint64 startPrice = 0;
        qint64 reservePrice = 0;
        qint64 buyPrice = 0;
    };

    struct Auction
    {
        qint64 id = 0; ///< 0 = there is no such auction
        qint64 member = 0;
        QString seller;
        qint64 category = 0;
        QString title;
        QString description;
        QString media; ///< file name in the data folder's media
        qint64 startPrice = 0;
        qint64 reservePrice = 0;
        qint64 buyPrice = 0;
        qint64 ends = 0; ///< when, in seconds since 1970
        State state = Running;
        qint64 views = 0;
        qint64 bids = 0;
        qint64 highestBid = 0; ///< 0 = no bid yet
        qint64 soldPrice = 0;

        /** What the auction would go for, or went for; 0 = no bid yet. */
        qint64 currentPrice() const;
        /** False also when there is no reserve to meet. */
        bool isReserveMet() const;
        bool isBuyable() const;
        /** Whether it still takes bids. */
        bool isOpen() const;
        qint64 lowestNextBid() const;
    };

    struct Buyer
    {
        QString name;
        QString email;
    };

    struct Bid
    {
        QString bidder;
        qint64 amount = 0;
        qint64 placed = 0; ///< when, in seconds since 1970
    };

    /** What a visitor looks for. */
    struct Search
    {
        QString words;       ///< all of which begin a word of the title or the description
        qint64 category = 0; ///< that or one below it; 0 = any
        int page = 1;
    };

    struct Page
    {
        QList<Auction> auctions;
        bool hasNext = false;
    };

    static constexpr int pageSize = 24;

    explicit Auctions(Database &database);

    /** Whether the auction's own fields are as they should be. */
    static Result<void> check(const NewAuction &auction);
    /** Puts an auction whose media is already in the data folder on sale; its number. */
    Result<qint64> create(const NewAuction &auction, const QString &media);
    /** New prices for a running auction of this member. */
    Result<void> changePrices(qint64 member, qint64 auction, qint64 reservePrice, qint64 buyPrice);

    Result<QList<Auction>> ofMember(qint64 member);
    /** What is on sale, what ends first coming first. */
    Result<Page> onSale(const Search &search);
    Result<QList<Auction>> recentlyEnded(int most);
    /** The auction with this number; one with number 0 = there is none. */
    Result<Auction> auction(qint64 id);
    Result<QList<Bid>> bids(qint64 auction);
    Result<QStringList> allMedia();

    Result<void> countView(qint64 auction);
    Result<void> bid(qint64 auction, const Buyer &buyer, qint64 amount);
    Result<void> buyNow(qint64 auction, const Buyer &buyer);
    Result<void> ask(qint64 auction, const Buyer &buyer, const QString &question);

    /**
     * Ends the auctions whose time is up. When that cannot be recorded just now they are shown as
     * they were, but take no bid any more; it fails only when the records cannot be read.
     */
    Result<void> endDue();

private:
    /** What is done to an auction in one session; one with number 0 = there is none. */
    using Step = std::function<Result<void>(Database::Session &, const Auction &)>;

    /** Ends what is due, reads the auction, and commits what @p step has done unless it fails. */
    Result<void> change(qint64 auction, const Step &step);
    Result<QList<Auction>> select(const QString &condition, const QVariantList &values);
    Result<void> recordEnds();

    Database &m_database;
};
