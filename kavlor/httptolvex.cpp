#include "httptolvex.h"

#include "auctionrecord.h"
#include "connectionwait.h"
#include "connector.h"
#include "imagefile.h"
#include "kavlornotificationoptions.h"
#include "kavloruser.h"
#include "qhttp.h"
#include "qhttprequestheader.h"
#include "servicehost.h"
#include "timeconstants.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QTextStream>
#include <QTimer>
#include <QUrl>

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr QSize imageBounds(220, 220);

struct AccountKey
{
    const char *name;
    CKavlorUser::Field field;
};
using AccountKeys = QList<AccountKey>;

const AccountKeys &createAccountKeys()
{
    static const AccountKeys keys{
        {"Username", CKavlorUser::Username},
        {"Password1", CKavlorUser::Password},
        {"FirstName", CKavlorUser::FirstName},
        {"LastName", CKavlorUser::LastName},
        {"EmailAddress", CKavlorUser::EmailAddress},
        {"PaypalAddress", CKavlorUser::PaypalAddress},
        {"CountryID", CKavlorUser::CountryID},
        {"Gender", CKavlorUser::Gender},
        {"Language", CKavlorUser::Language},
        {"TwitterUsername", CKavlorUser::TwitterUsername},
        {"TwitterPassword", CKavlorUser::TwitterPassword},
    };
    return keys;
}

const AccountKeys &modifyAccountKeys()
{
    // The service is sent two ampersands before each of these.
    static const AccountKeys keys{
        {"&Username", CKavlorUser::Username},
        {"&Password1", CKavlorUser::Password},
        {"&Password2", CKavlorUser::Password},
        {"&EmailAddress", CKavlorUser::EmailAddress},
        {"&PaypalAddress", CKavlorUser::PaypalAddress},
    };
    return keys;
}

QByteArray submit()
{
    return QByteArrayLiteral("SUBMIT=Submit");
}

// One field of a form with the ampersand that parts it from the next.
QByteArray field(const QByteArray &name, const QByteArray &value)
{
    return name + '=' + value.toPercentEncoding("@.") + '&';
}

QByteArray field(const QByteArray &name, const QString &value)
{
    return field(name, value.toLocal8Bit());
}

QByteArray field(const QByteArray &name, quint32 value)
{
    return field(name, QByteArray::number(value));
}

QByteArray login(const QString &userName, const QString &password)
{
    return field("Username", userName) + field("Password", password);
}

QByteArray accountFields(const AccountKeys &keys, const CKavlorUser &user)
{
    QByteArray fields;
    for (const AccountKey &key : keys)
        fields += field(key.name, user.field(key.field));
    return fields;
}

