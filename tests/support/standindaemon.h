// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QList>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QVariant>

/**
 * Stands in for the connectivity daemon and its chooser on a private bus, with their signatures.
 *
 * It has a connection and a thread of its own, so that it answers whatever the thread that tests it
 * is doing. Every call it gets is kept as it came; its functions may be called from the
 * test's thread at any time.
 */
class StandInDaemon : private QDBusVirtualObject
{
public:
    struct Call
    {
        QString member;
        QString signature;
        QList<QVariant> arguments;
    };

    explicit StandInDaemon(const QString &address);
    ~StandInDaemon() override;

    /** Takes both names; false when one is taken. */
    bool enter();
    /** Gives both names up. */
    void leave();

    /** What state_req reports, without reporting it now. State 0 is reported by no signal. */
    void setState(quint32 state);
    /** As setState(), and reports it, state 0 too. */
    void reportState(quint32 state);
    /** Sends a state_sig of any form. */
    void report(const QList<QVariant> &arguments);
    /** A connection that is asked for comes up with this state; until this is called it never does.
     */
    void setStateOnConnect(quint32 state);
    /** The chooser answers so many times with an error. */
    void failChooser(int times);
    /** Calls are taken, but never answered. */
    void setSilent(bool silent);
    /** Calls of @p member are answered by release() only. */
    void hold(const QString &member);
    /** Answers what is held, and holds nothing any more. */
    void release();
    /** state_req is answered first and reports afterwards. */
    void setAnswerBeforeReports(bool answerFirst);

    /** The calls since the start or the last time this was called. */
    QList<Call> takeCalls();
    /** As takeCalls(), only the names, and without taking them. */
    QStringList members() const;

    /** The eight arguments of a report of @p state. */
    static QList<QVariant> stateArguments(quint32 state);

private:
    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    void respond(const QDBusMessage &message);
    QDBusMessage answer(const QDBusMessage &message);

    QString m_connectionName;
    QDBusConnection m_bus;
    QThread m_thread;

    mutable QMutex m_mutex;
    QList<Call> m_calls;
    quint32 m_state = 0;
    quint32 m_stateOnConnect = 0;
    int m_chooserFailures = 0;
    bool m_silent = false;
    bool m_answerFirst = false;
    QString m_heldMember;
    QList<QDBusMessage> m_held;
};
