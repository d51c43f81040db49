// SPDX-License-Identifier: MIT

#include "enterkey.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QToolButton>

EnterKey::EnterKey(QWidget *area)
    : QObject(area)
    , m_area(area)
{
    qApp->installEventFilter(this);
}

bool EnterKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *press = static_cast<QKeyEvent *>(event);
    if (press->key() != Qt::Key_Return && press->key() != Qt::Key_Enter)
        return false;
    if (!qobject_cast<QPushButton *>(watched) && !qobject_cast<QToolButton *>(watched))
        return false;
    auto *button = static_cast<QAbstractButton *>(watched);
    if (!m_area->isAncestorOf(button))
        return false; // of a dialog, which sees to it itself
    if (!press->isAutoRepeat())
        button->click();
    return true;
}
