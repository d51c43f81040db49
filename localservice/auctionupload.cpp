#include "auctionupload.h"

#include "mediatypes.h"

#include <limits>

namespace {

// An optional price: empty and, since devices send 1 for a reserve that is not set, a reserve of 1
// mean 0. -1 = no price.
qint64 optionalPrice(const FormBody &form, const QString &name, qint64 meaningNone)
{
    if (form.text(name).isEmpty())
        return 0;
    const qint64 price = form.number(name, Auctions::maxPrice);
    return price == meaningNone ? 0 : price;
}

} // namespace

AuctionUpload::AuctionUpload(Accounts &accounts, Auctions &auctions, const DataFolder &folder,
                             const QByteArray &contentType, qint64 maxMediaBytes)
    : m_accounts(accounts)
    , m_auctions(auctions)
    , m_folder(folder)
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

Operations::Reply AuctionUpload::finish(bool isWhole)
{
    m_reader.finish();
    if (!isWhole && m_reader.error().isEmpty())
        return Operations::refusal(QStringLiteral("the upload was cut short"));
    const QString wrong = fault();
    if (!wrong.isEmpty())
        return Operations::refusal(wrong);

    Auctions::NewAuction created = auction();
    created.member = m_accounts.login(m_reader.fields().text(QStringLiteral("Username")),
                                      m_reader.fields().text(QStringLiteral("Password")));
    if (created.member == 0)
        return Operations::refusal(QStringLiteral("wrong user name or password"));

    const QString media = m_folder.publish(*m_media, mediaExtension(m_reader.mediaName()));
    if (media.isEmpty())
        return Operations::refusal(QStringLiteral("the media could not be stored"));
    const Result<qint64> stored = m_auctions.create(created, media);
    if (!stored.isOk()) {
        m_folder.removeMedia(media);
        return Operations::refusal(stored.error);
    }
    return Operations::number(stored.value);
}

QString AuctionUpload::fault() const
{
    if (!m_reader.error().isEmpty())
        return m_reader.error();
    if (!m_reader.hasMedia() || m_reader.mediaBytes() == 0)
        return QStringLiteral("the media is missing");
    if (mediaExtension(m_reader.mediaName()).isEmpty())
        return QStringLiteral("the service does not take this kind of media");
    return Auctions::fault(auction());
}

Auctions::NewAuction AuctionUpload::auction() const
{
    const FormBody &form = m_reader.fields();
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
