#include "httpservice.h"

#include "auctionupload.h"

#include <httplib.h>

namespace {

constexpr size_t threads = 16;
constexpr time_t patienceSeconds = 60;
constexpr time_t silenceSeconds = 2;
constexpr qsizetype maxFormBytes = 1024L * 1024;
// A body beyond its limit is read on for so long that its sender gets to read the refusal.
constexpr qint64 maxIgnoredBytes = 1024L * 1024 * 1024;

constexpr size_t pieceBytes = 64UL * 1024;

// Where the content type is kept from the server, see takeRequestAsIs().
const char *const ownContentType = "X-Own-Content-Type";

// The server would read multipart bodies itself, by rules that our members' devices do not keep,
// and compress replies for devices that say they accept it but do not unpack them. It decides both
// by these headers, which it looks at only later; the request is its own and not const.
httplib::Server::HandlerResponse takeRequestAsIs(const httplib::Request &constRequest,
                                                 httplib::Response &)
{
    auto &request = const_cast<httplib::Request &>(constRequest);
    request.headers.erase("Accept-Encoding");
    request.headers.erase(ownContentType);
    const std::string contentType = request.get_header_value("Content-Type");
    request.headers.erase("Content-Type");
    request.set_header(ownContentType, contentType);
    return httplib::Server::HandlerResponse::Unhandled;
}

// Unlike the server's own choice this does not let a second service take the same port.
void setSocketOptions(socket_t socket)
{
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
}

QByteArray header(const httplib::Request &request, const char *name)
{
    return QByteArray::fromStdString(request.get_header_value(name));
}

// Hands each piece of the body to @p take; false when the body was not complete.
bool readBody(const httplib::ContentReader &reader, qint64 limit,
              const std::function<void(const QByteArray &)> &take)
{
    qint64 total = 0;
    return reader([&](const char *data, size_t length) {
        total += qint64(length);
        take(QByteArray::fromRawData(data, qsizetype(length)));
        return total <= limit + maxIgnoredBytes;
    });
}

// A form's body, or why it cannot be taken.
Result<QByteArray> readWhole(const httplib::ContentReader &reader)
{
    QByteArray body;
    bool isTooLong = false;
    const bool isWhole = readBody(reader, maxFormBytes, [&](const QByteArray &bytes) {
        isTooLong = isTooLong || body.size() + bytes.size() > maxFormBytes;
        if (!isTooLong)
            body.append(bytes);
    });
    if (isTooLong)
        return refused(QStringLiteral("the request is too long"));
    if (!isWhole)
        return refused(QStringLiteral("the request was cut short"));
    return body;
}

void sendFile(const QString &path, const QByteArray &type, httplib::Response &response)
{
    const auto file = std::make_shared<QFile>(path);
    if (!file->open(QIODevice::ReadOnly)) {
        response.status = 404;
        return;
    }
    response.set_content_provider(
        size_t(file->size()), type.toStdString(),
        [file](size_t offset, size_t length, httplib::DataSink &sink) {
            if (!file->seek(qint64(offset)))
                return false;
            const QByteArray bytes = file->read(qint64(std::min(length, pieceBytes)));
            return !bytes.isEmpty() && sink.write(bytes.constData(), size_t(bytes.size()));
        });
}

WebSite::Request siteRequest(const httplib::Request &request)
{
    WebSite::Request asked;
    asked.method = QByteArray::fromStdString(request.method);
    asked.path = QString::fromStdString(request.path);
    for (const auto &parameter : request.params)
        asked.query.set(QString::fromStdString(parameter.first),
                        QString::fromStdString(parameter.second));
    asked.cookies = header(request, "Cookie");
    asked.host = header(request, "Host");
    asked.origin = header(request, "Origin");
    return asked;
}

void sendSiteReply(const WebSite::Reply &reply, httplib::Response &response)
{
    response.set_header(
        "Content-Security-Policy",
        "default-src 'self'; script-src 'none'; object-src 'none'; base-uri 'none'; "
        "style-src 'unsafe-inline'; form-action 'self'; frame-ancestors 'none'");
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Referrer-Policy", "same-origin");
    response.set_header("Cache-Control", "no-store");
    // Without a word from us the server says 200, or 206 when a part was asked for.
    if (reply.status != 200)
        response.status = reply.status;
    if (!reply.cookie.isEmpty())
        response.set_header("Set-Cookie", reply.cookie.toStdString());
    if (!reply.location.isEmpty())
        response.set_redirect(reply.location.toStdString(), reply.status);
    else if (!reply.file.isEmpty())
        sendFile(reply.file, reply.type, response);
    else
        response.set_content(reply.body.constData(), size_t(reply.body.size()),
                             reply.type.toStdString());
}

} // namespace

