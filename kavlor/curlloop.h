// SPDX-License-Identifier: MIT

#pragma once

#include <QHash>
#include <QObject>
#include <QTimer>

#include <curl/curl.h>

struct CurlLibrary;
class QSocketNotifier;

/**
 * Runs transfers of the HTTP library from the event loop: nothing blocks, and nothing happens
 * outside it.
 *
 * A transfer under way must be removed before its handle or this object goes. None of the three may
 * happen from within a callback of the library.
 */
class CurlLoop : public QObject
{
    Q_OBJECT

public:
    explicit CurlLoop(const CurlLibrary &library, QObject *parent = nullptr);
    ~CurlLoop() override;

    /** Starts @p transfer; it is not owned. */
    void add(CURL *transfer);
    void remove(CURL *transfer);
    /** Makes up for a pause that a callback of @p transfer asked for. */
    void resume(CURL *transfer);

signals:
    /** A transfer has come to its end, and still has to be removed. */
    void finished(CURL *transfer, CURLcode result);

private:
    // What the library waits for on one socket.
    struct Watch
    {
        QSocketNotifier *forInput = nullptr;
        QSocketNotifier *forOutput = nullptr;
    };

    static int watchSocket(CURL *transfer, curl_socket_t socket, int what, void *self, void *);
    static int setTimer(CURLM *multi, long milliseconds, void *self);
    QSocketNotifier *makeNotifier(curl_socket_t socket, bool forInput);
    void watch(curl_socket_t socket, int what);
    void forget(curl_socket_t socket);
    void act(curl_socket_t socket, int ready);
    void reportFinished();

    const CurlLibrary &m_library;
    CURLM *const m_multi;
    QTimer m_timer;
    QHash<curl_socket_t, Watch> m_watches;
};
