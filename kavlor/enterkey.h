// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

class QWidget;

/**
 * Lets both Enter keys press the button that has the focus, as the space bar does; check boxes keep
 * to the space bar. A key that is held down presses once: what it opens must not be pressed as
 * well.
 *
 * Made as a child of the window or area that it works in.
 */
class EnterKey : public QObject
{
    Q_OBJECT

public:
    explicit EnterKey(QWidget *area);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_area;
};
