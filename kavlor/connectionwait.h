#pragma once

#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>

/**
 * Keeps the member's clicks and keys out of the windows while a connection is waited for, and tells
 * when the wait has become pointless.
 *
 * The event loop could keep user input out by itself, but would keep out with it that a window is
 * closed. What was clicked and typed is handed on when this object goes; a dialog that appears
 * meanwhile takes its own. It lives on the stack of
 * the one who waits, and may outlive it.
 */
class ConnectionWait : public QObject
{
    Q_OBJECT

public:
    /** @p waiting is what waits; its window is the outermost of its parents, if that is one. */
    explicit ConnectionWait(const QObject *waiting);
    ~ConnectionWait() override;

    /** The window was closed meanwhile, or the program is about to end: nobody waits any more. */
    bool isPointless() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<const QObject> m_window;
    const bool m_hadWindow;
    const int m_loopLevel; // of the event loop that the wait runs in
    bool m_quitting = false;
    QList<QPair<QPointer<QObject>, QEvent *>> m_held; // owned
};
