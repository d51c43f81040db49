#include "auctiondelegate.h"

#include "kavlormyauctionsmodel.h"

#include <QApplication>
#include <QPainter>

AuctionDelegate::AuctionDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{
}

void AuctionDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    // Not by way of an icon, which a style would tint in a selected row and set into margins.
    const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
    const auto picture = index.data(Qt::DecorationRole).value<QPixmap>();
    if (!picture.isNull())
        painter->drawPixmap(option.rect.topLeft(), picture);
}

QSize AuctionDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    return CKavlorMyAuctionsModel::cellSize(index.column());
}
