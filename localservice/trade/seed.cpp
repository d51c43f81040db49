// SPDX-License-Identifier: MIT

#include "seed.h"

#include "localclock.h"
#include "seedpictures.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr qint64 hour = 60L * 60;

// What is planted. The auctions stand there with the oldest first; a member's list shows them the
// other way round.
QJsonObject plan()
{
    QFile file(QStringLiteral(":/localservice/trade/seed.json"));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

SeedScene scene(const QString &name)
{
    static const QHash<QString, SeedScene> all{
        {QStringLiteral("forest"), SeedScene::Forest},
        {QStringLiteral("cityNight"), SeedScene::CityNight},
        {QStringLiteral("balloons"), SeedScene::Balloons},
        {QStringLiteral("storm"), SeedScene::Storm},
        {QStringLiteral("mountains"), SeedScene::Mountains},
        {QStringLiteral("beach"), SeedScene::Beach},
        {QStringLiteral("sunset"), SeedScene::Sunset},
    };
    return all.value(name);
}

QString text(const QJsonObject &plot, const char *name)
{
    return plot.value(QLatin1String(name)).toString();
}

qint64 number(const QJsonObject &plot, const char *name)
{
    return plot.value(QLatin1String(name)).toInteger();
}

Auctions::Buyer bidder(const QJsonObject &plan, int number)
{
    const QJsonArray bidders = plan.value(QLatin1String("bidders")).toArray();
    const QJsonObject found = bidders.at(number % bidders.size()).toObject();
    return {text(found, "name"), text(found, "email")};
}

} // namespace

Seed::Seed(Database &database, Accounts &accounts, Auctions &auctions, const DataFolder &folder)
    : m_database(database)
    , m_accounts(accounts)
    , m_auctions(auctions)
    , m_folder(folder)
{
}

Result<void> Seed::plant()
{
    const Result<bool> planted = isPlanted();
    if (!planted.isOk())
        return planted.failure();
    if (planted.value())
        return {};
    const QJsonObject all = plan();
    const Result<qint64> member = addMember(all.value(QLatin1String("member")).toObject());
    if (!member.isOk())
        return member.failure();
    const QJsonArray plots = all.value(QLatin1String("auctions")).toArray();
    for (const auto &plot : plots) {
        const Result<void> added = addAuction(member.value(), plot.toObject(), all);
        if (!added.isOk())
            return added;
    }
    return {};
}

Result<bool> Seed::isPlanted()
{
    const Result<Database::Rows> found =
        Database::Session(m_database)
            .select(QStringLiteral("SELECT id FROM members WHERE username = 'demo'"));
    return found.isOk() ? Result<bool>(!found.value().isEmpty()) : found.failure();
}

Result<qint64> Seed::addMember(const QJsonObject &account)
{
    Fields form;
    for (auto field = account.begin(); field != account.end(); ++field)
        form.set(field.key(), field.value().toString());
    return m_accounts.create(form);
}

Result<QString> Seed::addMedia(const QJsonObject &plot)
{
    const auto file = m_folder.newIncoming();
    const QImage picture = seedPicture(scene(text(plot, "scene")), QSize(1280, 960));
    if (!file || !picture.save(file.get(), "JPEG", 90))
        return broken(QStringLiteral("the seeded pictures cannot be written"));
    return m_folder.publish(*file, QStringLiteral("jpg"));
}

Result<void> Seed::addAuction(qint64 member, const QJsonObject &plot, const QJsonObject &plan)
{
    const Result<QString> media = addMedia(plot);
    if (!media.isOk())
        return media.failure();
    Auctions::NewAuction seeded;
    seeded.member = member;
    seeded.category = number(plot, "category");
    seeded.title = text(plot, "title");
    seeded.description = text(plot, "description");
    seeded.captured = QStringLiteral("20240615053000");
    seeded.startPrice = number(plot, "startPrice");
    seeded.reservePrice = number(plot, "reservePrice");
    seeded.buyPrice = number(plot, "buyPrice");
    const Result<qint64> auction = m_auctions.create(seeded, media.value());
    if (!auction.isOk())
        return auction.failure();

    const QJsonArray bids = plot.value(QLatin1String("bids")).toArray();
    for (int i = 0; i < bids.size(); ++i) {
        const Result<void> placed =
            m_auctions.bid(auction.value(), bidder(plan, i), bids.at(i).toInteger());
        if (!placed.isOk())
            return placed;
    }
    if (plot.value(QLatin1String("isBought")).toBool()) {
        const Result<void> bought = m_auctions.buyNow(auction.value(), bidder(plan, 2));
        if (!bought.isOk())
            return bought;
    }
    const Result<void> set = setClock(auction.value(), plot);
    return set.isOk() ? m_auctions.endDue() : set;
}

Result<void> Seed::setClock(qint64 auction, const QJsonObject &plot)
{
    Database::Session session(m_database, Database::Writing);
    session.change(
        QStringLiteral("UPDATE auctions SET views = ?, ends = ? WHERE id = ?"),
        {number(plot, "views"), LocalClock::now() + number(plot, "hoursLeft") * hour, auction});
    return session.commit();
}
