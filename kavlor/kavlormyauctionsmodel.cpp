// SPDX-License-Identifier: MIT

#include "kavlormyauctionsmodel.h"

#include "auctionstrip.h"

#include <QPixmapCache>

namespace {

constexpr QSize thumbnailSize(120, 90);
constexpr int columns = 2;
constexpr qsizetype itemsPerLine = 11;
constexpr QLatin1Char separator(',');
constexpr qsizetype maxThumbnailBytes = 24L * 1024 * 1024;

QString thumbnailKey(uint auctionId)
{
    return QStringLiteral("auctionid::") + QString::number(auctionId);
}

QString stripKey(uint auctionId)
{
    return QStringLiteral("combined::") + QString::number(auctionId);
}

// What follows the first line of @p text; null when that is its last.
QStringView afterLine(QStringView text)
{
    const qsizetype end = text.indexOf(QLatin1Char('\n'));
    return end < 0 ? QStringView() : text.sliced(end + 1);
}

QPixmap cacheThumbnail(uint auctionId, const QPixmap &thumbnail, qreal pixelRatio)
{
    // Fast at its own size only: steps in a picture that is to fill several pixels for one show.
    QPixmap scaled =
        thumbnail.scaled(thumbnailSize * pixelRatio, Qt::IgnoreAspectRatio,
                         pixelRatio == 1 ? Qt::FastTransformation : Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(pixelRatio);
    QPixmapCache::insert(thumbnailKey(auctionId), scaled);
    return scaled;
}

} // namespace

CKavlorMyAuctionsModel::CKavlorMyAuctionsModel(QObject *parent)
    : QAbstractTableModel(parent)
    , m_thumbnails(maxThumbnailBytes)
{
}

QSize CKavlorMyAuctionsModel::cellSize(int column)
{
    return column == Thumbnail ? thumbnailSize : auctionStripSize;
}

void CKavlorMyAuctionsModel::setPixelRatio(qreal pixelRatio)
{
    m_pixelRatio = pixelRatio;
}

bool CKavlorMyAuctionsModel::load(const QString &reply)
{
    beginResetModel();
    m_ids.clear();
    m_lines.clear();
    m_newPrices.clear();
    m_thumbnails.clear();
    m_reply = reply;
    const qsizetype lines = m_reply.count(QLatin1Char('\n'));
    m_ids.reserve(lines);
    m_lines.reserve(lines);
    // The first line is a header.
    QStringView rest = afterLine(m_reply);
    while (!rest.isNull() && appendLine(rest.left(rest.indexOf(QLatin1Char('\n')))))
        rest = afterLine(rest);
    endResetModel();
    return lines > 0;
}

bool CKavlorMyAuctionsModel::appendLine(QStringView line)
{
    if (line.count(separator) + 1 < itemsPerLine)
        return false;
    const uint id = line.left(line.indexOf(separator)).toUInt();
    if (id == 0)
        return false;

    // A thumbnail fetched for an earlier list is taken over: the cache may drop it at any time.
    QPixmap thumbnail;
    if (QPixmapCache::find(thumbnailKey(id), &thumbnail)) {
        thumbnail.setDevicePixelRatio(1);
        keepThumbnail(id, thumbnail);
    }

    m_ids.insert(static_cast<int>(m_ids.size()), id);
    m_lines.insert(id, line);
    return true;
}

void CKavlorMyAuctionsModel::setThumbnail(uint auctionId, const QPixmap &thumbnail)
{
    if (!m_lines.contains(auctionId))
        return;
    keepThumbnail(auctionId, thumbnail);
    if (thumbnail.isNull())
        return;
    cacheThumbnail(auctionId, thumbnail, m_pixelRatio);
    // The whole column is announced, since finding the one row would take time in a long list.
    emit dataChanged(index(0, Thumbnail), index(rowCount() - 1, Thumbnail), {Qt::DecorationRole});
}

void CKavlorMyAuctionsModel::keepThumbnail(uint auctionId, const QPixmap &thumbnail)
{
    const qsizetype bytes = static_cast<qsizetype>(thumbnail.width()) * thumbnail.height() * 4;
    m_thumbnails.insert(auctionId, new QPixmap(thumbnail), qMax<qsizetype>(bytes, 1));
}

void CKavlorMyAuctionsModel::setPrices(uint auctionId, int reservePrice, int buyItNowPrice)
{
    if (m_lines.contains(auctionId))
        m_newPrices.insert(auctionId, {reservePrice, buyItNowPrice});
}

uint CKavlorMyAuctionsModel::auctionId(int row) const
{
    return m_ids.value(row);
}

CAuctionRow CKavlorMyAuctionsModel::auction(uint auctionId) const
{
    CAuctionRow auction = shownParts(auctionId);
    const QStringView endDate = m_lines.value(auctionId).split(separator).value(6);
    auction.endDate = QDateTime::fromString(endDate.toString(), QStringLiteral("MM/dd/yyyy hh:mm"));
    const QPixmap *thumbnail = m_thumbnails.object(auctionId);
    auction.noThumbnail = !thumbnail;
    if (thumbnail)
        auction.thumbnail = *thumbnail;
    return auction;
}

// All but the thumbnail and the end date, which takes as long as everything else together.
CAuctionRow CKavlorMyAuctionsModel::shownParts(uint auctionId) const
{
    const QList<QStringView> items = m_lines.value(auctionId).split(separator);
    CAuctionRow auction;
    auction.title = items.value(1).toString();
    auction.item2 = items.value(2).toInt();
    auction.reservePrice = items.value(3).toInt();
    auction.buyItNowPrice = items.value(4).toInt();
    auction.item5 = items.value(5).toInt();
    auction.finished = items.value(7) == QLatin1String("1");
    auction.views = items.value(8).toInt();
    auction.bids = items.value(9).toInt();
    auction.item10 = items.value(10).toInt();
    const auto changed = m_newPrices.constFind(auctionId);
    if (changed != m_newPrices.constEnd()) {
        auction.reservePrice = changed->reserve;
        auction.buyItNowPrice = changed->buyItNow;
    }
    return auction;
}

QString CKavlorMyAuctionsModel::cellText(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    const CAuctionRow row = shownParts(auctionId(index.row()));
    if (index.column() == Thumbnail)
        return tr("Picture of %1").arg(row.title);
    const QString reserve =
        row.item10 == row.reservePrice ? tr(" The reserve price is met.") : QString();
    const QString state = row.finished ? tr("The auction is over.") : tr("On sale.");
    return tr("%1. %2 views, %3 bids. %4")
               .arg(row.title, QString::number(row.views), QString::number(row.bids), state)
        + reserve;
}

int CKavlorMyAuctionsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

int CKavlorMyAuctionsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant CKavlorMyAuctionsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    if (role != Qt::DecorationRole)
        return {};
    const uint id = auctionId(index.row());
    if (id == 0)
        return {};
    if (index.column() == Thumbnail)
        return thumbnail(id);
    return strip(id);
}

