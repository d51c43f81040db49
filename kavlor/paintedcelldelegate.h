// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QSize>
#include <QStyledItemDelegate>

#include <functional>

/**
 * Shows the cells of a table whose model paints each as one pixmap, its decoration, over the row's
 * selection. The current cell is framed for whoever works by keys. A first cell that is wider than
 * its picture shows it on the right, beside the next one.
 *
 * The sizes are fixed by column, so that laying out a table asks its model for nothing: only a
 * cell that comes into sight is painted.
 */
class PaintedCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /** Puts into words what a cell shows; an empty text for one that shows nothing. */
    using CellText = std::function<QString(const QModelIndex &index)>;

    /** @p columnSizes holds the size of a cell for each column. */
    PaintedCellDelegate(const QList<QSize> &columnSizes, QObject *parent);

    /** Shows the cells larger by this factor; 1 is their own size. */
    void setScale(qreal scale);
    /** How large a cell of the column is shown. */
    QSize cellSize(int column) const;

    /** What a screen reader says of the cells. */
    void setCellText(const CellText &cellText);
    QString cellText(const QModelIndex &index) const;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    const QList<QSize> m_columnSizes;
    qreal m_scale = 1;
    CellText m_cellText;
};
