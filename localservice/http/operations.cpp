// SPDX-License-Identifier: MIT

#include "operations.h"

#include "categories.h"
#include "localclock.h"
#include "mediatypes.h"
#include "referencetexts.h"

#include <QFileInfo>
#include <QHash>

#include <charconv>
#include <limits>

namespace {

void addNumber(QByteArray &line, qint64 number)
{
    char digits[20];
    const std::to_chars_result written = std::to_chars(digits, digits + sizeof(digits), number);
    line.append(',').append(digits, written.ptr - digits);
}

// Straight into the list, since there may be thousands.
void addAuction(QByteArray &list, const Auctions::Auction &auction, const LocalClock &clock)
{
    list += QByteArray::number(auction.id);
    list.append(',').append(Operations::item(auction.title));
    for (const qint64 price :
         {auction.startPrice, auction.reservePrice, auction.buyPrice, auction.currentPrice()})
        addNumber(list, price);
    list.append(',').append(clock.text(auction.ends, "%m/%d/%Y %H:%M"));
    addNumber(list, auction.isOpen() ? 0 : 1);
    addNumber(list, auction.views);
    addNumber(list, auction.bids);
    addNumber(list, auction.isReserveMet() ? auction.reservePrice : -1);
    list += '\n';
}

// 1 or 0, or -1 for anything else.
int flag(const Fields &form, const char *name)
{
    return int(form.number(QLatin1String(name), 1));
}

} // namespace

Operations::Operations(Accounts &accounts, Auctions &auctions, Pictures &pictures,
                       const DataFolder &folder)
    : m_accounts(accounts)
    , m_auctions(auctions)
    , m_pictures(pictures)
    , m_folder(folder)
{
}

Operations::Reply Operations::refusal(const Failure &failure)
{
    return {"ERROR: " + failure.reason.toUtf8(), "text/plain", {}, failure.delay};
}

Operations::Reply Operations::number(const Result<qint64> &number)
{
    if (!number.isOk())
        return refusal(number.failure());
    return {QByteArray::number(number.value()), "text/plain", {}, {}};
}

QByteArray Operations::item(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar c : text) {
        const bool isBreak = c == QLatin1Char(' ') || c.category() == QChar::Other_Control;
        if (!isBreak)
            line += c == QLatin1Char(',') ? QLatin1Char(';') : c;
        else if (!line.endsWith(QLatin1Char(' ')))
            line += QLatin1Char(' ');
    }
    line.replace(QLatin1String("ERROR"), QLatin1String("Error"));
    return line.trimmed().toUtf8();
}

Operations::Reply Operations::answer(const QString &operation, const Fields &form,
                                     const QByteArray &address)
{
    if (operation == QLatin1String("GetServiceTerms"))
        return {serviceTerms(), "text/plain", {}, {}};
    if (operation == QLatin1String("GetCountryList"))
        return {countryList(), "text/plain", {}, {}};
    if (operation == QLatin1String("ValidateLogin"))
        return validateLogin(form, address);
    if (operation == QLatin1String("CreateAccount"))
        return createAccount(form);
    if (operation == QLatin1String("ModifyAccount"))
        return modifyAccount(form, address);

    static const QHash<QString, Member> forMembers{
        {QStringLiteral("GetCategoryList"), &Operations::categories},
        {QStringLiteral("GetNotificationOptions"), &Operations::notificationOptions},
        {QStringLiteral("SetNotificationOptions"), &Operations::setNotificationOptions},
        {QStringLiteral("GetMyAuctions"), &Operations::myAuctions},
        {QStringLiteral("ModifyAuction"), &Operations::modifyAuction},
        {QStringLiteral("GetThumbnail"), &Operations::thumbnail},
        {QStringLiteral("GetRawMedia"), &Operations::rawMedia},
    };
    const Member forMember = forMembers.value(operation);
    if (!forMember)
        return refusal(refused(QStringLiteral("there is no such operation")));
    const Result<qint64> member = login(form, address);
    if (!member.isOk())
        return refusal(member.failure());
    return (this->*forMember)(member.value(), form);
}

Result<Effort> Operations::effort(const QString &operation, const Fields &form)
{
    static const QHash<QString, Effort> known{
        {QStringLiteral("GetServiceTerms"), Effort::Reading},
        {QStringLiteral("GetCountryList"), Effort::Reading},
        {QStringLiteral("GetThumbnail"), Effort::Picturing},
        {QStringLiteral("CreateAccount"), Effort::Changing},
        {QStringLiteral("ModifyAccount"), Effort::Changing},
        {QStringLiteral("ModifyAuction"), Effort::Changing},
        {QStringLiteral("SetNotificationOptions"), Effort::Changing},
    };
    const auto found = known.constFind(operation);
    if (found != known.cend())
        return *found;
    const Result<bool> isRemembered = m_accounts.isRemembered(
        form.text(QStringLiteral("Username")), form.text(QStringLiteral("Password")));
    if (!isRemembered.isOk())
        return isRemembered.failure();
    return isRemembered.value() ? Effort::Reading : Effort::Changing;
}