// Absent from the body for all practical purposes; the same sequence at every start.
QByteArray makeBoundary()
{
    QByteArray bytes(16, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(std::rand() & 0xff);
    return bytes.toHex();
}

QByteArray textPart(const QByteArray &boundary, const QString &name, const QString &value)
{
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + name.toLatin1()
        + "\"\r\n\r\n" + value.toLatin1() + "\r\n";
}

QByteArray textParts(const QByteArray &boundary, const CKavlorUser &user,
                     const CAuctionRecord &auction)
{
    const QString noReserve = QStringLiteral("1");
    const QList<QPair<QString, QString>> parts{
        {QStringLiteral("Username"), user.field(CKavlorUser::Username)},
        {QStringLiteral("Password"), user.field(CKavlorUser::Password)},
        {QStringLiteral("CategoryID"), QString::number(auction.category)},
        {QStringLiteral("LongDescription"), auction.description},
        {QStringLiteral("Description"), auction.caption},
        {QStringLiteral("CaptureLatitude"), QString()},
        {QStringLiteral("CaptureLongitude"), QString()},
        {QStringLiteral("CaptureDate"),
         auction.captureDate.toLocalTime().toString(QStringLiteral("yyyyMMddhhmmss"))},
        {QStringLiteral("ReservePrice"),
         auction.reservePrice == 0 ? noReserve : QString::number(auction.reservePrice)},
        {QStringLiteral("BuyItNowPrice"),
         auction.buyItNowPrice == 0 ? QString() : QString::number(auction.buyItNowPrice)},
        {QStringLiteral("StartPrice"), QString::number(auction.startPrice)},
        {QStringLiteral("SUBMIT"), QStringLiteral("submit")},
    };
    QByteArray bytes;
    for (const auto &[name, value] : parts)
        bytes += textPart(boundary, name, value);
    return bytes;
}

// The head of the media part. The service learns the kind of media from the extension alone.
QByteArray mediaHead(const QByteArray &boundary, const QString &path, qint64 size)
{
    const QString extension = path.right(path.length() - path.lastIndexOf(QLatin1Char('.')));
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"MediaFile\"; filename=\"1"
        + extension.toLocal8Bit() + "\"\r\nContent-length: " + QByteArray::number(size)
        + "\r\nContent-Type: application/octet-stream\r\n\r\n";
}

// Takes the memory for so many bytes, when there is as much. A clip may well be larger than a
// device's memory, and that must not be the end of the program.
bool reserve(QByteArray *bytes, qint64 size)
{
    if (size > std::numeric_limits<qsizetype>::max())
        return false;
    try {
        bytes->reserve(static_cast<qsizetype>(size));
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

// Appends the file, which must have as many bytes as announced: neither a failing card nor a file
// that is being written may put half a photo on auction.
bool appendFile(QByteArray *bytes, QFile *file, qint64 size)
{
    const qsizetype start = bytes->size();
    bytes->resize(start + static_cast<qsizetype>(size));
    qint64 done = 0;
    while (done < size) {
        const qint64 count = file->read(bytes->data() + start + done, size - done);
        if (count <= 0)
            return false;
        done += count;
    }
    char more = 0;
    return file->read(&more, 1) == 0;
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
    postForm(QStringLiteral("GetServiceTerms/"), submit(), true);
}

void CHttpTolvex::getCountryList()
{
    postForm(QStringLiteral("GetCountryList/"), submit(), true);
}

void CHttpTolvex::getCategoryList(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("GetCategoryList/"), login(userName, password) + submit(), true);
}

void CHttpTolvex::getNotificationOptions(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("GetNotificationOptions/"), login(userName, password) + submit(), true);
}

void CHttpTolvex::setNotificationOptions(const QString &userName, const QString &password,
                                         const CKavlorNotificationOptions &options)
{
    static const QByteArrayList names{"NotifyOnBid", "NotifyOnAuctionEnd", "NotifyOnView",
                                      "NotifyOnBuyerQuestion"};
    const QStringList items = options.toText().split(QLatin1Char(','));
    if (items.size() < names.size())
        qFatal("The alert options have fewer than four items.");
    QByteArray body = login(userName, password);
    for (qsizetype i = 0; i < names.size(); ++i)
        body += field(names.at(i), items.at(i).toLatin1());
    postForm(QStringLiteral("SetNotificationOptions/"), body + submit(), true);
}

void CHttpTolvex::modifyAuction(const QString &userName, const QString &password, quint32 auctionId,
                                quint32 reservePrice, quint32 buyItNowPrice)
{
    const QByteArray prices =
        field("ReservePrice", reservePrice) + field("BuyItNowPrice", buyItNowPrice);
    postForm(QStringLiteral("ModifyAuction/"),
             login(userName, password) + field("AuctionID", auctionId) + prices + submit(), true);
}

void CHttpTolvex::getMyAuctions(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("GetMyAuctions/"), login(userName, password) + submit(), true);
}

void CHttpTolvex::validateLogin(const QString &userName, const QString &password)
{
    postForm(QStringLiteral("ValidateLogin/"), login(userName, password) + submit(), true);
}

void CHttpTolvex::getRawMedia(const QString &userName, const QString &password, quint32 auctionId)
{
    postForm(QStringLiteral("GetRawMedia/"),
             login(userName, password) + field("AuctionID", auctionId) + submit(), false);
}

void CHttpTolvex::getThumbnail(const QString &userName, const QString &password, quint32 auctionId)
{
    postForm(QStringLiteral("GetThumbnail/"),
             login(userName, password) + field("AuctionID", auctionId) + submit(), false);
}

void CHttpTolvex::createAccount(const CKavlorUser &user)
{
    const QByteArray confirmation = field("Password2", user.field(CKavlorUser::Password));
    postForm(QStringLiteral("CreateAccount/"),
             confirmation + accountFields(createAccountKeys(), user) + submit(), true);
}

void CHttpTolvex::modifyAccount(const CKavlorUser &current, const CKavlorUser &edited)
{
    const QByteArray password = field("Password", current.field(CKavlorUser::Password));
    postForm(QStringLiteral("ModifyAccount/"),
             password + accountFields(modifyAccountKeys(), edited) + submit(), true);
}

