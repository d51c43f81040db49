// SPDX-License-Identifier: MIT

#pragma once

#include "auctionrow.h"

#include <QAbstractTableModel>
#include <QCache>
#include <QHash>
#include <QPixmap>
#include <QString>
#include <QStringView>

/**
 * The member's auctions, one a row: a thumbnail and a painted strip of information.
 *
 * Both pictures are kept in QPixmapCache and made again when they fall out of it. Of the thumbnails
 * as they came only those last shown are kept, so that memory is bounded however many rows there
 * are; one of a row that was scrolled past long ago is missing again. Thumbnails come from outside:
 * a view that wants to show one that is missing makes the model ask for it, as often as it wants to
 * show it, until setThumbnail() was called. A picture is made, or asked for, only for a cell whose
 * decoration is read; sizes are in cellSize(). The frame that shows the auctions owns the model.
 */
class CKavlorMyAuctionsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Thumbnail = 0, Info = 1 };

    explicit CKavlorMyAuctionsModel(QObject *parent = nullptr);

    /** The size of every picture in @p column, in pixels. */
    static QSize cellSize(int column);

    /**
     * How many pixels of a picture take the place of one of cellSize(); 1 unless cells are shown
     * enlarged or on a finer screen.
     */
    void setPixelRatio(qreal pixelRatio);

    /**
     * Replaces all rows by those of a reply of the service, up to the first line that is none.
     * Returns false when the reply has not even a line after its header.
     */
    bool load(const QString &reply);
    /** A null pixmap says that the auction has none; it is not asked for again. */
    void setThumbnail(uint auctionId, const QPixmap &thumbnail);
    /** Keeps the new prices of an auction. What its row shows stays as it was painted. */
    void setPrices(uint auctionId, int reservePrice, int buyItNowPrice);

    /** The auction in @p row; 0 when there is no such row. */
    uint auctionId(int row) const;
    CAuctionRow auction(uint auctionId) const;

    /** What the cell shows, in words. */
    QString cellText(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    /** A view wants to show the thumbnail of @p aAuction, which is missing. */
    void requestThumb(uint aAuction) const;

private:
    struct Prices
    {
        int reserve = 0;
        int buyItNow = 0;
    };

    bool appendLine(QStringView line);
    CAuctionRow shownParts(uint auctionId) const;
    void keepThumbnail(uint auctionId, const QPixmap &thumbnail);
    QVariant thumbnail(uint auctionId) const;
    QPixmap strip(uint auctionId) const;

    QString m_reply;
    QHash<int, uint> m_ids;             // by row
    QHash<uint, QStringView> m_lines;   // of m_reply; most are never read
    QHash<uint, Prices> m_newPrices;    // of the auctions whose prices were changed since
    QCache<uint, QPixmap> m_thumbnails; // as they came, those last shown; costs are bytes
    qreal m_pixelRatio = 1;
};
