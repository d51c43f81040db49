// SPDX-License-Identifier: MIT

#include "connectionwait.h"

#include "connector.h"
#include "timeconstants.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <QVariant>

#include <utility>

namespace {

const QObject *outermost(const QObject *object)
{
    while (object->parent())
        object = object->parent();
    return object;
}

// Asked by name: what waits need not know of widgets.
bool isOpen(const QObject *window)
{
    return window && window->isWidgetType() && window->property("visible").toBool();
}

} // namespace

ConnectionWait::ConnectionWait(const QObject *waiting, CConnector *connector,
                               std::function<bool()> isOver)
    : m_waiting(waiting)
    , m_connector(connector)
    , m_isOver(std::move(isOver))
    , m_window(outermost(waiting))
    , m_hadWindow(isOpen(m_window))
    , m_loopLevel(QThread::currentThread()->loopLevel())
{
    QCoreApplication::instance()->installEventFilter(this);
}

ConnectionWait::~ConnectionWait()
{
    QCoreApplication::instance()->removeEventFilter(this);
    for (const auto &[window, event] : std::as_const(m_held)) {
        if (window)
            QCoreApplication::postEvent(window, event);
        else
            delete event;
    }
}

bool ConnectionWait::run(bool askAtOnce)
{
    // At the program's start the daemon's reports may still be on their way.
    QCoreApplication::processEvents();
    if (!askAtOnce)
        waitForState();
    if (isWaiting() && m_connector)
        m_connector->smartConnect();
    while (isWaiting())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return !isPointless();
}

// Nobody waits any more.
bool ConnectionWait::isPointless() const
{
    return !m_waiting || m_quitting || (m_hadWindow && !isOpen(m_window));
}

bool ConnectionWait::isWaiting() const
{
    return !isPointless() && !m_isOver();
}

bool ConnectionWait::isStateComing() const
{
    return m_connector && !m_connector->isStateKnown();
}

void ConnectionWait::waitForState()
{
    QTimer overdue; // a timer and no deadline: it also wakes the event loop
    overdue.setSingleShot(true);
    overdue.setTimerType(Qt::PreciseTimer);
    overdue.start(timeConstants().stateAnswerWait);
    while (isWaiting() && isStateComing() && overdue.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

bool ConnectionWait::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Quit)
        m_quitting = true;
    if (!watched->isWindowType() || !event->isInputEvent())
        return false;
    if (QThread::currentThread()->loopLevel() > m_loopLevel)
        return false; // a dialog runs on top of the wait and wants to be answered
    // A ShortcutOverride asks whether the key that follows it is a shortcut: it is not kept.
    if (event->type() != QEvent::ShortcutOverride)
        m_held.append({watched, event->clone()});
    event->accept();
    return true;
}
