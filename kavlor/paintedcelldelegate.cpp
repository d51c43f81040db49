#include "paintedcelldelegate.h"

#include <QPainter>
#include <QPixmap>

PaintedCellDelegate::PaintedCellDelegate(const QList<QSize> &columnSizes, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_columnSizes(columnSizes)
{
}

void PaintedCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                const QModelIndex &index) const
{
    painter->drawPixmap(option.rect.topLeft(), index.data(Qt::DecorationRole).value<QPixmap>());
}

QSize PaintedCellDelegate::sizeHint(const QStyleOptionViewItem &option,
                                    const QModelIndex &index) const
{
    Q_UNUSED(option)
    return m_columnSizes.value(index.column());
}
