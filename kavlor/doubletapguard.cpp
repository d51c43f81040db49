// SPDX-License-Identifier: MIT

#include "doubletapguard.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWidget>

namespace {

constexpr int sameSpot = 40; // pixels: how far apart the two presses of a double tap may be

} // namespace

DoubleTapGuard::DoubleTapGuard(QWidget *barArea)
    : QObject(barArea)
    , m_barArea(barArea)
{
    qApp->installEventFilter(this);
}

bool DoubleTapGuard::eventFilter(QObject *watched, QEvent *event)
{
    // The second press comes as a double click or, a few pixels aside, as just another press.
    if (!watched->isWidgetType()
        || (event->type() != QEvent::MouseButtonPress
            && event->type() != QEvent::MouseButtonDblClick))
        return false;
    const auto *press = static_cast<QMouseEvent *>(event);
    const QPoint position = press->globalPosition().toPoint();
    if (press->button() != Qt::LeftButton)
        return false;
    if (press->timestamp() == m_time && position == m_position)
        return false; // the same press, which the toolkit now offers to the parent widget

    auto *target = static_cast<QWidget *>(watched);
    const bool passes = !isSecondHalf(press) || mayPass(target);
    m_position = position;
    m_time = press->timestamp();
    if (passes)
        m_target = target;
    return !passes;
}

bool DoubleTapGuard::isSecondHalf(const QMouseEvent *press) const
{
    const auto interval =
        static_cast<quint64>(QApplication::styleHints()->mouseDoubleClickInterval());
    const QPoint way = press->globalPosition().toPoint() - m_position;
    return m_time != 0 && press->timestamp() - m_time < interval
        && way.manhattanLength() <= sameSpot;
}

bool DoubleTapGuard::mayPass(const QWidget *target) const
{
    return m_target && m_target->isVisible() && m_target->window() == target->window()
        && !m_barArea->isAncestorOf(target);
}
