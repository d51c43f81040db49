// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>

class QMouseEvent;
class QWidget;

/**
 * Makes one tap of a double tap where the second would hit something else than the first.
 *
 * Many members tap twice. A bar button that is pressed twice in a row counts once, since the first
 * press may have changed what the button does; and anywhere a second press is dropped when what got
 * the first has gone meanwhile, or lies under a window that has just come up. Watches the whole
 * application. Made as a child of the area of the bars.
 */
class DoubleTapGuard : public QObject
{
    Q_OBJECT

public:
    explicit DoubleTapGuard(QWidget *barArea);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isSecondHalf(const QMouseEvent *press) const;
    bool mayPass(const QWidget *target) const;

    QWidget *m_barArea;
    QPointer<QWidget> m_target; // of the latest press that passed
    QPoint m_position;          // of the latest press, on the screen
    quint64 m_time = 0;         // of the latest press in ms, as events tell it; 0 = none yet
};