void CHttpTolvex::createAuction(const CKavlorUser &user, const CAuctionRecord &auction)
{
    const QString path = requestPath(QUrl(m_baseUrl + QStringLiteral("CreateAuction/")));
    m_aborted = false;
    m_textReply = true;

    const QByteArray boundary = makeBoundary();
    QHttpRequestHeader header = requestHeader(path);
    header.setValue(QStringLiteral("Keep-Alive"), QStringLiteral("1800000"));
    // The service is sent a comma where a semicolon is usual.
    header.setContentType(QStringLiteral("multipart/form-data, boundary=")
                          + QString::fromLatin1(boundary));

    const QString &mediaPath = auction.mediaPath;
    const qint64 size = QFileInfo(mediaPath).size();
    const QByteArray head =
        textParts(boundary, user, auction) + mediaHead(boundary, mediaPath, size);
    const QByteArray tail = "\r\n--" + boundary + "--\r\n";
    // Of the right size from the start, so that the file is in memory once.
    QByteArray body;
    QFile media(mediaPath);
    if (!media.open(QIODevice::ReadOnly) || !reserve(&body, head.size() + size + tail.size())
        || !appendFile(&body.append(head), &media, size)) {
        emit requestIsFinished(QStringLiteral("I/O issue"), tr("Unable to read a posted file"));
        return;
    }
    body += tail;
    header.setContentLength(body.size());
    send(header, body, timeConstants().uploadTimeout);
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
    const QString response = isText && readable ? QTextStream(&file).readAll() : QString();
    file.close();
    const QImage image = isText ? QImage() : readReplyImage(fileName, imageBounds);
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

QString CHttpTolvex::requestPath(const QUrl &url)
{
    const QByteArray path = QUrl::toPercentEncoding(url.path(QUrl::FullyDecoded), "!$&'()*+,;=:@/");
    return path.isEmpty() ? QStringLiteral("/") : QString::fromLatin1(path);
}

QHttpRequestHeader CHttpTolvex::requestHeader(const QString &path) const
{
    const QUrl url(m_baseUrl);
    const QString host = url.authority(QUrl::FullyEncoded).section(QLatin1Char('@'), -1);
    QHttpRequestHeader header(QStringLiteral("POST"), path);
    header.setValue(QStringLiteral("User-Agent"),
                    QStringLiteral("Nokia N900, kavlor application " KAVLOR_VERSION));
    header.setValue(QStringLiteral("Host"), host);
    header.setValue(QStringLiteral("Connection"), QStringLiteral("Keep-Alive"));
    header.setValue(QStringLiteral("Cache-Control"), QStringLiteral("no-cache"));
    header.setValue(QStringLiteral("Accept"), QStringLiteral("*/*"));
    header.setValue(QStringLiteral("Accept-Language"), QStringLiteral("en-us"));
    header.setValue(QStringLiteral("Accept-Encoding"), QStringLiteral("gzip,deflate"));
    header.setValue(QStringLiteral("Accept-Charset"), QStringLiteral("ISO-8859-1,utf-8"));
    return header;
}

void CHttpTolvex::postForm(const QString &operationPath, const QByteArray &body, bool textReply)
{
    const QUrl url(m_baseUrl + operationPath);
    m_aborted = false;
    m_textReply = textReply;
    QHttpRequestHeader header = requestHeader(requestPath(url));
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

// Asks for a connection and returns when there is one, or when none came in time, which it has
// reported then. Also returns false when there is nobody left to report to.
bool CHttpTolvex::waitForConnection()
{
    const QPointer<CHttpTolvex> self(this);
    const ConnectionWait wait(this);
    m_setupTimedOut = false;
    QTimer::singleShot(timeConstants().connectionWait, Qt::PreciseTimer, this,
                       &CHttpTolvex::onConnectionSetupTimeout);
    waitForState(wait);
    if (self && isWaiting(wait) && m_connector)
        m_connector->smartConnect();
    while (self && isWaiting(wait))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!self || wait.isPointless())
        return false;
    if (m_connected)
        return true;
    emit requestIsFinished(QStringLiteral("ERROR:no connection"),
                           tr("Unable to create a connection"));
    return false;
}

// Takes what the daemon has reported so far; at the program's start that may still be on its way.
void CHttpTolvex::waitForState(const ConnectionWait &wait)
{
    const QPointer<CHttpTolvex> self(this);
    QTimer::singleShot(timeConstants().stateAnswerWait, Qt::PreciseTimer, this,
                       [this] { m_stateOverdue = true; });
    QCoreApplication::processEvents();
    while (self && isWaiting(wait) && m_connector && !m_connector->isStateKnown()
           && !m_stateOverdue) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

bool CHttpTolvex::isWaiting(const ConnectionWait &wait) const
{
    return !m_connected && !m_setupTimedOut && !wait.isPointless();
}

// Deletes the file of the reply, on disk too.
void CHttpTolvex::dropTempFile()
{
    delete m_tempFile;
    m_tempFile = nullptr;
}
