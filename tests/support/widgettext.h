// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QString>
#include <QTextEdit>

/** What a widget says to who looks at it; of one that has no text the title of its window. */
inline QString widgetText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *line = qobject_cast<const QLineEdit *>(widget))
        return line->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(widget))
        return plain->toPlainText();
    if (const auto *rich = qobject_cast<const QTextEdit *>(widget))
        return rich->toPlainText();
    if (const auto *spin = qobject_cast<const QAbstractSpinBox *>(widget))
        return spin->text();
    return widget->windowTitle();
}
