// SPDX-License-Identifier: MIT

#include "fingerscroll.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QScrollEvent>
#include <QScrollPrepareEvent>
#include <QScroller>
#include <QScrollerProperties>
#include <QStyleHints>
#include <QTouchEvent>

namespace {

constexpr int nobody = -1;

QPointF valuesOf(const QAbstractScrollArea *area)
{
    return {static_cast<qreal>(area->horizontalScrollBar()->value()),
            static_cast<qreal>(area->verticalScrollBar()->value())};
}

bool hasMoreThanFits(const QAbstractScrollArea *area)
{
    return area->verticalScrollBar()->maximum() > 0 || area->horizontalScrollBar()->maximum() > 0;
}

} // namespace

FingerScroll::FingerScroll(QAbstractScrollArea *area, Content content)
    : QObject(area)
    , m_area(area)
    , m_viewport(area->viewport())
    , m_content(content)
    , m_scroller(QScroller::scroller(area->viewport()))
{
    QScrollerProperties properties = m_scroller->scrollerProperties();
    for (const auto metric : {QScrollerProperties::HorizontalOvershootPolicy,
                              QScrollerProperties::VerticalOvershootPolicy}) {
        properties.setScrollMetric(metric,
                                   QVariant::fromValue(QScrollerProperties::OvershootAlwaysOff));
    }
    m_scroller->setScrollerProperties(properties);
    m_slop = properties.scrollMetric(QScrollerProperties::DragStartDistance).toReal()
        * m_scroller->pixelPerMeter().y();

    m_viewport->setAttribute(Qt::WA_AcceptTouchEvents);
    m_viewport->installEventFilter(this);
    // When keys, a wheel or the bar move the contents, a scroll by finger that still rolls ends.
    for (const QScrollBar *bar : {area->horizontalScrollBar(), area->verticalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, &FingerScroll::giveWay);
    }
}

bool FingerScroll::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        return touched(static_cast<QTouchEvent *>(event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return m_content == Rows && !m_sending && moused(static_cast<QMouseEvent *>(event));
    case QEvent::ScrollPrepare:
        prepare(static_cast<QScrollPrepareEvent *>(event));
        return true;
    case QEvent::Scroll:
        scrollTo(static_cast<QScrollEvent *>(event)->contentPos());
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

bool FingerScroll::touched(QTouchEvent *event)
{
    if (event->type() == QEvent::TouchBegin) {
        if (m_content == Text && !hasMoreThanFits(m_area))
            return false; // the toolkit then makes mouse events of the touch
        m_finger = event->points().constFirst().id();
    }
    if (m_finger == nobody)
        return false;
    event->accept();
    if (event->type() == QEvent::TouchCancel) {
        m_finger = nobody;
        m_pressed = false;
        m_scroller->stop();
        return true;
    }
    for (const QEventPoint &point : event->points()) {
        if (point.id() != m_finger)
            continue; // only the finger that came first scrolls
        if (point.state() == QEventPoint::Pressed)
            press(point.position(), event);
        else if (point.state() == QEventPoint::Updated)
            move(point.position(), event);
        else if (point.state() == QEventPoint::Released) {
            m_finger = nobody;
            release(point.position(), event);
        }
    }
    return true;
}

bool FingerScroll::moused(QMouseEvent *event)
{
    if (event->type() == QEvent::MouseMove) {
        if (!m_pressed)
            return false;
        move(event->position(), event);
        return true;
    }
    if (event->button() != Qt::LeftButton)
        return false;
    if (event->type() == QEvent::MouseButtonRelease) {
        if (!m_pressed)
            return false;
        release(event->position(), event);
    } else {
        press(event->position(), event);
    }
    return true;
}

void FingerScroll::press(const QPointF &position, const QInputEvent *event)
{
    m_pressed = true;
    m_isTap = m_scroller->state() == QScroller::Inactive;
    m_isSecond = followsTap(position, event->timestamp());
    m_pressPosition = position;
    m_pressTime = event->timestamp();
    m_scroller->stop();
    m_scroller->handleInput(QScroller::InputPress, position,
                            static_cast<qint64>(event->timestamp()));
}

void FingerScroll::move(const QPointF &position, const QInputEvent *event)
{
    if ((position - m_pressPosition).manhattanLength() > m_slop)
        m_isTap = false;
    m_scroller->handleInput(QScroller::InputMove, position,
                            static_cast<qint64>(event->timestamp()));
}

void FingerScroll::release(const QPointF &position, const QInputEvent *event)
{
    if (!m_pressed)
        return;
    m_pressed = false;
    if ((position - m_pressPosition).manhattanLength() > m_slop)
        m_isTap = false;
    m_scroller->handleInput(QScroller::InputRelease, position,
                            static_cast<qint64>(event->timestamp()));
    if (m_isTap)
        tap(event->modifiers());
}

bool FingerScroll::followsTap(const QPointF &position, quint64 timestamp) const
{
    const auto interval =
        static_cast<quint64>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    return m_tapTime != 0 && timestamp - m_tapTime < interval
        && (position - m_tapPosition).manhattanLength() <= 2 * m_slop;
}

void FingerScroll::tap(Qt::KeyboardModifiers modifiers)
{
    m_tapPosition = m_pressPosition;
    m_tapTime = m_pressTime;
    if (m_isSecond && m_content == Rows)
        return; // the first tap may have put another row under the finger
    send(m_isSecond ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, modifiers);
    if (m_viewport)
        send(QEvent::MouseButtonRelease, modifiers);
}

void FingerScroll::send(QEvent::Type type, Qt::KeyboardModifiers modifiers)
{
    const Qt::MouseButtons buttons =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, m_pressPosition, m_viewport->mapToGlobal(m_pressPosition),
                      Qt::LeftButton, buttons, modifiers);
    event.setTimestamp(m_pressTime);
    const QPointer<FingerScroll> self(this);
    m_sending = true;
    QCoreApplication::sendEvent(m_viewport, &event);
    if (self)
        m_sending = false;
}

void FingerScroll::prepare(QScrollPrepareEvent *event)
{
    const QSizeF range(m_area->horizontalScrollBar()->maximum(),
                       m_area->verticalScrollBar()->maximum() * pixelsPerStep());
    event->setViewportSize(m_viewport->size());
    event->setContentPosRange(QRectF(QPointF(), range));
    event->setContentPos({valuesOf(m_area).x(), valuesOf(m_area).y() * pixelsPerStep()});
    event->accept();
}

void FingerScroll::giveWay()
{
    if (m_scrolling)
        return;
    m_scrolling = true; // stop() moves the contents once more, which must not lead here again
    m_scroller->stop();
    m_scrolling = false;
}

void FingerScroll::scrollTo(const QPointF &position)
{
    if (m_scrolling)
        return;
    m_scrolling = true;
    m_area->horizontalScrollBar()->setValue(qRound(position.x()));
    m_area->verticalScrollBar()->setValue(qRound(position.y() / pixelsPerStep()));
    m_scrolling = false;
}

// The vertical bar of a plain text counts lines, all others count pixels.
qreal FingerScroll::pixelsPerStep() const
{
    const bool countsLines = qobject_cast<const QPlainTextEdit *>(m_area);
    return countsLines ? m_area->fontMetrics().lineSpacing() : 1;
}
