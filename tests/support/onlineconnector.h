// SPDX-License-Identifier: MIT

#pragma once

#include "connector.h"

#include <QDBusMessage>

/**
 * A connection manager that has been told by a report of the daemon that it is online, so that
 * requests are sent at once although no bus is there.
 *
 * While it lives it is CConnector::instance(). Request objects look for it when they are made.
 */
class OnlineConnector : public CConnector
{
public:
    enum State : quint32 { Disconnected = 0, Connecting = 1, Connected = 2, Disconnecting = 3 };

    explicit OnlineConnector(quint32 state = Connected)
    {
        reportState(state);
    }

    /** As if the daemon had reported @p state, a number of its own. */
    void reportState(quint32 state)
    {
        QDBusMessage report = QDBusMessage::createSignal(QStringLiteral("/com/nokia/icd2"),
                                                         QStringLiteral("com.nokia.icd2"),
                                                         QStringLiteral("state_sig"));
        report.setArguments(
            {QString(), 0u, QByteArray(), QString(), 0u, QByteArray(), QString(), state});
        updateState(report);
    }
};
