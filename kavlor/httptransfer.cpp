// SPDX-License-Identifier: MIT

#include "httptransfer.h"

#include "curllibrary.h"
#include "curlloop.h"
#include "qhttprequestheader.h"
#include "timeconstants.h"

#include <QDeadlineTimer>
#include <QFileDevice>
#include <QNetworkProxy>

#include <cerrno>
#include <cstring>

namespace {

constexpr qsizetype leastPiece = 65536; // bytes, as the library has it
constexpr qsizetype mostPiece = 1048576;

QString sinkErrorText(const QIODevice &sink)
{
    // Of a file little is known but that it took no more.
    if (qobject_cast<const QFileDevice *>(&sink))
        return HttpTransfer::tr("The reply could not be stored. The device may be full.");
    return sink.errorString();
}

// A field as the library wants it; one without a value is written in another way.
QByteArray fieldLine(const QString &name, const QString &value)
{
    if (value.trimmed().isEmpty())
        return name.toLatin1() + ';';
    return name.toLatin1() + ": " + value.toLatin1();
}

// As the system is set up: by its environment, or by the desktop's settings. To ask takes a thread
// and a fifth of the time of a small request: those that follow each other share an answer.
QNetworkProxy systemProxyFor(const QUrl &url)
{
    static QUrl answered;
    static QNetworkProxy proxy;
    static QDeadlineTimer expiry; // a device may change networks
    const QUrl service = url.adjusted(QUrl::RemovePath);
    if (expiry.hasExpired() || service != answered) {
        proxy = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url)).value(0);
        answered = service;
        expiry.setRemainingTime(timeConstants().proxyAnswer);
    }
    return proxy;
}

} // namespace

HttpTransfer::HttpTransfer(const QUrl &url, const QHttpRequestHeader &header,
                           const QByteArray &body, QIODevice *sink, const CurlLibrary &library,
                           CurlLoop *loop, QObject *parent)
    : QObject(parent)
    , m_library(library)
    , m_transfer(library.easyInit())
    , m_loop(loop)
    , m_body(body)
    , m_sink(sink)
    , m_hostName(url.host())
{
    setFields(header);
    setOptions(url, header.method().toLatin1());
    setProxy(url);
    connect(loop, &CurlLoop::finished, this, &HttpTransfer::end);
    loop->add(m_transfer);
}

HttpTransfer::~HttpTransfer()
{
    if (m_loop)
        m_loop->remove(m_transfer);
    m_library.easyCleanup(m_transfer);
    m_library.slistFreeAll(m_fields);
}

// The library adds fields of its own unless they are named without a value. That also keeps it from
// putting a Host that is given before all others, so that they leave as they stand.
void HttpTransfer::setFields(const QHttpRequestHeader &header)
{
    const auto append = [this](const QByteArray &line) {
        m_fields = m_library.slistAppend(m_fields, line.constData());
    };
    if (!header.value(QStringLiteral("Host")).isEmpty())
        append("Host:");
    for (const char *own : {"Accept", "Content-Type", "Expect", "Proxy-Connection"})
        append(QByteArray(own) + ':');
    for (const auto &[name, value] : header.fields())
        append(fieldLine(name, value));
}

void HttpTransfer::setOptions(const QUrl &url, const QByteArray &method)
{
    const auto set = [this](CURLoption option, auto value) {
        m_library.easySetopt(m_transfer, option, value);
    };
    set(CURLOPT_URL, url.toEncoded().constData());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_HTTPHEADER, m_fields);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeConstants().reachWait));
    constexpr long second = 1000; // ms
    set(CURLOPT_DNS_CACHE_TIMEOUT, timeConstants().nameAnswer / second);

    // Where a connection that was kept turns out to be closed, the request would be sent again.
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
    // Not to wait, on the way out, for a name that is still being looked up.
    set(CURLOPT_QUICK_EXIT, 1L);

    set(CURLOPT_POST, 1L);
    set(CURLOPT_CUSTOMREQUEST, method.constData());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_body.size()));
    // A clip goes out in few pieces, each of which comes by way of the event loop.
    set(CURLOPT_UPLOAD_BUFFERSIZE,
        static_cast<long>(qBound<qsizetype>(leastPiece, m_body.size(), mostPiece)));
    set(CURLOPT_READFUNCTION, &HttpTransfer::readBody);
    set(CURLOPT_READDATA, this);
    set(CURLOPT_SEEKFUNCTION, &HttpTransfer::refuseToRewind);
    set(CURLOPT_HEADERFUNCTION, &HttpTransfer::takeHeaderLine);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &HttpTransfer::takeBody);
    set(CURLOPT_WRITEDATA, this);
}

