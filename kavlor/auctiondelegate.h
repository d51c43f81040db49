#pragma once

#include <QStyledItemDelegate>

/**
 * Shows the pictures of CKavlorMyAuctionsModel as they are, at the top left of their cells.
 *
 * It gives sizes without reading a cell, so that laying out a list makes no picture and asks for
 * no thumbnail; only painting a cell does.
 */
class AuctionDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit AuctionDelegate(QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
