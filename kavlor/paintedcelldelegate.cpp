// SPDX-License-Identifier: MIT

#include "paintedcelldelegate.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr int ringWidth = 3; // pixels, around the cell that has the focus

} // namespace

PaintedCellDelegate::PaintedCellDelegate(const QList<QSize> &columnSizes, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_columnSizes(columnSizes)
{
}

void PaintedCellDelegate::setScale(qreal scale)
{
    m_scale = scale;
}

QSize PaintedCellDelegate::cellSize(int column) const
{
    return m_columnSizes.value(column) * m_scale;
}

void PaintedCellDelegate::setCellText(const CellText &cellText)
{
    m_cellText = cellText;
}

QString PaintedCellDelegate::cellText(const QModelIndex &index) const
{
    return m_cellText ? m_cellText(index) : QString();
}

void PaintedCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                const QModelIndex &index) const
{
    // Not by way of an icon, which a style would tint in a selected row and set into margins.
    const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
    QRect place(option.rect.topLeft(), cellSize(index.column()));
    if (index.column() == 0)
        place.moveRight(option.rect.right());
    painter->drawPixmap(place, index.data(Qt::DecorationRole).value<QPixmap>());
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QPen ring(option.palette.color(QPalette::Text), ringWidth);
        ring.setJoinStyle(Qt::MiterJoin);
        painter->setPen(ring);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(1, 1, -2, -2));
    }
}

QSize PaintedCellDelegate::sizeHint(const QStyleOptionViewItem &option,
                                    const QModelIndex &index) const
{
    Q_UNUSED(option)
    return cellSize(index.column());
}
