// SPDX-License-Identifier: MIT

#include "startfocus.h"

#include <QEvent>
#include <QWidget>

StartFocus::StartFocus(QWidget *frame, QWidget *first)
    : QObject(frame)
    , m_frame(frame)
    , m_first(first)
{
    frame->installEventFilter(this);
}

bool StartFocus::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_frame && event->type() == QEvent::Show && !event->spontaneous()) {
        QWidget *last = m_frame->focusWidget();
        const bool canGoOn = last && last->isEnabled() && last->isVisibleTo(m_frame);
        // As by the tab key, with which a number or a name is selected and so can be typed over.
        (canGoOn ? last : m_first)->setFocus(Qt::TabFocusReason);
    }
    return QObject::eventFilter(watched, event);
}
