// SPDX-License-Identifier: MIT

#include "icd2daemon.h"

#include "connectionstate.h"

Icd2Daemon::Icd2Daemon(quint32 state, QObject *parent)
    : QObject(parent)
    , m_state(state)
{
}

void Icd2Daemon::setState(quint32 state)
{
    if (state == m_state)
        return;
    m_state = state;
    reportConnection();
}

uint Icd2Daemon::state_req()
{
    if (m_state == ConnectionState::Disconnected)
        return 0;
    reportConnection();
    return 1;
}

void Icd2Daemon::connect_req(uint)
{
    if (state_req() != 0)
        return;
    emit state_sig(QString(), ConnectionState::SearchStart);
    emit state_sig(QString(), ConnectionState::SearchStop);
    emit state_sig(ConnectionState::Disconnected);
}

void Icd2Daemon::disconnect_req(uint)
{
    state_req();
}

void Icd2Daemon::reportConnection()
{
    const QString network = QStringLiteral("DESKTOP");
    emit state_sig(QString(), 0, QString(), network, 0, network.toUtf8(), QString(), m_state);
}
