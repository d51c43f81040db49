#include "qhttp.h"

#include "qhttprequestheader.h"

#include <QAuthenticator>
#include <QFileDevice>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace {

constexpr qint64 readBufferSize = 64LL * 1024;

// A request's body that can be read once only. The network stack quietly sends a request again
// when its connection breaks early, which for a POST could do twice what the member asked for
// once; it gives up instead when the body cannot be taken back to its start.
class OnceOnlyBody : public QIODevice
{
public:
    OnceOnlyBody(const QByteArray &bytes, QObject *parent)
        : QIODevice(parent)
        , m_bytes(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override
    {
        return true;
    }

    bool reset() override
    {
        return false;
    }

    qint64 bytesAvailable() const override
    {
        return m_bytes.size() - m_position;
    }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const qint64 size = qMin(maxSize, bytesAvailable());
        if (size == 0)
            return -1;
        memcpy(data, m_bytes.constData() + m_position, static_cast<size_t>(size));
        m_position += size;
        return size;
    }

    qint64 writeData(const char *, qint64) override
    {
        return -1;
    }

private:
    const QByteArray m_bytes;
    qint64 m_position = 0;
};

// The network stack also counts a status code as an error.
bool isTransportError(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    switch (reply.error()) {
    case QNetworkReply::NoError:
        return false;
    case QNetworkReply::ContentReSendError:
        // At the end of such a redirect it makes ready to send the body again, also when it has
        // been told not to follow.
        return status != 307 && status != 308;
    case QNetworkReply::ProtocolFailure:
        return true;
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return status != 407;
    default:
        return status < 400 || reply.error() < QNetworkReply::ContentAccessDenied;
    }
}

// What went wrong, for a member. The stack's own words are for developers, or "Unknown error".
QString errorText(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError:
        return QHttp::tr("Connection refused");
    case QNetworkReply::HostNotFoundError:
        return QHttp::tr("Host %1 not found").arg(reply.url().host());
    case QNetworkReply::TimeoutError:
        return QHttp::tr("The service could not be reached in time.");
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::UnknownNetworkError: // a reset
    case QNetworkReply::ContentReSendError:  // it cannot send again; the first time went wrong
        return QHttp::tr("Connection closed");
    case QNetworkReply::SslHandshakeFailedError:
        return QHttp::tr("The connection to the service is not secure.");
    case QNetworkReply::ProtocolFailure:
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolInvalidOperationError:
        return QHttp::tr("The service sent a reply that cannot be understood.");
    default:
        return QHttp::tr("The connection to the service was lost.");
    }
}

QString sinkErrorText(const QIODevice &sink)
{
    // Of a file little is known but that it took no more.
    if (qobject_cast<const QFileDevice *>(&sink))
        return QHttp::tr("The reply could not be stored. The device may be full.");
    return sink.errorString();
}

void setAttributes(QNetworkRequest *request)
{
    request->setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                          QNetworkRequest::ManualRedirectPolicy);
    request->setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request->setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request->setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request->setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                          QNetworkRequest::AlwaysNetwork);
    request->setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request->setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // The body stays unbuffered: a buffer could be sent again.
    request->setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
}

} // namespace

QHttp::QHttp(QObject *parent)
    : QObject(parent)
{
}

QHttp::~QHttp() = default;

void QHttp::setHost(const QString &hostName, ConnectionMode mode, quint16 port)
{
    m_hostName = hostName;
    m_mode = mode;
    m_port = port;
}

void QHttp::setUser(const QString &userName, const QString &password)
{
    // Sent with the request itself, since its body could not follow a second time.
    m_credentials.clear();
    if (!userName.isEmpty()) {
        const QString credentials = userName + QLatin1Char(':') + password;
        m_credentials = "Basic " + credentials.toUtf8().toBase64();
    }
}

int QHttp::request(const QHttpRequestHeader &header, const QByteArray &body, QIODevice *sink)
{
    if (m_hostName.isEmpty())
        return 0;
    leaveCurrent();

    m_currentId = ++m_lastId;
    m_sink = sink;
    m_headerRead = false;
    m_stopReason.clear();
    QHttpRequestHeader complete = header;
    complete.setContentLength(body.size());
    if (complete.isValid()) {
        send(complete, body);
    } else {
        m_stopReason = tr("The request holds characters that cannot be sent.");
        finishLater();
    }
    return m_currentId;
}

