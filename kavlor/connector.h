// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <functional>

class QDBusAbstractInterface;
class QDBusMessage;
class QDBusPendingCall;

/**
 * Knows whether the device is online, and brings a connection up on demand.
 *
 * It follows the connectivity daemon on the system bus: the state is what the daemon reported last,
 * 0 until it has reported one, and is never set from here. connect(), selectConnection() and
 * smartConnect() only ask for a connection and do not wait for it; whoever waits watches
 * connectionStateChanged(). Calls are sent and not waited for, and a missing bus or daemon leaves
 * the state 0 without any further sign.
 *
 * There is one object in the process. main() makes it before the application object and owns it;
 * everybody else finds it through instance().
 */
class CConnector : public QObject
{
    Q_OBJECT

public:
    explicit CConnector(QObject *parent = nullptr);
    ~CConnector() override;

    /** The object of this process; null while there is none. */
    static CConnector *instance();

    /** States 2, 3 and 4: one that is being torn down still counts as connected. */
    bool isConnected() const;
    /**
     * Whether the daemon has answered the first question for its state and all that it announced
     * has been reported. A daemon or a bus that is not there counts as having answered.
     */
    bool isStateKnown() const;

    /** Asks the daemon for its state, which arrives as a report. */
    void requestConnectionState();
    /**
     * Shows the connection chooser, with three attempts at most when it answers with errors. One
     * that has not answered may well be open and is not asked again.
     */
    void selectConnection();
    /** Lets the daemon choose and bring up a connection. */
    void connect();
    /** Connects as the user configured: by the daemon's choice, or else through the chooser. */
    void smartConnect();
    void disconnect();

signals:
    /**
     * The daemon reported another state than before, or its first one, which may be 0 again.
     * Carries the arguments of the report as they came, of whatever number and kind; isConnected()
     * has the new state already.
     */
    // A signal's arguments are copied once, when it is emitted.
    // cppcheck-suppress passedByValue
    void connectionStateChanged(const QList<QVariant> arguments);

public slots:
    /** Takes a report of the daemon; one of seven arguments stands for state 0. */
    void updateState(const QDBusMessage &message);

private:
    using Answered = std::function<void(const QDBusMessage &reply)>;

    void whenAnswered(const QDBusPendingCall &call, const Answered &answered);
    void openChooser(int attempts);

    QPointer<QDBusAbstractInterface> m_daemon;
    QPointer<QDBusAbstractInterface> m_dialog;
    quint32 m_state = 0;
    bool m_firstReport = true;
    bool m_stateAnswered = false;
    quint32 m_announcedReports = 0; // by the answers so far
    quint32 m_stateReports = 0;
};
