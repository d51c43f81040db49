// SPDX-License-Identifier: MIT

#include "auctionupload.h"

#include "mediatypes.h"

#include <limits>

namespace {

// An optional price: empty and, since devices send 1 for a reserve that is not set, a reserve of 1
// mean 0. -1 = no price.
qint64 optionalPrice(const Fields &form, const QString &name, qint64 meaningNone)
{
    if (form.text(name).isEmpty())
        return 0;
    const qint64 price = form.number(name, Auctions::maxPrice);
    return price == meaningNone ? 0 : price;
}

} // namespace

AuctionUpload::AuctionUpload(Accounts &accounts, Auctions &auctions, const DataFolder &folder,
                             const QByteArray &contentType, const QByteArray &address,
                             qint64 maxMediaBytes)
    : m_accounts(accounts)
    , m_auctions(auctions)
    , m_folder(folder)
    , m_address(address)
    , m_media(folder.newIncoming())
    , m_reader(MultipartReader::boundaryOf(contentType), maxMediaBytes,
               [this](const QByteArray &bytes) {
                   return m_media && m_media->write(bytes) == bytes.size();
               })
{
}

void AuctionUpload::feed(const QByteArray &bytes)
{
    m_reader.feed(bytes);
}

qint64 AuctionUpload::heldBytes() const
{
    return m_reader.heldBytes();
}

Operations::Reply AuctionUpload::finish()
{
    return Operations::number(store());
}

Result<qint64> AuctionUpload::store()
{
    m_reader.finish();
    const Result<void> checked = check();
    if (!checked.isOk())
        return checked.failure();

    Auctions::NewAuction created = auction();
    const Result<qint64> member =
        m_accounts.login(m_reader.fields().text(QStringLiteral("Username")),
                         m_reader.fields().text(QStringLiteral("Password")), m_address);
    if (!member.isOk())
        return member;
    created.member = member.value();

    const Result<QString> media = m_folder.publish(*m_media, mediaExtension(m_reader.mediaName()));
    if (!media.isOk())
        return media.failure();
    // If this fails the media stays: a commit that was refused may still have reached the disk, and
    // only the next start can tell whether there is an auction that names it.
    return m_auctions.create(created, media.value());
}

Result<void> AuctionUpload::check() const
{
    if (!m_reader.error().isEmpty())
        return refused(m_reader.error());
    if (!m_reader.hasMedia() || m_reader.mediaBytes() == 0)
        return refused(QStringLiteral("the media is missing"));
    if (mediaExtension(m_reader.mediaName()).isEmpty())
        return refused(QStringLiteral("the service does not take this kind of media"));
    return Auctions::check(auction());
}

Auctions::NewAuction AuctionUpload::auction() const
{
    const Fields &form = m_reader.fields();
    Auctions::NewAuction auction;
    auction.category =
        form.number(QStringLiteral("CategoryID"), std::numeric_limits<qint32>::max());
    auction.title = form.text(QStringLiteral("Description"));
    auction.description = form.text(QStringLiteral("LongDescription"));
    auction.captured = form.text(QStringLiteral("CaptureDate"));
    auction.startPrice = form.number(QStringLiteral("StartPrice"), Auctions::maxPrice);
    auction.reservePrice = optionalPrice(form, QStringLiteral("ReservePrice"), 1);
    auction.buyPrice = optionalPrice(form, QStringLiteral("BuyItNowPrice"), 0);
    return auction;
}
