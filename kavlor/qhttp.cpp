// SPDX-License-Identifier: MIT

#include "qhttp.h"

#include "curllibrary.h"
#include "curlloop.h"
#include "httptransfer.h"
#include "qhttprequestheader.h"

#include <QAuthenticator>
#include <QIODevice>
#include <QRegularExpression>
#include <QUrl>

#include <utility>

namespace {

// Who a challenge asks for.
QString realmOf(const QString &challenge)
{
    static const QRegularExpression quoted(QStringLiteral("\\brealm *= *\"([^\"]*)\""),
                                           QRegularExpression::CaseInsensitiveOption);
    return quoted.match(challenge).captured(1);
}

} // namespace

QHttp::QHttp(QObject *parent)
    : QObject(parent)
{
}

// The transfers before their loop.
QHttp::~QHttp()
{
    qDeleteAll(findChildren<HttpTransfer *>(QString(), Qt::FindDirectChildrenOnly));
}

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
        m_credentials =
            QLatin1String("Basic ") + QString::fromLatin1(credentials.toUtf8().toBase64());
    }
}

int QHttp::request(const QHttpRequestHeader &header, const QByteArray &body, QIODevice *sink)
{
    if (m_hostName.isEmpty())
        return 0;
    leaveCurrent();

    m_currentId = ++m_lastId;
    QHttpRequestHeader complete = header;
    complete.setContentLength(body.size());
    if (!m_credentials.isEmpty())
        complete.setValue(QStringLiteral("Authorization"), m_credentials);
    if (complete.isValid())
        send(complete, body, sink);
    else
        finishLater(tr("The request holds characters that cannot be sent."));
    return m_currentId;
}

void QHttp::send(const QHttpRequestHeader &header, const QByteArray &body, QIODevice *sink)
{
    QUrl url;
    url.setScheme(m_mode == ConnectionModeHttps ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(m_hostName);
    url.setPort(m_port == 0 ? -1 : m_port);
    url.setPath(header.path(), QUrl::TolerantMode);

    const CurlLibrary *library = CurlLibrary::instance();
    if (!library) {
        finishLater(tr("The program is not completely installed: it lacks its HTTP library."));
        return;
    }
    if (!m_loop)
        m_loop = new CurlLoop(*library, this);
    m_transfer = new HttpTransfer(url, header, body, sink, *library, m_loop, this);
    connect(m_transfer, &HttpTransfer::headerArrived, this, &QHttp::reportHeader);
    connect(m_transfer, &HttpTransfer::finished, this,
            [this] { finish(m_currentId, m_transfer->errorText()); });
}

QString QHttp::errorString() const
{
    return m_errorText;
}

void QHttp::abort()
{
    if (!m_transfer)
        return;
    m_transfer->disconnect(this);
    m_transfer->dropSink();
    std::exchange(m_transfer, nullptr)->deleteLater();
    finishLater(tr("Request aborted"));
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
    if (!m_transfer)
        return;
    HttpTransfer *transfer = std::exchange(m_transfer, nullptr);
    transfer->disconnect(this);
    transfer->dropSink();
    connect(transfer, &HttpTransfer::finished, transfer, &QObject::deleteLater);
}

void QHttp::reportHeader(const QHttpResponseHeader &header)
{
    const QString challenge = header.value(QStringLiteral("WWW-Authenticate"));
    if (header.statusCode() == 401 && !challenge.isEmpty()) {
        const QPointer<HttpTransfer> transfer(m_transfer);
        QAuthenticator authenticator;
        authenticator.setRealm(realmOf(challenge));
        emit authenticationRequired(m_hostName, usedPort(), &authenticator);
        if (!transfer || transfer != m_transfer)
            return;
    }
    emit responseHeaderReceived(header);
}

quint16 QHttp::usedPort() const
{
    if (m_port != 0)
        return m_port;
    return m_mode == ConnectionModeHttps ? 443 : 80;
}

void QHttp::finishLater(const QString &errorText)
{
    QMetaObject::invokeMethod(
        this, [this, id = m_currentId, errorText] { finish(id, errorText); }, Qt::QueuedConnection);
}

// The end of the request @p id, unless another took its place.
void QHttp::finish(int id, const QString &errorText)
{
    if (id != m_currentId)
        return;
    if (m_transfer)
        std::exchange(m_transfer, nullptr)->deleteLater();
    m_currentId = 0;
    if (!errorText.isEmpty())
        m_errorText = errorText;
    emit done(!errorText.isEmpty());
}
