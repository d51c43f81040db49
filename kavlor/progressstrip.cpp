// SPDX-License-Identifier: MIT

#include "progressstrip.h"

#include "progressivemodel.h"

#include <QHeaderView>
#include <QImage>
#include <QPainter>

ProgressStrip::ProgressStrip(QWidget *parent)
    : QTableView(parent)
{
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setFocusPolicy(Qt::NoFocus);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDropIndicatorShown(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    horizontalHeader()->hide();
    verticalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setMinimumSectionSize(1);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    viewport()->setAutoFillBackground(false);
}

void ProgressStrip::setProgress(CProgressiveModel *model)
{
    setModel(model);
    fitCells();
    // The cells are painted by the viewport; repainting the view around it would not reach them.
    connect(model, &CProgressiveModel::occuredTimerEvent, viewport(),
            qOverload<>(&QWidget::repaint));
}

void ProgressStrip::setScale(qreal scale)
{
    m_scale = scale;
    fitCells();
}

void ProgressStrip::fitCells()
{
    resizeRowsToContents();
    resizeColumnsToContents();
    for (int row = 0; row < verticalHeader()->count(); ++row)
        setRowHeight(row, qRound(rowHeight(row) * m_scale));
    for (int column = 0; column < horizontalHeader()->count(); ++column)
        setColumnWidth(column, qRound(columnWidth(column) * m_scale));
    updateGeometry();
}

// Not by the toolkit's delegate, which puts each picture into the pixmap cache anew, every time
// that it is painted; the cells of the lists and the thumbnails would be pushed out of it.
void ProgressStrip::paintEvent(QPaintEvent *)
{
    if (!model())
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_scale != 1);
    for (int column = 0; column < model()->columnCount(); ++column) {
        const QModelIndex cell = model()->index(0, column);
        const auto picture = cell.data(Qt::DecorationRole).value<QImage>();
        QRectF place({}, picture.size() * m_scale);
        place.moveCenter(QRectF(visualRect(cell)).center());
        if (m_scale == 1)
            place.moveTopLeft(place.topLeft().toPoint());
        painter.drawImage(place, picture);
    }
}

QSize ProgressStrip::sizeHint() const
{
    return {horizontalHeader()->length(), verticalHeader()->length()};
}

QSize ProgressStrip::minimumSizeHint() const
{
    return sizeHint();
}
