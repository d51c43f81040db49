// SPDX-License-Identifier: MIT

#pragma once

#include "qhttpresponseheader.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <curl/curl.h>

struct CurlLibrary;
class CurlLoop;
class QHttpRequestHeader;
class QIODevice;

/**
 * One request of a QHttp on a connection of its own, and the reply to it.
 *
 * It is sent once, whatever the server does: the connection is new, is not kept, and the body is
 * not read a second time. Deleting it breaks it off.
 */
class HttpTransfer : public QObject
{
    Q_OBJECT

public:
    /** @p header says all that is sent, its own length included. @p sink is not owned. */
    HttpTransfer(const QUrl &url, const QHttpRequestHeader &header, const QByteArray &body,
                 QIODevice *sink, const CurlLibrary &library, CurlLoop *loop, QObject *parent);
    ~HttpTransfer() override;

    /** The rest of the reply is taken and dropped. */
    void dropSink();
    /** What went wrong, in words for the member; empty when it ended well. */
    QString errorText() const;

signals:
    /** The header of the reply, before any of its body. */
    void headerArrived(const QHttpResponseHeader &header);
    /** The body is in the sink, as far as errorText() says that it came. */
    void finished();

private:
    static size_t readBody(char *buffer, size_t, size_t size, void *self);
    static int refuseToRewind(void *, curl_off_t, int);
    static size_t takeHeaderLine(char *bytes, size_t, size_t size, void *self);
    static size_t takeBody(char *bytes, size_t, size_t size, void *self);

    void setFields(const QHttpRequestHeader &header);
    void setOptions(const QUrl &url, const QByteArray &method);
    void setProxy(const QUrl &url);
    void readHeaderLine(const QByteArray &line);
    void endHeader();
    void completeHeader();
    void reportHeader();
    void end(CURL *transfer, CURLcode result);
    QString textOf(CURLcode result) const;

    const CurlLibrary &m_library;
    CURL *const m_transfer;
    const QPointer<CurlLoop> m_loop;
    curl_slist *m_fields = nullptr;
    const QByteArray m_body;
    qsizetype m_bodySent = 0;
    QPointer<QIODevice> m_sink;
    const QString m_hostName;
    QList<QPair<QByteArray, QByteArray>> m_headerFields; // of the reply's header so far
    bool m_headerComplete = false;
    bool m_headerReported = false;
    QString m_errorText;
};
