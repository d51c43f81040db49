// SPDX-License-Identifier: MIT

#include "curlloop.h"

#include "curllibrary.h"

#include <QSocketNotifier>

CurlLoop::CurlLoop(const CurlLibrary &library, QObject *parent)
    : QObject(parent)
    , m_library(library)
    , m_multi(library.multiInit())
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    m_library.multiSetopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlLoop::watchSocket);
    m_library.multiSetopt(m_multi, CURLMOPT_SOCKETDATA, this);
    m_library.multiSetopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlLoop::setTimer);
    m_library.multiSetopt(m_multi, CURLMOPT_TIMERDATA, this);
}

CurlLoop::~CurlLoop()
{
    m_library.multiCleanup(m_multi);
}

void CurlLoop::add(CURL *transfer)
{
    m_library.multiAddHandle(m_multi, transfer);
}

void CurlLoop::remove(CURL *transfer)
{
    m_library.multiRemoveHandle(m_multi, transfer);
}

void CurlLoop::resume(CURL *transfer)
{
    m_library.easyPause(transfer, CURLPAUSE_CONT);
}

int CurlLoop::watchSocket(CURL *, curl_socket_t socket, int what, void *self, void *)
{
    static_cast<CurlLoop *>(self)->watch(socket, what);
    return 0;
}

int CurlLoop::setTimer(CURLM *, long milliseconds, void *self)
{
    QTimer &timer = static_cast<CurlLoop *>(self)->m_timer;
    if (milliseconds < 0)
        timer.stop();
    else
        timer.start(static_cast<int>(milliseconds));
    return 0;
}

QSocketNotifier *CurlLoop::makeNotifier(curl_socket_t socket, bool forInput)
{
    auto *notifier = new QSocketNotifier(
        socket, forInput ? QSocketNotifier::Read : QSocketNotifier::Write, this);
    notifier->setEnabled(false);
    connect(notifier, &QSocketNotifier::activated, this, [this, socket, forInput] {
        act(socket, forInput ? CURL_CSELECT_IN : CURL_CSELECT_OUT);
    });
    return notifier;
}

void CurlLoop::watch(curl_socket_t socket, int what)
{
    if (what == CURL_POLL_REMOVE) {
        forget(socket);
        return;
    }
    Watch &watch = m_watches[socket];
    if (!watch.forInput) {
        watch.forInput = makeNotifier(socket, true);
        watch.forOutput = makeNotifier(socket, false);
    }
    watch.forInput->setEnabled((what & CURL_POLL_IN) != 0);
    watch.forOutput->setEnabled((what & CURL_POLL_OUT) != 0);
}

// The library closes the socket next, and another may get its number. One of the notifiers may be
// the one that this comes from.
void CurlLoop::forget(curl_socket_t socket)
{
    const Watch watch = m_watches.take(socket);
    for (QSocketNotifier *notifier : {watch.forInput, watch.forOutput}) {
        if (!notifier)
            continue;
        notifier->setEnabled(false);
        notifier->disconnect(this);
        notifier->deleteLater();
    }
}

void CurlLoop::act(curl_socket_t socket, int ready)
{
    int running = 0;
    m_library.multiSocketAction(m_multi, socket, ready, &running);
    reportFinished();
}

void CurlLoop::reportFinished()
{
    int left = 0;
    while (const CURLMsg *message = m_library.multiInfoRead(m_multi, &left)) {
        if (message->msg == CURLMSG_DONE)
            emit finished(message->easy_handle, message->data.result);
    }
}