HttpService::HttpService(Accounts &accounts, Auctions &auctions, Operations &operations,
                         WebSite &site, const DataFolder &folder, qint64 maxMediaBytes)
    : m_accounts(accounts)
    , m_auctions(auctions)
    , m_operations(operations)
    , m_site(site)
    , m_folder(folder)
    , m_maxMediaBytes(maxMediaBytes)
    , m_server(std::make_unique<httplib::Server>())
{
    prepareServer();
    addOperations();
    addWebSite();
}

HttpService::~HttpService() = default;

void HttpService::prepareServer()
{
    m_server->new_task_queue = [] { return new httplib::ThreadPool(threads); };
    m_server->set_socket_options(setSocketOptions);
    // A kept connection that the service ends just when a device uses it again loses a request.
    m_server->set_keep_alive_max_count(1);
    // How long a connection may stay silent before its request; an ending service waits for it.
    m_server->set_keep_alive_timeout(silenceSeconds);
    m_server->set_read_timeout(patienceSeconds);
    m_server->set_write_timeout(patienceSeconds);
    m_server->set_pre_routing_handler(takeRequestAsIs);
}

void HttpService::addOperations()
{
    m_server->Post("/tolvex/([^/]*)/?.*",
                   [this](const httplib::Request &request, httplib::Response &response,
                          const httplib::ContentReader &reader) {
                       answerOperation(request, response, reader);
                   });
}

void HttpService::answerOperation(const httplib::Request &request, httplib::Response &response,
                                  const httplib::ContentReader &reader)
{
    const QString operation = QString::fromStdString(request.matches[1]);
    const Operations::Reply reply = operation == QLatin1String("CreateAuction")
        ? readUpload(request, reader)
        : readForm(operation, reader);
    response.status = 200;
    if (reply.file.isEmpty())
        response.set_content(reply.body.constData(), size_t(reply.body.size()),
                             reply.type.toStdString());
    else
        sendFile(reply.file, reply.type, response);
}

void HttpService::addWebSite()
{
    m_server->Get(".*", [this](const httplib::Request &request, httplib::Response &response) {
        sendSiteReply(m_site.answer(siteRequest(request)), response);
    });
    m_server->Post(
        ".*",
        [this](const httplib::Request &request, httplib::Response &response,
               const httplib::ContentReader &reader) { answerPost(request, response, reader); });
}

void HttpService::answerPost(const httplib::Request &request, httplib::Response &response,
                             const httplib::ContentReader &reader)
{
    const Result<QByteArray> body = readWhole(reader);
    if (!body.isOk()) {
        response.status = 400;
        return;
    }
    WebSite::Request asked = siteRequest(request);
    asked.form = FormBody::fromUrlEncoded(body.value());
    sendSiteReply(m_site.answer(asked), response);
}

Operations::Reply HttpService::readForm(const QString &operation,
                                        const httplib::ContentReader &reader)
{
    const Result<QByteArray> body = readWhole(reader);
    if (!body.isOk())
        return Operations::refusal(body.failure());
    return m_operations.answer(operation, FormBody::fromUrlEncoded(body.value()));
}

Operations::Reply HttpService::readUpload(const httplib::Request &request,
                                          const httplib::ContentReader &reader)
{
    AuctionUpload upload(m_accounts, m_auctions, m_folder, header(request, ownContentType),
                         m_maxMediaBytes);
    const bool isWhole =
        readBody(reader, m_maxMediaBytes, [&](const QByteArray &bytes) { upload.feed(bytes); });
    return upload.finish(isWhole);
}

int HttpService::bind(int port)
{
    const char *const address = "127.0.0.1";
    if (port == 0)
        return std::max(0, m_server->bind_to_any_port(address));
    return m_server->bind_to_port(address, port) ? port : 0;
}

void HttpService::run()
{
    m_server->listen_after_bind();
}

bool HttpService::isRunning() const
{
    return m_server->is_running();
}

void HttpService::stop()
{
    m_server->stop();
}