QVariant CKavlorMyAuctionsModel::headerData(int section, Qt::Orientation orientation,
                                            int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    switch (section) {
    case Thumbnail:
        return tr("Thumbnail");
    case Info:
        return tr("Info");
    default:
        return {};
    }
}

QVariant CKavlorMyAuctionsModel::thumbnail(uint auctionId) const
{
    // Looked up even where the cache has it scaled: what was looked up last is kept longest.
    const QPixmap *original = m_thumbnails.object(auctionId);
    if (!original) {
        emit requestThumb(auctionId);
        return {};
    }
    QPixmap cached;
    if (QPixmapCache::find(thumbnailKey(auctionId), &cached)
        && cached.devicePixelRatio() == m_pixelRatio)
        return cached;
    if (original->isNull())
        return {};
    return cacheThumbnail(auctionId, *original, m_pixelRatio);
}

QPixmap CKavlorMyAuctionsModel::strip(uint auctionId) const
{
    QPixmap picture;
    if (!QPixmapCache::find(stripKey(auctionId), &picture)
        || picture.devicePixelRatio() != m_pixelRatio) {
        picture = paintAuctionStrip(shownParts(auctionId), m_pixelRatio);
        QPixmapCache::insert(stripKey(auctionId), picture);
    }
    return picture;
}
