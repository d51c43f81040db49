// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

/**
 * The connectivity daemon's interface com.nokia.icd2, with its signatures.
 *
 * It reports the state it was given last. It neither brings a connection up nor takes one down: on
 * a desktop that is the desktop's affair. Any state but 0 is the state of one connection.
 */
class Icd2Daemon : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nokia.icd2")

public:
    explicit Icd2Daemon(quint32 state, QObject *parent = nullptr);

    /** Takes over a state, and reports it when it is another than before. */
    void setState(quint32 state);

public slots: // Named as the methods are called on the bus.
    /** Answers with the number of connections and reports each one's state; of none, nothing. */
    uint state_req();
    /** Reports the connection there is, or else a search that finds none. */
    void connect_req(uint flags);
    /** Reports the connection as it stays. */
    void disconnect_req(uint flags);

signals:
    /** A connection is in that state. */
    void state_sig(const QString &serviceType, uint serviceAttributes, const QString &serviceId,
                   const QString &networkType, uint networkAttributes, const QByteArray &networkId,
                   const QString &error, uint state);
    /** The search for networks of a type begins (8) or ends (9). */
    void state_sig(const QString &networkType, uint state);
    /** That state, and no connection that it is the state of. */
    void state_sig(uint state);

private:
    void reportConnection();

    quint32 m_state;
};
