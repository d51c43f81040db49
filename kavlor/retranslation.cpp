// SPDX-License-Identifier: MIT

#include "retranslation.h"

#include <QEvent>
#include <QWidget>

#include <utility>

Retranslation::Retranslation(QWidget *frame, Say say)
    : QObject(frame)
    , m_say(std::move(say))
{
    frame->installEventFilter(this);
}

bool Retranslation::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        m_say();
    return QObject::eventFilter(watched, event);
}
