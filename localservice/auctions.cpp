#include "auctions.h"

#include "categories.h"
#include "mailoutbox.h"

#include <QRegularExpression>

namespace {

constexpr qint64 runningSeconds = 7L * 24 * 60 * 60;
constexpr int maxDescription = 20000;
constexpr int maxQuestion = 2000;

qint64 now()
{
    return QDateTime::currentSecsSinceEpoch();
}

QString notStored()
{
    return QStringLiteral("the service could not store this");
}

bool isPrice(qint64 price)
{
    return price >= 0 && price <= Auctions::maxPrice;
}

QString priceFault(qint64 startPrice, qint64 reservePrice, qint64 buyPrice)
{
    if (startPrice < 1 || !isPrice(startPrice))
        return QStringLiteral("the start price must be from 1 to %1 US dollars")
            .arg(Auctions::maxPrice);
    if (!isPrice(reservePrice) || !isPrice(buyPrice))
        return QStringLiteral("prices must be whole US dollars up to %1").arg(Auctions::maxPrice);
    if (reservePrice != 0 && reservePrice <= startPrice)
        return QStringLiteral("the reserve price must be above the start price");
    return {};
}

QString buyerFault(const Auctions::Buyer &buyer)
{
    static const QRegularExpression address(QStringLiteral("\\A[^\\s@]+@[^\\s@]+\\z"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    if (buyer.name.isEmpty() || buyer.name.size() > 100)
        return QStringLiteral("please give your name, in at most 100 characters");
    if (buyer.email.size() > 80 || !address.match(buyer.email).hasMatch())
        return QStringLiteral("please give your e-mail address, in at most 80 characters");
    return {};
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

QList<Auctions::Auction> readAuctions(QSqlQuery &query)
{
    QList<Auctions::Auction> found;
    while (query.next()) {
        Auctions::Auction auction;
        auction.id = query.value(0).toLongLong();
        auction.member = query.value(1).toLongLong();
        auction.seller = query.value(2).toString();
        auction.category = query.value(3).toLongLong();
        auction.title = query.value(4).toString();
        auction.description = query.value(5).toString();
        auction.media = query.value(6).toString();
        auction.startPrice = query.value(7).toLongLong();
        auction.reservePrice = query.value(8).toLongLong();
        auction.buyPrice = query.value(9).toLongLong();
        auction.ends = QDateTime::fromSecsSinceEpoch(query.value(10).toLongLong());
        auction.state = stateOf(query.value(11).toString());
        auction.views = query.value(12).toLongLong();
        auction.soldPrice = query.value(13).toLongLong();
        auction.bids = query.value(14).toLongLong();
        auction.highestBid = query.value(15).toLongLong();
        found.append(auction);
    }
    return found;
}

Auctions::Auction readAuction(Database::Session &session, qint64 id)
{
    QSqlQuery query = session.run(auctionQuery(QStringLiteral("WHERE a.id = ?")), {id});
    const QList<Auctions::Auction> found = readAuctions(query);
    return found.isEmpty() ? Auctions::Auction() : found.first();
}

// Mails the seller, if his options (a column of the members' table) ask for it.
void alertSeller(Database::Session &session, const Auctions::Auction &auction, const char *option,
                 const QString &subject, const QString &text)
{
    QSqlQuery seller =
        session.run(QStringLiteral("SELECT email FROM members WHERE id = ? AND %1 <> 0")
                        .arg(QLatin1String(option)),
                    {auction.member});
    if (!seller.next())
        return;
    MailOutbox::send(session, seller.value(0).toString(), subject,
                     QStringLiteral("Hello %1,\n\n%2\n\nAuction %3: %4\n")
                         .arg(auction.seller, text, QString::number(auction.id), auction.title));
}

void sell(Database::Session &session, const Auctions::Auction &auction,
          const Auctions::Buyer &buyer, qint64 price)
{
    session.run(
        QStringLiteral(
            "UPDATE auctions SET state = 'sold', sold_price = ?, buyer = ? WHERE id = ?"),
        {price, buyer.name + QStringLiteral(" <") + buyer.email + QLatin1Char('>'), auction.id});
    alertSeller(session, auction, "notify_end", QStringLiteral("Your auction is won"),
                QStringLiteral("your auction is won: %1 (%2) buys it for USD %3.")
                    .arg(buyer.name, buyer.email, QString::number(price)));
}

void endUnsold(Database::Session &session, const Auctions::Auction &auction)
{
    session.run(QStringLiteral("UPDATE auctions SET state = 'unsold' WHERE id = ?"), {auction.id});
    alertSeller(session, auction, "notify_end", QStringLiteral("Your auction has ended"),
                auction.bids == 0
                    ? QStringLiteral("your auction has ended without a bid.")
                    : QStringLiteral("your auction has ended below its reserve price."));
}

void end(Database::Session &session, const Auctions::Auction &auction)
{
    const bool isWon = auction.bids > 0 && auction.highestBid >= auction.reservePrice;
    if (!isWon) {
        endUnsold(session, auction);
        return;
    }
    QSqlQuery best = session.run(
        QStringLiteral(
            "SELECT bidder, email FROM bids WHERE auction = ? ORDER BY amount DESC LIMIT 1"),
        {auction.id});
    if (best.next())
        sell(session, auction, {best.value(0).toString(), best.value(1).toString()},
             auction.highestBid);
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
    return state == Running && buyPrice > highestBid;
}

qint64 Auctions::Auction::lowestNextBid() const
{
    return highestBid == 0 ? startPrice : highestBid + 1;
}

Auctions::Auctions(Database &database)
    : m_database(database)
{
}

QString Auctions::fault(const NewAuction &auction)
{
    static const QRegularExpression fourteenDigits(QStringLiteral("\\A[0-9]{14}\\z"));
    if (!isCategory(auction.category))
        return QStringLiteral("the category is unknown");
    if (auction.title.trimmed().isEmpty())
        return QStringLiteral("the caption is missing");
    if (auction.title.size() > maxTitle)
        return QStringLiteral("the caption is longer than %1 characters").arg(maxTitle);
    if (auction.description.size() > maxDescription)
        return QStringLiteral("the description is longer than %1 characters").arg(maxDescription);
    if (!auction.captured.isEmpty() && !fourteenDigits.match(auction.captured).hasMatch())
        return QStringLiteral("the capture date is broken");
    return priceFault(auction.startPrice, auction.reservePrice, auction.buyPrice);
}

Result<qint64> Auctions::create(const NewAuction &auction, const QString &media)
{
    Database::Session session(m_database);
    const QSqlQuery added = session.run(
        QStringLiteral(
            "INSERT INTO auctions (member, category, title, description, captured, media,"
            " start_price, reserve_price, buy_price, created, ends)"
            " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        {auction.member, auction.category, auction.title, auction.description, auction.captured,
         media, auction.startPrice, auction.reservePrice, auction.buyPrice, now(),
         now() + runningSeconds});
    const qint64 id = added.lastInsertId().toLongLong();
    return session.commit() ? Result<qint64>{id, {}} : Result<qint64>::failed(notStored());
}

QString Auctions::changePrices(qint64 member, qint64 id, qint64 reservePrice, qint64 buyPrice)
{
    endDue();
    Database::Session session(m_database);
    const Auction found = readAuction(session, id);
    if (found.id == 0 || found.member != member)
        return QStringLiteral("this is no auction of yours");
    if (found.state != Running)
        return QStringLiteral("the auction has ended and can no longer be changed");
    const QString wrong = priceFault(found.startPrice, reservePrice, buyPrice);
    if (!wrong.isEmpty())
        return wrong;
    session.run(QStringLiteral("UPDATE auctions SET reserve_price = ?, buy_price = ? WHERE id = ?"),
                {reservePrice, buyPrice, id});
    return session.commit() ? QString() : notStored();
}

QList<Auctions::Auction> Auctions::select(const QString &condition, const QVariantList &values)
{
    endDue();
    Database::Session session(m_database);
    QSqlQuery query = session.run(auctionQuery(condition), values);
    return readAuctions(query);
}

QList<Auctions::Auction> Auctions::ofMember(qint64 member)
{
    return select(QStringLiteral("WHERE a.member = ? ORDER BY a.id DESC"), {member});
}

QList<Auctions::Auction> Auctions::onSale()
{
    return select(QStringLiteral("WHERE a.state = 'running' ORDER BY a.ends, a.id"), {});
}

QList<Auctions::Auction> Auctions::recentlyEnded(int most)
{
    return select(
        QStringLiteral("WHERE a.state <> 'running' ORDER BY a.ends DESC, a.id DESC LIMIT ?"),
        {most});
}

Auctions::Auction Auctions::auction(qint64 id)
{
    endDue();
    Database::Session session(m_database);
    return readAuction(session, id);
}

QList<Auctions::Bid> Auctions::bids(qint64 auction)
{
    Database::Session session(m_database);
    QSqlQuery query = session.run(
        QStringLiteral(
            "SELECT bidder, amount, placed FROM bids WHERE auction = ? ORDER BY amount DESC"),
        {auction});
    QList<Bid> found;
    while (query.next()) {
        found.append({query.value(0).toString(), query.value(1).toLongLong(),
                      QDateTime::fromSecsSinceEpoch(query.value(2).toLongLong())});
    }
    return found;
}

QStringList Auctions::allMedia()
{
    Database::Session session(m_database);
    QSqlQuery query = session.run(QStringLiteral("SELECT media FROM auctions"));
    QStringList names;
    while (query.next())
        names.append(query.value(0).toString());
    return names;
}

void Auctions::countView(qint64 id)
{
    Database::Session session(m_database);
    const Auction found = readAuction(session, id);
    if (found.id == 0)
        return;
    session.run(QStringLiteral("UPDATE auctions SET views = views + 1 WHERE id = ?"), {id});
    alertSeller(session, found, "notify_view", QStringLiteral("Your auction has been viewed"),
                QStringLiteral("somebody is looking at your auction."));
    session.commit();
}

QString Auctions::bid(qint64 id, const Buyer &buyer, qint64 amount)
{
    endDue();
    Database::Session session(m_database);
    const Auction found = readAuction(session, id);
    if (found.state != Running || found.id == 0)
        return QStringLiteral("this auction has ended");
    const QString wrong = buyerFault(buyer);
    if (!wrong.isEmpty())
        return wrong;
    if (!isPrice(amount) || amount < found.lowestNextBid()) {
        return QStringLiteral("please bid at least USD %1, in whole US dollars")
            .arg(found.lowestNextBid());
    }
    session.run(
        QStringLiteral(
            "INSERT INTO bids (auction, bidder, email, amount, placed) VALUES (?, ?, ?, ?, ?)"),
        {id, buyer.name, buyer.email, amount, now()});
    alertSeller(
        session, found, "notify_bid", QStringLiteral("A bid on your auction"),
        QStringLiteral("%1 bids USD %2 on your auction.").arg(buyer.name, QString::number(amount)));
    return session.commit() ? QString() : notStored();
}

QString Auctions::buyNow(qint64 id, const Buyer &buyer)
{
    endDue();
    Database::Session session(m_database);
    const Auction found = readAuction(session, id);
    if (found.id == 0 || !found.isBuyable())
        return QStringLiteral("this auction can no longer be bought at once");
    const QString wrong = buyerFault(buyer);
    if (!wrong.isEmpty())
        return wrong;
    sell(session, found, buyer, found.buyPrice);
    session.run(QStringLiteral("UPDATE auctions SET ends = ? WHERE id = ?"), {now(), id});
    return session.commit() ? QString() : notStored();
}

QString Auctions::ask(qint64 id, const Buyer &buyer, const QString &question)
{
    Database::Session session(m_database);
    const Auction found = readAuction(session, id);
    if (found.id == 0)
        return QStringLiteral("there is no such auction");
    const QString wrong = buyerFault(buyer);
    if (!wrong.isEmpty())
        return wrong;
    if (question.trimmed().isEmpty() || question.size() > maxQuestion)
        return QStringLiteral("please write a question of at most %1 characters").arg(maxQuestion);
    alertSeller(session, found, "notify_question", QStringLiteral("A question about your auction"),
                QStringLiteral("%1 (%2) asks:\n\n%3").arg(buyer.name, buyer.email, question));
    return session.commit() ? QString() : notStored();
}

void Auctions::endDue()
{
    Database::Session session(m_database);
    QSqlQuery query = session.run(
        auctionQuery(QStringLiteral("WHERE a.state = 'running' AND a.ends <= ?")), {now()});
    const QList<Auction> due = readAuctions(query);
    for (const Auction &auction : due)
        end(session, auction);
    if (!due.isEmpty())
        session.commit();
}
