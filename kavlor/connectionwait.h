// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>

#include <functional>

class CConnector;

/**
 * The wait for a network connection, in an event loop on the stack of the request that waits.
 *
 * It keeps the member's clicks and keys out of the windows meanwhile. The event loop could do so by
 * itself, but would keep out with them that a window is closed. What was clicked and typed is
 * handed on when this object goes; a dialog that appears meanwhile takes its own.
 *
 * It may outlive the request.
 */
class ConnectionWait : public QObject
{
    Q_OBJECT

public:
    /**
     * @p waiting is what waits; its window is the outermost of its parents, if that is one.
     * @p isOver tells when the wait has come to its end; it is not asked once @p waiting is gone.
     */
    ConnectionWait(const QObject *waiting, CConnector *connector, std::function<bool()> isOver);
    ~ConnectionWait() override;

    /**
     * Takes what the connectivity daemon has reported so far, asks for a connection if there is
     * none by then, and returns at the wait's end: true when there is somebody left who waited for
     * it, false when that is gone, its window was closed or the program is about to end.
     * A daemon that has not told its state yet is given some time to, unless @p askAtOnce is set.
     */
    bool run(bool askAtOnce);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isPointless() const;
    bool isWaiting() const;
    bool isStateComing() const;
    void waitForState();

    QPointer<const QObject> m_waiting;
    QPointer<CConnector> m_connector; // may be missing
    const std::function<bool()> m_isOver;
    QPointer<const QObject> m_window;
    const bool m_hadWindow;
    const int m_loopLevel; // of the event loop that the wait runs in
    bool m_quitting = false;
    QList<QPair<QPointer<QObject>, QEvent *>> m_held; // owned
};
