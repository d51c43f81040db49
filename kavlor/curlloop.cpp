// SPDX-License-Identifier: MIT

#include "curlloop.h"

#include <QSocketNotifier>

namespace {

CURLM *makeMulti()
{
    // Once in the program, and never undone.
    [[maybe_unused]] static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    return curl_multi_init();
}

} // namespace

CurlLoop::CurlLoop(QObject *parent)
    : QObject(parent)
    , m_multi(makeMulti())
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlLoop::watchSocket);
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlLoop::setTimer);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
}

CurlLoop::~CurlLoop()
{
    curl_multi_cleanup(m_multi);
}

void CurlLoop::add(CURL *transfer)
{
    curl_multi_add_handle(m_multi, transfer);
}

void CurlLoop::remove(CURL *transfer)
{
    curl_multi_remove_handle(m_multi, transfer);
}

void CurlLoop::resume(CURL *transfer)
{
    curl_easy_pause(transfer, CURLPAUSE_CONT);
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
    curl_multi_socket_action(m_multi, socket, ready, &running);
    reportFinished();
}

void CurlLoop::reportFinished()
{
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg == CURLMSG_DONE)
            emit finished(message->easy_handle, message->data.result);
    }
}