Result<qint64> Operations::login(const Fields &form, const QByteArray &address)
{
    return m_accounts.login(form.text(QStringLiteral("Username")),
                            form.text(QStringLiteral("Password")), address);
}

Operations::Reply Operations::validateLogin(const Fields &form, const QByteArray &address)
{
    const Result<qint64> member = login(form, address);
    if (member.isOk())
        return number(1);
    const bool isStranger = member.failure().kind == Failure::Stranger;
    Reply reply = isStranger ? number(0) : refusal(member.failure());
    reply.delay = member.failure().delay;
    return reply;
}

Operations::Reply Operations::createAccount(const Fields &form)
{
    return number(m_accounts.create(form));
}

Operations::Reply Operations::modifyAccount(const Fields &form, const QByteArray &address)
{
    return number(m_accounts.modify(form, address));
}

Operations::Reply Operations::categories(qint64 member, const Fields &form)
{
    Q_UNUSED(member)
    Q_UNUSED(form)
    return {categoryList(), "text/plain", {}, {}};
}

Operations::Reply Operations::notificationOptions(qint64 member, const Fields &form)
{
    Q_UNUSED(form)
    const Result<Accounts::AlertOptions> found = m_accounts.alertOptions(member);
    if (!found.isOk())
        return refusal(found.failure());
    const Accounts::AlertOptions &options = found.value();
    const QByteArrayList items{
        QByteArray::number(int(options.onBid)), QByteArray::number(int(options.onAuctionEnd)),
        QByteArray::number(int(options.onView)), QByteArray::number(int(options.onBuyerQuestion)),
        item(options.email)};
    return {"NotifyOnBid,NotifyOnAuctionEnd,NotifyOnView,NotifyOnBuyerQuestion,EmailAddress\n"
                + items.join(',') + '\n',
            "text/plain",
            {},
            {}};
}

Operations::Reply Operations::setNotificationOptions(qint64 member, const Fields &form)
{
    const int onBid = flag(form, "NotifyOnBid");
    const int onEnd = flag(form, "NotifyOnAuctionEnd");
    const int onView = flag(form, "NotifyOnView");
    const int onQuestion = flag(form, "NotifyOnBuyerQuestion");
    if (onBid < 0 || onEnd < 0 || onView < 0 || onQuestion < 0)
        return refusal(refused(QStringLiteral("an alert option is neither 0 nor 1")));
    const Accounts::AlertOptions options{onBid == 1, onEnd == 1, onView == 1, onQuestion == 1, {}};
    const Result<void> stored = m_accounts.setAlertOptions(member, options);
    return stored.isOk() ? number(member) : refusal(stored.failure());
}

Operations::Reply Operations::myAuctions(qint64 member, const Fields &form)
{
    Q_UNUSED(form)
    QByteArray list = "AuctionID,Title,StartPrice,ReservePrice,BuyItNowPrice,CurrentPrice,EndDate,"
                      "IsOver,Views,Bids,MetReservePrice\n";
    const Result<QList<Auctions::Auction>> auctions = m_auctions.ofMember(member);
    if (!auctions.isOk())
        return refusal(auctions.failure());
    const LocalClock clock;
    for (const Auctions::Auction &auction : auctions.value())
        addAuction(list, auction, clock);
    return {list, "text/plain", {}, {}};
}

Operations::Reply Operations::modifyAuction(qint64 member, const Fields &form)
{
    const qint64 auction =
        form.number(QStringLiteral("AuctionID"), std::numeric_limits<qint32>::max());
    const qint64 reservePrice = form.number(QStringLiteral("ReservePrice"), Auctions::maxPrice);
    const qint64 buyPrice = form.number(QStringLiteral("BuyItNowPrice"), Auctions::maxPrice);
    const Result<void> changed = m_auctions.changePrices(member, auction, reservePrice, buyPrice);
    return changed.isOk() ? number(auction) : refusal(changed.failure());
}

Result<Auctions::Auction> Operations::ownAuction(qint64 member, const Fields &form)
{
    const qint64 id = form.number(QStringLiteral("AuctionID"), std::numeric_limits<qint32>::max());
    const Result<Auctions::Auction> auction = m_auctions.auction(id);
    if (auction.isOk() && auction.value().member != member)
        return refused(QStringLiteral("this is no auction of yours"));
    return auction;
}

Operations::Reply Operations::thumbnail(qint64 member, const Fields &form)
{
    const Result<Auctions::Auction> auction = ownAuction(member, form);
    if (!auction.isOk())
        return refusal(auction.failure());
    const Pictures::Picture picture =
        m_pictures.thumbnail(auction.value().media, Pictures::thumbnailEdge);
    return {picture.bytes, picture.type, {}, {}};
}

Operations::Reply Operations::rawMedia(qint64 member, const Fields &form)
{
    const Result<Auctions::Auction> auction = ownAuction(member, form);
    if (!auction.isOk())
        return refusal(auction.failure());
    const QString file = m_folder.mediaPath(auction.value().media);
    if (!QFileInfo(file).isReadable())
        return refusal(broken(QStringLiteral("the media cannot be read")));
    return {{}, mediaType(auction.value().media), file, {}};
}
