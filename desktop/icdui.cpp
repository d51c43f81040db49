// SPDX-License-Identifier: MIT

#include "icdui.h"

#include "icd2daemon.h"

IcdUi::IcdUi(Icd2Daemon &daemon, QObject *parent)
    : QObject(parent)
    , m_daemon(daemon)
{
}

void IcdUi::show_conn_dlg(bool)
{
    m_daemon.connect_req(0);
}
