// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

class QWidget;

/**
 * Shows a widget's tool tip as plain text, whatever is in it, and no more of it than fits on a
 * screen. The tool tip itself stays whole. Made as a child of the widget.
 */
class PlainToolTip : public QObject
{
    Q_OBJECT

public:
    explicit PlainToolTip(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_widget;
};
