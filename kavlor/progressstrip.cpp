#include "progressstrip.h"

#include "progressivemodel.h"

#include <QHeaderView>

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
    resizeRowsToContents();
    resizeColumnsToContents();
    // The cells are painted by the viewport; repainting the view around it would not reach them.
    connect(model, &CProgressiveModel::occuredTimerEvent, viewport(),
            qOverload<>(&QWidget::repaint));
    updateGeometry();
}

QSize ProgressStrip::sizeHint() const
{
    return {horizontalHeader()->length(), verticalHeader()->length()};
}

QSize ProgressStrip::minimumSizeHint() const
{
    return sizeHint();
}