void HttpTransfer::setProxy(const QUrl &url)
{
    const QNetworkProxy proxy = systemProxyFor(url);
    QUrl address;
    address.setHost(proxy.hostName());
    address.setPort(proxy.port());
    if (proxy.type() == QNetworkProxy::HttpProxy)
        address.setScheme(QStringLiteral("http"));
    else if (proxy.type() == QNetworkProxy::Socks5Proxy)
        address.setScheme(QStringLiteral("socks5h"));
    else
        address.clear();
    m_library.easySetopt(m_transfer, CURLOPT_PROXY, address.toEncoded().constData());
    if (!proxy.user().isEmpty()) {
        m_library.easySetopt(m_transfer, CURLOPT_PROXYUSERNAME, proxy.user().toUtf8().constData());
        m_library.easySetopt(m_transfer, CURLOPT_PROXYPASSWORD,
                             proxy.password().toUtf8().constData());
    }
    // What the proxy says of a tunnel that it makes is not the reply.
    m_library.easySetopt(m_transfer, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

void HttpTransfer::dropSink()
{
    m_sink = nullptr;
}

QString HttpTransfer::errorText() const
{
    return m_errorText;
}

size_t HttpTransfer::readBody(char *buffer, size_t, size_t size, void *self)
{
    auto *transfer = static_cast<HttpTransfer *>(self);
    const qsizetype count =
        qMin(static_cast<qsizetype>(size), transfer->m_body.size() - transfer->m_bodySent);
    const auto bytes = static_cast<size_t>(count);
    memcpy(buffer, transfer->m_body.constData() + transfer->m_bodySent, bytes);
    transfer->m_bodySent += count;
    return bytes;
}

int HttpTransfer::refuseToRewind(void *, curl_off_t, int)
{
    return CURL_SEEKFUNC_FAIL;
}

size_t HttpTransfer::takeHeaderLine(char *bytes, size_t, size_t size, void *self)
{
    const QByteArray line(bytes, static_cast<qsizetype>(size));
    static_cast<HttpTransfer *>(self)->readHeaderLine(line);
    return size;
}

// The first of the body waits until its header has been reported, which may be done from the event
// loop only.
size_t HttpTransfer::takeBody(char *bytes, size_t, size_t size, void *self)
{
    auto *transfer = static_cast<HttpTransfer *>(self);
    // The library sees the end of a header in lines that are none for us, as in one that begins
    // with a carriage return, and behind a change of protocols that nobody asked for.
    if (!transfer->m_headerComplete)
        transfer->completeHeader();
    if (!transfer->m_headerReported)
        return CURL_WRITEFUNC_PAUSE;
    const auto count = static_cast<qint64>(size);
    if (transfer->m_sink && transfer->m_sink->write(bytes, count) != count) {
        transfer->m_errorText = sinkErrorText(*transfer->m_sink);
        return 0;
    }
    return size;
}

// One line with its end: of the header, of one that came before it (100), or behind the body.
void HttpTransfer::readHeaderLine(const QByteArray &line)
{
    if (m_headerComplete)
        return;
    const QByteArray text = line.trimmed();
    if (line.startsWith("HTTP/")) {
        m_headerFields.clear();
    } else if (text.isEmpty()) {
        endHeader();
    } else if (!m_headerFields.isEmpty() && (line.startsWith(' ') || line.startsWith('\t'))) {
        m_headerFields.last().second += ' ' + text;
    } else if (const qsizetype colon = text.indexOf(':'); colon > 0) {
        m_headerFields.append({text.left(colon), text.mid(colon + 1).trimmed()});
    }
}

void HttpTransfer::endHeader()
{
    long status = 0;
    m_library.easyGetinfo(m_transfer, CURLINFO_RESPONSE_CODE, &status);
    if (status < 100 || status >= 200)
        completeHeader();
}

void HttpTransfer::completeHeader()
{
    m_headerComplete = true;
    QMetaObject::invokeMethod(this, &HttpTransfer::reportHeader, Qt::QueuedConnection);
}

void HttpTransfer::reportHeader()
{
    long status = 0;
    m_library.easyGetinfo(m_transfer, CURLINFO_RESPONSE_CODE, &status);
    QHttpResponseHeader header(static_cast<int>(status));
    for (const auto &[rawName, rawValue] : std::as_const(m_headerFields)) {
        const QString name = QString::fromLatin1(rawName);
        const QString before = header.value(name);
        const QString value = QString::fromLatin1(rawValue);
        header.setValue(name, before.isEmpty() ? value : before + QLatin1String(", ") + value);
    }
    const QPointer<HttpTransfer> self(this);
    emit headerArrived(header);
    if (!self)
        return;
    m_headerReported = true;
    if (m_loop)
        m_loop->resume(m_transfer);
}

void HttpTransfer::end(CURL *transfer, CURLcode result)
{
    if (transfer != m_transfer)
        return;
    if (m_errorText.isEmpty())
        m_errorText = textOf(result);
    auto *file = qobject_cast<QFileDevice *>(m_sink);
    if (m_errorText.isEmpty() && file && !file->flush())
        m_errorText = sinkErrorText(*file);
    // Behind the header, and so that whoever hears of it may delete everything.
    QMetaObject::invokeMethod(this, &HttpTransfer::finished, Qt::QueuedConnection);
}

// For a member; the library's own words are for developers.
QString HttpTransfer::textOf(CURLcode result) const
{
    long systemError = 0;
    m_library.easyGetinfo(m_transfer, CURLINFO_OS_ERRNO, &systemError);
    switch (result) {
    case CURLE_OK:
        // A connection that ends within the header passes for a reply without a body.
        return m_headerComplete ? QString() : tr("Connection closed");
    case CURLE_COULDNT_RESOLVE_HOST:
        return tr("Host %1 not found").arg(m_hostName);
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
        return systemError == ECONNREFUSED ? tr("Connection refused")
                                           : tr("The service could not be reached.");
    case CURLE_OPERATION_TIMEDOUT:
        return tr("The service could not be reached in time.");
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
        return tr("Connection closed");
    case CURLE_RECV_ERROR: // also of chunks that are none
        return systemError != 0 ? tr("Connection closed")
                                : tr("The service sent a reply that cannot be understood.");
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        return tr("The connection to the service is not secure.");
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_FILESIZE_EXCEEDED:
        return tr("The service sent a reply that cannot be understood.");
    default:
        return tr("The connection to the service was lost.");
    }
}
