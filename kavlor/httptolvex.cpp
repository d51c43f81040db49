// SPDX-License-Identifier: MIT

#include "httptolvex.h"

#include "connectionwait.h"
#include "connector.h"
#include "multipartbody.h"
#include "qhttp.h"
#include "qhttprequestheader.h"
#include "replyimage.h"
#include "servicehost.h"
#include "timeconstants.h"
#include "tolvexforms.h"
#include "tolvexheader.h"

#include <QAuthenticator>
#include <QFile>
#include <QTemporaryFile>
#include <QTextStream>
#include <QTimer>
#include <QUrl>

#include <optional>

namespace {

// In pieces: read at once, a long text is copied anew with every few kilobytes that are added to
// it.
QString textOf(QFile &file)
{
    constexpr qint64 piece = 1024LL * 1024; // letters
    QTextStream stream(&file);
    QString text;
    while (!stream.atEnd())
        text += stream.read(piece);
    return text;
}

} // namespace

CHttpTolvex::CHttpTolvex(QObject *parent)
    : QObject(parent)
    , m_baseUrl(QStringLiteral("http://%1/tolvex/").arg(serviceHost()))
    , m_http(new QHttp(this))
    , m_connector(CConnector::instance())
{
    connect(m_http, &QHttp::done, this, &CHttpTolvex::done);
    connect(m_http, &QHttp::responseHeaderReceived, this, &CHttpTolvex::readResponseHeader);
    connect(m_http, &QHttp::authenticationRequired, this, &CHttpTolvex::slotAuthenticationRequired);
    if (m_connector) {
        connect(m_connector, &CConnector::connectionStateChanged, this,
                &CHttpTolvex::onConnectionStateChanged);
        m_connected = m_connector->isConnected();
    }

    const QUrl url(m_baseUrl);
    const bool secure = url.scheme().toLower() == QLatin1String("https");
    m_http->setHost(url.host(), secure ? QHttp::ConnectionModeHttps : QHttp::ConnectionModeHttp,
                    static_cast<quint16>(url.port(0)));
    if (!url.userName().isEmpty())
        m_http->setUser(url.userName(), url.password());
}

CHttpTolvex::~CHttpTolvex()
{
    dropTempFile();
    if (m_http)
        m_http->close();
    delete m_http;
}

void CHttpTolvex::getServiceTerms()
{
    postForm(QStringLiteral("GetServiceTerms/"), TolvexForms::empty(), true);
}

void CHttpTolvex::getCountryList()
{
    postForm(QStringLiteral("GetCountryList/"), TolvexForms::empty(), true);
}

void CHttpTolvex::getCategoryList(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("GetCategoryList/"), TolvexForms::login(userName, password), true);
}

void CHttpTolvex::getNotificationOptions(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("GetNotificationOptions/"), TolvexForms::login(userName, password),
             true);
}

void CHttpTolvex::setNotificationOptions(const QString &userName, const QString &password,
                                         const CKavlorNotificationOptions &options)
{
    postForm(QStringLiteral("SetNotificationOptions/"),
             TolvexForms::alerts(userName, password, options), true);
}

void CHttpTolvex::modifyAuction(const QString &userName, const QString &password, quint32 auctionId,
                                quint32 reservePrice, quint32 buyItNowPrice)
{
    postForm(QStringLiteral("ModifyAuction/"),
             TolvexForms::prices(userName, password, auctionId, reservePrice, buyItNowPrice), true);
}

void CHttpTolvex::getMyAuctions(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("GetMyAuctions/"), TolvexForms::login(userName, password), true);
}

void CHttpTolvex::validateLogin(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("ValidateLogin/"), TolvexForms::login(userName, password), true);
}

void CHttpTolvex::getRawMedia(const QString &userName, const QString &password, quint32 auctionId)
{
    postForm(QStringLiteral("GetRawMedia/"), TolvexForms::auction(userName, password, auctionId),
             false);
}

void CHttpTolvex::getThumbnail(const QString &userName, const QString &password, quint32 auctionId)
{
    postForm(QStringLiteral("GetThumbnail/"), TolvexForms::auction(userName, password, auctionId),
             false);
}

void CHttpTolvex::createAccount(const CKavlorUser &user)
{
    postForm(QStringLiteral("CreateAccount/"), TolvexForms::newAccount(user), true);
}

void CHttpTolvex::modifyAccount(const CKavlorUser &current, const CKavlorUser &edited)
{
    postForm(QStringLiteral("ModifyAccount/"), TolvexForms::changedAccount(current, edited), true);
}

void CHttpTolvex::createAuction(const CKavlorUser &user, const CAuctionRecord &auction)
{
    m_aborted = false;
    m_textReply = true;

    const QByteArray boundary = makeBoundary();
    QHttpRequestHeader header = tolvexHeader(QUrl(m_baseUrl + QStringLiteral("CreateAuction/")));
    header.setValue(QStringLiteral("Keep-Alive"), QStringLiteral("1800000"));
    header.setContentType(multipartType(boundary));

    const std::optional<QByteArray> body = multipartBody(boundary, user, auction);
    if (!body) {
        emit requestIsFinished(QStringLiteral("I/O issue"), tr("Unable to read a posted file"));
        return;
    }
    header.setContentLength(body->size());
    send(header, *body, timeConstants().uploadTimeout);
}

