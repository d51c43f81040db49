// SPDX-License-Identifier: MIT

#include "slimscrollbar.h"

#include <QAbstractScrollArea>
#include <QEvent>

namespace {

constexpr int barWidth = 12;

} // namespace

SlimScrollBar::SlimScrollBar(QAbstractScrollArea *area)
    : QScrollBar(Qt::Vertical, area)
    , m_area(area)
{
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const QScrollBar *own = area->verticalScrollBar();
    connect(own, &QScrollBar::rangeChanged, this, &SlimScrollBar::followRange);
    connect(own, &QScrollBar::valueChanged, this, &SlimScrollBar::setValue);
    connect(this, &SlimScrollBar::valueChanged, own, &QScrollBar::setValue);
    area->installEventFilter(this);
    followRange();
}

bool SlimScrollBar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_area && event->type() == QEvent::Resize)
        place();
    return QScrollBar::eventFilter(watched, event);
}

void SlimScrollBar::followRange()
{
    const QScrollBar *own = m_area->verticalScrollBar();
    setPageStep(own->pageStep());
    setSingleStep(own->singleStep());
    setRange(own->minimum(), own->maximum());
    setValue(own->value());
    setVisible(own->maximum() > own->minimum());
    place();
}

void SlimScrollBar::place()
{
    const QRect inside = m_area->contentsRect();
    setGeometry(inside.right() + 1 - barWidth, inside.top(), barWidth, inside.height());
    raise();
}
