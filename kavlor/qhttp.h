// SPDX-License-Identifier: MIT

#pragma once

#include "qhttpresponseheader.h"

#include <QObject>
#include <QString>

class CurlLoop;
class HttpTransfer;
class QAuthenticator;
class QByteArray;
class QHttpRequestHeader;
class QIODevice;

/**
 * A plain HTTP/1.1 client for one request at a time.
 *
 * Its owner sets the host once and then sends requests. It follows no redirect, keeps no cookies,
 * caches nothing and hands the body on as it came, without decompressing it. The status code
 * never counts as an error. Fields leave in the order in which they were set and in their spelling.
 * Whatever the server does, a request goes out once: where a connection breaks, the request fails
 * instead of being repeated.
 *
 * A request that is made while an earlier one is under way takes its place: the earlier one runs
 * to its end, but nothing more is heard of it.
 */
class QHttp : public QObject
{
    Q_OBJECT

public:
    enum ConnectionMode { ConnectionModeHttp, ConnectionModeHttps };

    explicit QHttp(QObject *parent = nullptr);
    ~QHttp() override;

    /** @p port 0 is the usual one of the mode. */
    void setHost(const QString &hostName, ConnectionMode mode = ConnectionModeHttp,
                 quint16 port = 0);
    /** Every request from now on names this user; an empty name names nobody. */
    void setUser(const QString &userName, const QString &password = QString());

    /**
     * Sends @p body under @p header, whose content length it sets, and writes the reply's body to
     * @p sink as it arrives. The sink is not owned; when it is deleted the rest of the body is
     * dropped. Returns the request's id, or 0 when no host is set; then nothing was sent. Neither
     * is a header that is not valid; its request ends with an error.
     */
    int request(const QHttpRequestHeader &header, const QByteArray &body, QIODevice *sink);

    /** What went wrong when done() last reported an error, in words for the member. */
    QString errorString() const;

public slots:
    /** Breaks off the request under way: done(true) follows from the event loop. */
    void abort();
    /** Closes the connection once the request under way has come to its own end. */
    void close();

signals:
    /** The reply's header, once per reply and before any of its body. */
    void responseHeaderReceived(const QHttpResponseHeader &header);
    /** The server wants to know who asks. Filling @p authenticator in changes nothing. */
    void authenticationRequired(const QString &hostName, quint16 port,
                                QAuthenticator *authenticator);
    /**
     * The request has ended and its body is in the sink. @p error tells that it was aborted or
     * broke off; errorString() says why. The receiver may delete this object.
     */
    void done(bool error);

private:
    void leaveCurrent();
    void send(const QHttpRequestHeader &header, const QByteArray &body, QIODevice *sink);
    void reportHeader(const QHttpResponseHeader &header);
    quint16 usedPort() const;
    void finishLater(const QString &errorText);
    void finish(int id, const QString &errorText);

    QString m_hostName;
    ConnectionMode m_mode = ConnectionModeHttp;
    quint16 m_port = 0;
    QString m_credentials;
    CurlLoop *m_loop = nullptr; // made for the first request
    int m_lastId = 0;
    int m_currentId = 0;                // 0 = nothing under way
    HttpTransfer *m_transfer = nullptr; // of the current request
    QString m_errorText;
};
