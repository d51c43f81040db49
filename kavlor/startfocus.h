// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

class QWidget;

/**
 * Gives a frame's first control the focus whenever the frame appears, so that keys and a screen
 * reader begin where a member does. A frame that comes back begins where it was left.
 *
 * Made as a child of the frame.
 */
class StartFocus : public QObject
{
    Q_OBJECT

public:
    StartFocus(QWidget *frame, QWidget *first);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_frame;
    QWidget *m_first;
};