void QHttp::send(const QHttpRequestHeader &header, const QByteArray &body)
{
    QUrl url;
    url.setScheme(m_mode == ConnectionModeHttps ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(m_hostName);
    url.setPort(m_port == 0 ? -1 : m_port);
    url.setPath(header.path(), QUrl::TolerantMode);

    QNetworkRequest request(url);
    setAttributes(&request);
    for (const auto &[name, value] : header.fields())
        request.setRawHeader(name.toLatin1(), value.toLatin1());
    if (!m_credentials.isEmpty())
        request.setRawHeader("Authorization", m_credentials);

    // A manager of its own for each request: no kept connection, which the server may have closed
    // meanwhile, is used again, and an earlier request can run on undisturbed.
    auto *manager = new QNetworkAccessManager(this);
    auto *device = new OnceOnlyBody(body, manager);
    m_reply = manager->sendCustomRequest(request, header.method().toLatin1(), device);

    connect(m_reply, &QNetworkReply::metaDataChanged, this, &QHttp::readHeader);
    connect(m_reply, &QNetworkReply::readyRead, this, &QHttp::readBody);
    // Queued, so that whoever hears of the end may delete everything.
    connect(
        m_reply, &QNetworkReply::finished, this, [this, id = m_currentId] { finish(id); },
        Qt::QueuedConnection);
    connect(manager, &QNetworkAccessManager::authenticationRequired, this,
            [this](const QNetworkReply *reply, const QAuthenticator *asked) {
                // A copy, because an answer in the original would send the body again.
                QAuthenticator authenticator(*asked);
                const QUrl from = reply->url();
                emit authenticationRequired(from.host(), static_cast<quint16>(from.port(80)),
                                            &authenticator);
            });
    // Without a limit a large reply is held in memory whole. The reply takes one only once it
    // has been started, which it is from the event loop.
    QMetaObject::invokeMethod(
        m_reply, [reply = m_reply] { reply->setReadBufferSize(readBufferSize); },
        Qt::QueuedConnection);
}

QString QHttp::errorString() const
{
    return m_errorText;
}

void QHttp::abort()
{
    stop(tr("Request aborted"));
}

void QHttp::close()
{
    // Each connection belongs to one request and is closed with it, so that there is nothing to
    // close before its end.
}

// Lets the current request run to its end without being heard.
void QHttp::leaveCurrent()
{
    m_currentId = 0;
    if (!m_reply)
        return;
    QNetworkReply *reply = m_reply;
    QNetworkAccessManager *manager = reply->manager();
    m_reply = nullptr;
    reply->disconnect(this);
    manager->disconnect(this);
    if (reply->isFinished() || !m_stopReason.isEmpty()) {
        manager->deleteLater();
        return;
    }
    connect(reply, &QNetworkReply::readyRead, reply,
            [reply] { reply->skip(reply->bytesAvailable()); });
    connect(reply, &QNetworkReply::finished, manager, &QObject::deleteLater);
}

void QHttp::readHeader()
{
    if (m_headerRead)
        return;
    m_headerRead = true;
    QHttpResponseHeader header(
        m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt());
    for (const auto &[name, value] : m_reply->rawHeaderPairs())
        header.setValue(QString::fromLatin1(name), QString::fromLatin1(value));
    emit responseHeaderReceived(header);
}

void QHttp::readBody()
{
    const QByteArray bytes = m_reply->readAll();
    if (m_sink && m_sink->write(bytes) != bytes.size())
        stop(sinkErrorText(*m_sink));
}

// Breaks off the current request. The end itself comes from the event loop, because this may be
// called from any of the reply's own signals.
void QHttp::stop(const QString &reason)
{
    if (!m_reply || !m_stopReason.isEmpty())
        return;
    m_stopReason = reason;
    m_reply->disconnect(this);
    finishLater();
}

void QHttp::finishLater()
{
    QMetaObject::invokeMethod(
        this, [this, id = m_currentId] { finish(id); }, Qt::QueuedConnection);
}

// The end of the request @p id, unless it has been heard of already or another took its place.
void QHttp::finish(int id)
{
    if (id != m_currentId)
        return;
    if (m_stopReason.isEmpty())
        readBody();
    auto *file = qobject_cast<QFileDevice *>(m_sink);
    if (m_stopReason.isEmpty() && file && !file->flush())
        m_stopReason = sinkErrorText(*file);

    const bool error = !m_stopReason.isEmpty() || isTransportError(*m_reply);
    if (error)
        m_errorText = m_stopReason.isEmpty() ? errorText(*m_reply) : m_stopReason;
    if (m_reply) {
        m_reply->manager()->disconnect(this);
        m_reply->manager()->deleteLater();
    }
    m_reply = nullptr;
    m_currentId = 0;
    emit done(error);
}
