// SPDX-License-Identifier: MIT

#include "terminationsignal.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

int signalDescriptor()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

} // namespace

TerminationSignal::TerminationSignal(QObject *parent)
    : QObject(parent)
    , m_notifier(signalDescriptor(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info;
        if (read(static_cast<int>(m_notifier.socket()), &info, sizeof info) == sizeof info)
            emit received();
    });
}

TerminationSignal::~TerminationSignal()
{
    m_notifier.setEnabled(false);
    close(static_cast<int>(m_notifier.socket()));
}