bool CHttpTolvex::succeeded(const QString &response, const QString &error)
{
    return error.isEmpty() && !response.contains(QLatin1String("ERROR"));
}

void CHttpTolvex::cancelRequest(QString aErrorText)
{
    m_errorText = std::move(aErrorText);
    if (m_aborted)
        return;
    m_aborted = true;
    m_http->close();
    emit requestIsFinished(QStringLiteral("ERROR:timeout"), tr("Unable to get a server response"));
}

void CHttpTolvex::cancelRequest()
{
    cancelRequest(QString());
}

void CHttpTolvex::done(bool error)
{
    if (!m_pending || !m_http)
        return;
    m_pending = false;
    const QString fileName = m_tempFile ? m_tempFile->fileName() : QString();
    if (m_tempFile)
        m_tempFile->close();

    if (m_aborted) {
        dropTempFile();
        emit requestIsFinished(QString(), m_errorText);
        return;
    }
    if (error)
        m_errorText = m_http->errorString();
    QFile file(fileName);
    const bool readable = file.open(QIODevice::ReadOnly);
    if (!readable)
        m_errorText = QStringLiteral("I/O issue");
    const bool isText = m_textReply || m_contentType == QLatin1String("text/plain") || !readable;
    const QString response = isText && readable ? textOf(file) : QString();
    file.close();
    const QImage image = isText ? QImage() : readReplyImage(fileName);
    dropTempFile();

    // Whoever hears of the result may delete this object: nothing is touched after it.
    if (isText)
        emit requestIsFinished(response, m_errorText);
    else
        emit requestIsFinished(QPixmap::fromImage(image), m_errorText);
}

void CHttpTolvex::slotAuthenticationRequired(const QString &, quint16, QAuthenticator *)
{
    // No credentials: the status code of the reply then tells what became of the request.
}

void CHttpTolvex::readResponseHeader(const QHttpResponseHeader &responseHeader)
{
    m_contentType = QStringLiteral("text/plain");
    switch (responseHeader.statusCode()) {
    case 200:
    case 301:
    case 302:
    case 303:
    case 307:
        m_contentType = responseHeader.value(QStringLiteral("Content-type"));
        break;
    default:
        m_aborted = true;
        m_http->abort();
    }
}

void CHttpTolvex::onConnectionStateChanged()
{
    m_connected = m_connector->isConnected();
}

void CHttpTolvex::onConnectionSetupTimeout()
{
    m_setupTimedOut = true;
}

void CHttpTolvex::postForm(const QString &operationPath, const QByteArray &body, bool textReply)
{
    m_aborted = false;
    m_textReply = textReply;
    QHttpRequestHeader header = tolvexHeader(QUrl(m_baseUrl + operationPath));
    header.setContentLength(body.size());
    header.setContentType(QStringLiteral("application/x-www-form-urlencoded"));
    send(header, body, timeConstants().formTimeout);
}

void CHttpTolvex::send(const QHttpRequestHeader &header, const QByteArray &body,
                       int responseTimeout)
{
    if (!m_connected && !waitForConnection())
        return;

    // A transfer that timed out may still be writing to the file before.
    dropTempFile();
    m_tempFile = new QTemporaryFile(this);
    if (!m_tempFile->open()) {
        emit requestIsFinished(QStringLiteral("I/O issue"), tr("Unable to create a temp file"));
        return;
    }
    m_errorText.clear();
    m_pending = true;
    m_requestId = m_http->request(header, body, m_tempFile);
    if (m_requestId == 0) {
        emit requestIsFinished(QStringLiteral("ERROR:http request failure"),
                               tr("Unable to query kavlor server"));
        return;
    }
    QTimer::singleShot(responseTimeout, Qt::PreciseTimer, this,
                       qOverload<>(&CHttpTolvex::cancelRequest));
}

// Returns when there is a connection, or when none came in time, which it has reported then. Also
// returns false when there is nobody left to report to.
bool CHttpTolvex::waitForConnection()
{
    m_setupTimedOut = false;
    ConnectionWait wait(this, m_connector, [this] { return m_connected || m_setupTimedOut; });
    QTimer::singleShot(timeConstants().connectionWait, Qt::PreciseTimer, this,
                       &CHttpTolvex::onConnectionSetupTimeout);
    if (!wait.run(m_daemonIsSilent))
        return false;
    m_daemonIsSilent = m_connector && !m_connector->isStateKnown();
    if (m_connected)
        return true;
    emit requestIsFinished(QStringLiteral("ERROR:no connection"),
                           tr("Unable to create a connection"));
    return false;
}

// Deletes the file of the reply, on disk too.
void CHttpTolvex::dropTempFile()
{
    delete m_tempFile;
    m_tempFile = nullptr;
}
