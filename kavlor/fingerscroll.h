// SPDX-License-Identifier: MIT

#pragma once

#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QPointer>

class QAbstractScrollArea;
class QInputEvent;
class QMouseEvent;
class QScroller;
class QScrollPrepareEvent;
class QTouchEvent;
class QWidget;

/**
 * Lets a finger scroll an area by dragging and flicking it, and use what is in it by tapping.
 *
 * A finger that is lifted where it came down is a tap, which the area gets as a press and a release
 * of the left button. One that has moved only scrolls, and one that stops a gliding area only stops
 * it: the area hears of neither. Made as a child of the area.
 */
class FingerScroll : public QObject
{
    Q_OBJECT

public:
    enum Content {
        /**
         * Rows to tap. They are dragged with the left button, too, since some touch screens report
         * as a mouse; the second half of a double tap does nothing.
         */
        Rows,
        /**
         * Text. A mouse selects in it as ever, and so does a finger while there is nothing to
         * scroll; a double tap selects a word.
         */
        Text
    };

    FingerScroll(QAbstractScrollArea *area, Content content);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool touched(QTouchEvent *event);
    bool moused(QMouseEvent *event);
    void press(const QPointF &position, const QInputEvent *event);
    void move(const QPointF &position, const QInputEvent *event);
    void release(const QPointF &position, const QInputEvent *event);
    bool followsTap(const QPointF &position, quint64 timestamp) const;
    void tap(Qt::KeyboardModifiers modifiers);
    void send(QEvent::Type type, Qt::KeyboardModifiers modifiers);
    void prepare(QScrollPrepareEvent *event);
    void giveWay();
    void scrollTo(const QPointF &position);
    qreal pixelsPerStep() const;

    QAbstractScrollArea *m_area;
    QPointer<QWidget> m_viewport;
    Content m_content;
    QScroller *m_scroller;
    qreal m_slop;      // pixels that a tapping finger may move
    int m_finger = -1; // the point that touches, by its number
    bool m_pressed = false;
    bool m_isTap = false;     // as far as can be said yet
    bool m_isSecond = false;  // of a double tap
    bool m_scrolling = false; // the contents are being moved or must not be
    bool m_sending = false;
    QPointF m_pressPosition;
    quint64 m_pressTime = 0; // ms, as events tell it
    QPointF m_tapPosition;
    quint64 m_tapTime = 0; // 0 before the first tap
};
