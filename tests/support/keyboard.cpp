// SPDX-License-Identifier: MIT

#include "keyboard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QWidget>
#include <QWindow>

void Keyboard::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    if (QWindow *window = QGuiApplication::focusWindow())
        QTest::keyClick(window, key, modifiers);
}

void Keyboard::hold(Qt::Key key)
{
    QKeyEvent again(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    if (QWidget *focused = QApplication::focusWidget())
        QCoreApplication::sendEvent(focused, &again);
}

void Keyboard::type(const QString &text)
{
    for (const QChar letter : text) {
        if (QWindow *window = QGuiApplication::focusWindow())
            QTest::keyClick(window, letter.toLatin1());
    }
}

void Keyboard::replace(const QString &text)
{
    press(Qt::Key_A, Qt::ControlModifier);
    type(text);
}

bool Keyboard::tabTo(const QString &name)
{
    constexpr int enough = 40;
    for (int presses = 0; presses < enough; ++presses) {
        if (focus() == name)
            return true;
        press(Qt::Key_Tab);
    }
    return false;
}

QString Keyboard::focus()
{
    const QWidget *focused = QApplication::focusWidget();
    return focused && focused->isVisible() ? focused->objectName() : QString();
}
