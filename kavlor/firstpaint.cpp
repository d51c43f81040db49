// SPDX-License-Identifier: MIT

#include "firstpaint.h"

#include "timeconstants.h"

#include <QEvent>
#include <QWidget>

FirstPaint::FirstPaint(QWidget *widget)
    : QObject(widget)
{
    widget->installEventFilter(this);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &FirstPaint::tell);
    m_patience.start(timeConstants().paintWait);
}

// Behind this event the paint is still to be done, and brought to the screen.
bool FirstPaint::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint) {
        watched->removeEventFilter(this);
        m_patience.start(0);
    }
    return false;
}

void FirstPaint::tell()
{
    deleteLater();
    emit painted();
}
