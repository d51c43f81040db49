// SPDX-License-Identifier: MIT

#include "auctions.h"

#include "alerts.h"
#include "categories.h"
#include "localclock.h"
#include "mailoutbox.h"

#include <QRegularExpression>

namespace {

constexpr qint64 runningSeconds = 7L * 24 * 60 * 60;
constexpr int maxDescription = 20000;
constexpr int maxQuestion = 2000;
constexpr int maxWords = 10;

bool isPrice(qint64 price)
{
    return price >= 0 && price <= Auctions::maxPrice;
}

Result<void> checkPrices(qint64 startPrice, qint64 reservePrice, qint64 buyPrice)
{
    if (startPrice < 1 || !isPrice(startPrice)) {
        return refused(QStringLiteral("the start price must be from 1 to %1 US dollars")
                           .arg(Auctions::maxPrice));
    }
    if (!isPrice(reservePrice) || !isPrice(buyPrice)) {
        return refused(
            QStringLiteral("prices must be whole US dollars up to %1").arg(Auctions::maxPrice));
    }
    if (reservePrice != 0 && reservePrice <= startPrice)
        return refused(QStringLiteral("the reserve price must be above the start price"));
    return {};
}

Result<void> checkBuyer(const Auctions::Buyer &buyer)
{
    static const QRegularExpression address(QStringLiteral("\\A[^\\s@]+@[^\\s@]+\\z"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    if (buyer.name.isEmpty() || buyer.name.size() > 100)
        return refused(QStringLiteral("please give your name, in at most 100 characters"));
    if (buyer.email.size() > 80 || !address.match(buyer.email).hasMatch())
        return refused(QStringLiteral("please give your e-mail address, in at most 80 characters"));
    return {};
}

// The words as the index of words is asked for them.
QString matchAll(const QString &words)
{
    QStringList terms;
    const QStringList all = words.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (QString word : all.mid(0, maxWords)) {
        word.replace(QLatin1Char('"'), QStringLiteral("\"\""));
        terms.append(QLatin1Char('"') + word + QStringLiteral("\"*"));
    }
    return terms.join(QLatin1Char(' '));
}

Auctions::State stateOf(const QString &text)
{
    if (text == QLatin1String("sold"))
        return Auctions::Sold;
    return text == QLatin1String("unsold") ? Auctions::Unsold : Auctions::Running;
}

QString auctionQuery(const QString &condition)
{
    return QStringLiteral(
               "SELECT a.id, a.member, m.username, a.category, a.title, a.description, a.media,"
               " a.start_price, a.reserve_price, a.buy_price, a.ends, a.state, a.views, "
               "a.sold_price,"
               " (SELECT count(*) FROM bids b WHERE b.auction = a.id),"
               " (SELECT coalesce(max(b.amount), 0) FROM bids b WHERE b.auction = a.id)"
               " FROM auctions a JOIN members m ON m.id = a.member ")
        + condition;
}

Auctions::Auction fromRow(const Database::Row &row)
{
    Auctions::Auction auction;
    auction.id = row.at(0).toLongLong();
    auction.member = row.at(1).toLongLong();
    auction.seller = row.at(2).toString();
    auction.category = row.at(3).toLongLong();
    auction.title = row.at(4).toString();
    auction.description = row.at(5).toString();
    auction.media = row.at(6).toString();
    auction.startPrice = row.at(7).toLongLong();
    auction.reservePrice = row.at(8).toLongLong();
    auction.buyPrice = row.at(9).toLongLong();
    auction.ends = row.at(10).toLongLong();
    auction.state = stateOf(row.at(11).toString());
    auction.views = row.at(12).toLongLong();
    auction.soldPrice = row.at(13).toLongLong();
    auction.bids = row.at(14).toLongLong();
    auction.highestBid = row.at(15).toLongLong();
    return auction;
}

Result<QList<Auctions::Auction>> readAuctions(Database::Session &session, const QString &condition,
                                              const QVariantList &values)
{
    const Result<Database::Rows> rows = session.select(auctionQuery(condition), values);
    if (!rows.isOk())
        return rows.failure();
    QList<Auctions::Auction> found;
    for (const Database::Row &row : rows.value())
        found.append(fromRow(row));
    return found;
}

Result<Auctions::Auction> readAuction(Database::Session &session, qint64 id)
{
    const Result<QList<Auctions::Auction>> found =
        readAuctions(session, QStringLiteral("WHERE a.id = ?"), {id});
    return found.isOk() ? Result<Auctions::Auction>(found.value().value(0)) : found.failure();
}

Result<bool> isAnyDue(Database::Session &session)
{
    const Result<Database::Rows> due = session.select(
        QStringLiteral("SELECT 1 FROM auctions WHERE state = 'running' AND ends <= ? LIMIT 1"),
        {LocalClock::now()});
    return due.isOk() ? Result<bool>(!due.value().isEmpty()) : due.failure();
}

// Mails the seller, if his options ask for it. A failure is kept by the session.
void alertSeller(Database::Session &session, const Auctions::Auction &auction, const Alert &alert)
{
    const Result<Database::Rows> seller =
        session.select(QStringLiteral("SELECT email FROM members WHERE id = ? AND %1 <> 0")
                           .arg(QLatin1String(alert.option)),
                       {auction.member});
    if (!seller.isOk() || seller.value().isEmpty())
        return;
    MailOutbox::send(session, seller.value().first().first().toString(), alert.subject,
                     alert.mail(auction.seller, auction.id, auction.title));
}

void sell(Database::Session &session, const Auctions::Auction &auction,
          const Auctions::Buyer &buyer, qint64 price)
{
    session.change(
        QStringLiteral(
            "UPDATE auctions SET state = 'sold', sold_price = ?, buyer = ? WHERE id = ?"),
        {price, buyer.name + QStringLiteral(" <") + buyer.email + QLatin1Char('>'), auction.id});
    alertSeller(session, auction, Alert::won(buyer.name, buyer.email, price));
}

void endUnsold(Database::Session &session, const Auctions::Auction &auction)
{
    session.change(QStringLiteral("UPDATE auctions SET state = 'unsold' WHERE id = ?"),
                   {auction.id});
    alertSeller(session, auction,
                auction.bids == 0 ? Alert::endedWithoutBid() : Alert::endedBelowReserve());
}

void end(Database::Session &session, const Auctions::Auction &auction)
{
    const bool isWon = auction.bids > 0 && auction.highestBid >= auction.reservePrice;
    if (!isWon) {
        endUnsold(session, auction);
        return;
    }
    const Result<Database::Rows> best = session.select(
        QStringLiteral(
            "SELECT bidder, email FROM bids WHERE auction = ? ORDER BY amount DESC LIMIT 1"),
        {auction.id});
    if (!best.isOk() || best.value().isEmpty())
        return;
    const Database::Row bidder = best.value().first();
    sell(session, auction, {bidder.at(0).toString(), bidder.at(1).toString()}, auction.highestBid);
}

} // namespace

qint64 Auctions::Auction::currentPrice() const
{
    return state == Sold ? soldPrice : highestBid;
}

bool Auctions::Auction::isReserveMet() const
{
    return reservePrice > 0 && currentPrice() >= reservePrice;
}

bool Auctions::Auction::isBuyable() const
{
    return isOpen() && buyPrice > highestBid;
}

bool Auctions::Auction::isOpen() const
{
    return id != 0 && state == Running && ends > LocalClock::now();
}

qint64 Auctions::Auction::lowestNextBid() const
{
    return highestBid == 0 ? startPrice : highestBid + 1;
}

Auctions::Auctions(Database &database)
    : m_database(database)
{
}

Result<void> Auctions::check(const NewAuction &auction)
{
    static const QRegularExpression fourteenDigits(QStringLiteral("\\A[0-9]{14}\\z"));
    if (!isCategory(auction.category))
        return refused(QStringLiteral("the category is unknown"));
    if (auction.title.trimmed().isEmpty())
        return refused(QStringLiteral("the caption is missing"));
    if (auction.title.size() > maxTitle)
        return refused(QStringLiteral("the caption is longer than %1 characters").arg(maxTitle));
    if (auction.description.size() > maxDescription) {
        return refused(
            QStringLiteral("the description is longer than %1 characters").arg(maxDescription));
    }
    if (!auction.captured.isEmpty() && !fourteenDigits.match(auction.captured).hasMatch())
        return refused(QStringLiteral("the capture date is broken"));
    return checkPrices(auction.startPrice, auction.reservePrice, auction.buyPrice);
}

Result<qint64> Auctions::create(const NewAuction &auction, const QString &media)
{
    Database::Session session(m_database, Database::Writing);
    session.change(
        QStringLiteral(
            "INSERT INTO auctions (member, category, title, description, captured, media,"
            " start_price, reserve_price, buy_price, created, ends)"
            " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        {auction.member, auction.category, auction.title, auction.description, auction.captured,
         media, auction.startPrice, auction.reservePrice, auction.buyPrice, LocalClock::now(),
         LocalClock::now() + runningSeconds});
    const qint64 id = session.addedRow();
    const Result<void> stored = session.commit();
    return stored.isOk() ? Result<qint64>(id) : stored.failure();
}

Result<void> Auctions::changePrices(qint64 member, qint64 id, qint64 reservePrice, qint64 buyPrice)
{
    return change(id, [=](Database::Session &session, const Auction &auction) -> Result<void> {
        if (auction.id == 0 || auction.member != member)
            return refused(QStringLiteral("this is no auction of yours"));
        if (!auction.isOpen())
            return refused(QStringLiteral("the auction has ended and can no longer be changed"));
        const Result<void> checked = checkPrices(auction.startPrice, reservePrice, buyPrice);
        if (!checked.isOk())
            return checked;
        session.change(
            QStringLiteral("UPDATE auctions SET reserve_price = ?, buy_price = ? WHERE id = ?"),
            {reservePrice, buyPrice, id});
        return {};
    });
}

Result<void> Auctions::change(qint64 id, const Step &step)
{
    const Result<void> ended = endDue();
    if (!ended.isOk())
        return ended;
    Database::Session session(m_database, Database::Writing);
    const Result<Auction> found = readAuction(session, id);
    if (!found.isOk())
        return found.failure();
    const Result<void> done = step(session, found.value());
    return done.isOk() ? session.commit() : done;
}

Result<QList<Auctions::Auction>> Auctions::select(const QString &condition,
                                                  const QVariantList &values)
{
    {
        Database::Session session(m_database);
        const Result<bool> due = isAnyDue(session);
        if (!due.isOk())
            return due.failure();
        if (!due.value())
            return readAuctions(session, condition, values);
    }
    (void)recordEnds();
    Database::Session session(m_database);
    return readAuctions(session, condition, values);
}

Result<QList<Auctions::Auction>> Auctions::ofMember(qint64 member)
{
    return select(QStringLiteral("WHERE a.member = ? ORDER BY a.id DESC"), {member});
}

Result<Auctions::Page> Auctions::onSale(const Search &search)
{
    QString conditions = QStringLiteral("state = 'running'");
    QVariantList values;
    if (search.category != 0) {
        QStringList ids;
        for (const qint64 id : categoryWithAllBelow(search.category))
            ids.append(QString::number(id));
        conditions += QStringLiteral(" AND category IN (%1)").arg(ids.join(QLatin1Char(',')));
    }
    const QString words = matchAll(search.words);
    if (!words.isEmpty()) {
        conditions += QStringLiteral(
            " AND id IN (SELECT rowid FROM auction_words WHERE auction_words MATCH ?)");
        values.append(words);
    }
    values << pageSize + 1 << (search.page - 1) * pageSize;
    // The page is found first, by an index alone; only its auctions are then read.
    const Result<QList<Auction>> found =
        select(QStringLiteral("WHERE a.id IN (SELECT id FROM auctions WHERE %1"
                              " ORDER BY ends, id LIMIT ? OFFSET ?) ORDER BY a.ends, a.id")
                   .arg(conditions),
               values);
    if (!found.isOk())
        return found.failure();
    return Page{found.value().mid(0, pageSize), found.value().size() > pageSize};
}

Result<QList<Auctions::Auction>> Auctions::recentlyEnded(int most)
{
    return select(
        QStringLiteral(
            "WHERE a.id IN (SELECT id FROM (SELECT id FROM auctions WHERE state = 'sold'"
            " ORDER BY ends DESC, id DESC LIMIT ?) UNION ALL SELECT id FROM (SELECT id FROM"
            " auctions WHERE state = 'unsold' ORDER BY ends DESC, id DESC LIMIT ?))"
            " ORDER BY a.ends DESC, a.id DESC LIMIT ?"),
        {most, most, most});
}

Result<Auctions::Auction> Auctions::auction(qint64 id)
{
    const Result<QList<Auction>> found = select(QStringLiteral("WHERE a.id = ?"), {id});
    return found.isOk() ? Result<Auction>(found.value().value(0)) : found.failure();
}

Result<QList<Auctions::Bid>> Auctions::bids(qint64 auction)
{
    const Result<Database::Rows> rows =
        Database::Session(m_database)
            .select(QStringLiteral("SELECT bidder, amount, placed FROM bids WHERE auction = ?"
                                   " ORDER BY amount DESC"),
                    {auction});
    if (!rows.isOk())
        return rows.failure();
    QList<Bid> found;
    for (const Database::Row &row : rows.value()) {
        found.append({row.at(0).toString(), row.at(1).toLongLong(), row.at(2).toLongLong()});
    }
    return found;
}

Result<QStringList> Auctions::allMedia()
{
    const Result<Database::Rows> rows =
        Database::Session(m_database).select(QStringLiteral("SELECT media FROM auctions"));
    if (!rows.isOk())
        return rows.failure();
    QStringList names;
    for (const Database::Row &row : rows.value())
        names.append(row.first().toString());
    return names;
}

Result<void> Auctions::countView(qint64 id)
{
    Database::Session session(m_database, Database::Writing);
    const Result<Auction> found = readAuction(session, id);
    if (!found.isOk())
        return found.failure();
    if (found.value().id == 0)
        return {};
    session.change(QStringLiteral("UPDATE auctions SET views = views + 1 WHERE id = ?"), {id});
    alertSeller(session, found.value(), Alert::viewed());
    return session.commit();
}

Result<void> Auctions::bid(qint64 id, const Buyer &buyer, qint64 amount)
{
    return change(id, [&](Database::Session &session, const Auction &auction) -> Result<void> {
        if (!auction.isOpen())
            return refused(QStringLiteral("this auction has ended"));
        const Result<void> checked = checkBuyer(buyer);
        if (!checked.isOk())
            return checked;
        if (!isPrice(amount) || amount < auction.lowestNextBid()) {
            return refused(QStringLiteral("please bid at least USD %1, in whole US dollars")
                               .arg(auction.lowestNextBid()));
        }
        session.change(
            QStringLiteral(
                "INSERT INTO bids (auction, bidder, email, amount, placed) VALUES (?, ?, ?, ?, ?)"),
            {id, buyer.name, buyer.email, amount, LocalClock::now()});
        alertSeller(session, auction, Alert::bid(buyer.name, amount));
        return {};
    });
}

Result<void> Auctions::buyNow(qint64 id, const Buyer &buyer)
{
    return change(id, [&](Database::Session &session, const Auction &auction) -> Result<void> {
        if (!auction.isBuyable())
            return refused(QStringLiteral("this auction can no longer be bought at once"));
        const Result<void> checked = checkBuyer(buyer);
        if (!checked.isOk())
            return checked;
        sell(session, auction, buyer, auction.buyPrice);
        session.change(QStringLiteral("UPDATE auctions SET ends = ? WHERE id = ?"),
                       {LocalClock::now(), id});
        return {};
    });
}

Result<void> Auctions::ask(qint64 id, const Buyer &buyer, const QString &question)
{
    Database::Session session(m_database, Database::Writing);
    const Result<Auction> found = readAuction(session, id);
    if (!found.isOk())
        return found.failure();
    if (found.value().id == 0)
        return refused(QStringLiteral("there is no such auction"));
    const Result<void> checked = checkBuyer(buyer);
    if (!checked.isOk())
        return checked;
    if (question.trimmed().isEmpty() || question.size() > maxQuestion) {
        return refused(
            QStringLiteral("please write a question of at most %1 characters").arg(maxQuestion));
    }
    alertSeller(session, found.value(), Alert::question(buyer.name, buyer.email, question));
    return session.commit();
}

Result<void> Auctions::endDue()
{
    Result<bool> due = false;
    {
        Database::Session session(m_database);
        due = isAnyDue(session);
    }
    if (!due.isOk())
        return due.failure();
    if (due.value())
        (void)recordEnds();
    return {};
}

Result<void> Auctions::recordEnds()
{
    Database::Session session(m_database, Database::Writing);
    const Result<QList<Auction>> due = readAuctions(
        session, QStringLiteral("WHERE a.state = 'running' AND a.ends <= ?"), {LocalClock::now()});
    if (!due.isOk())
        return due.failure();
    for (const Auction &auction : due.value())
        end(session, auction);
    return session.commit();
}
