#include "seed.h"

#include "localclock.h"
#include "seedpictures.h"

#include <QList>

/** What one seeded auction looks like. */
struct Seed::Plot
{
    SeedScene scene;
    int category;
    const char *title;
    const char *description;
    qint64 startPrice;
    qint64 reservePrice;
    qint64 buyPrice;
    QList<qint64> bids;
    int views;
    int minutesLeft;
    bool isBought;
};

namespace {

constexpr int hour = 60;
constexpr int day = 24 * hour;

const char *const bidders[][2] = {
    {"Ines Keller", "ines@example.org"},
    {"Tom Okafor", "tom@example.org"},
    {"Marta Lindqvist", "marta@example.org"},
};

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
    const Result<qint64> member = addMember();
    if (!member.isOk())
        return member.failure();

    // The oldest first; a member's list shows them the other way round.
    const QList<Plot> plots{
        {SeedScene::Forest,
         612,
         "Fog lifting in the pine forest",
         "Early morning, just after the rain. The full picture has 12 megapixels.",
         15,
         60,
         0,
         {16, 22},
         31,
         -2 * day,
         false},
        {SeedScene::CityNight,
         601,
         "Harbour quarter by night",
         "Taken from the ferry, on a tripod. The water was as flat as glass.",
         20,
         45,
         0,
         {20, 31, 52},
         74,
         -1 * day,
         false},
        {SeedScene::Balloons,
         31,
         "Balloon festival at the first start",
         "Four balloons left the ground before the wind came up.",
         10,
         0,
         80,
         {12},
         46,
         -3 * hour,
         true},
        {SeedScene::Storm,
         220,
         "Lightning over the fields",
         "One of forty tries. The strike was about three kilometres away.",
         25,
         40,
         150,
         {25, 33, 41, 47},
         128,
         9 * hour,
         false},
        {SeedScene::Mountains,
         610,
         "First light on the north face",
         "From the hut at half past five.\n\nI can deliver a larger version on request.",
         30,
         90,
         200,
         {30, 42},
         57,
         2 * day + 5 * hour,
         false},
        {SeedScene::Beach,
         611,
         "A small sail on the big blue",
         "A single boat off the beach at noon.",
         5,
         0,
         25,
         {},
         12,
         5 * day,
         false},
        {SeedScene::Sunset,
         611,
         "Evening at the bay",
         "The last minute of a long summer day.",
         8,
         0,
         0,
         {},
         3,
         6 * day + 20 * hour,
         false},
    };
    for (const Plot &plot : plots) {
        const Result<void> added = addAuction(member.value(), plot);
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

Result<qint64> Seed::addMember()
{
    FormBody form;
    form.set(QStringLiteral("Username"), QStringLiteral("demo"));
    form.set(QStringLiteral("Password1"), QStringLiteral("demo"));
    form.set(QStringLiteral("Password2"), QStringLiteral("demo"));
    form.set(QStringLiteral("FirstName"), QStringLiteral("Dana"));
    form.set(QStringLiteral("LastName"), QStringLiteral("Moreau"));
    form.set(QStringLiteral("EmailAddress"), QStringLiteral("demo@example.org"));
    form.set(QStringLiteral("PaypalAddress"), QStringLiteral("pay.demo@example.org"));
    form.set(QStringLiteral("CountryID"), QStringLiteral("US"));
    form.set(QStringLiteral("Language"), QStringLiteral("EN"));
    return m_accounts.create(form);
}

Result<QString> Seed::addMedia(const Plot &plot)
{
    const auto file = m_folder.newIncoming();
    const QImage picture = seedPicture(plot.scene, QSize(1280, 960));
    if (!file || !picture.save(file.get(), "JPEG", 90))
        return broken(QStringLiteral("the seeded pictures cannot be written"));
    return m_folder.publish(*file, QStringLiteral("jpg"));
}

Result<void> Seed::addAuction(qint64 member, const Plot &plot)
{
    const Result<QString> media = addMedia(plot);
    if (!media.isOk())
        return media.failure();
    Auctions::NewAuction seeded;
    seeded.member = member;
    seeded.category = plot.category;
    seeded.title = QLatin1String(plot.title);
    seeded.description = QLatin1String(plot.description);
    seeded.captured = QStringLiteral("20240615053000");
    seeded.startPrice = plot.startPrice;
    seeded.reservePrice = plot.reservePrice;
    seeded.buyPrice = plot.buyPrice;
    const Result<qint64> auction = m_auctions.create(seeded, media.value());
    if (!auction.isOk())
        return auction.failure();

    int next = 0;
    for (const qint64 amount : plot.bids) {
        const auto &bidder = bidders[next++ % 3];
        const Result<void> placed = m_auctions.bid(
            auction.value(), {QLatin1String(bidder[0]), QLatin1String(bidder[1])}, amount);
        if (!placed.isOk())
            return placed;
    }
    if (plot.isBought) {
        const Result<void> bought = m_auctions.buyNow(
            auction.value(), {QLatin1String(bidders[2][0]), QLatin1String(bidders[2][1])});
        if (!bought.isOk())
            return bought;
    }
    const Result<void> set = setClock(auction.value(), plot);
    return set.isOk() ? m_auctions.endDue() : set;
}

Result<void> Seed::setClock(qint64 auction, const Plot &plot)
{
    Database::Session session(m_database, Database::Writing);
    session.change(QStringLiteral("UPDATE auctions SET views = ?, ends = ? WHERE id = ?"),
                   {plot.views, LocalClock::now() + qint64(plot.minutesLeft) * 60, auction});
    return session.commit();
}
