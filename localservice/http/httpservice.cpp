// SPDX-License-Identifier: MIT

#include "httpservice.h"

#include "auctionupload.h"
#include "byterange.h"
#include "effort.h"
#include "formbody.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <thread>

namespace {

// Event loops; each may wait for the disk while it takes an upload.
constexpr unsigned loops = 4;
constexpr unsigned mostConnections = 4000;
constexpr rlim_t filesBesides = 200; // that are no connections, and each may be an upload as well
constexpr size_t connectionBytes = 16UL * 1024; // a request's lines and headers have to fit in
constexpr unsigned silenceSeconds = 60;

constexpr int readingThreads = 2;
constexpr int changingThreads = 6;
constexpr int picturingThreads = 2;

constexpr qsizetype maxFormBytes = 1024L * 1024;
// A body beyond its limit is read on for so long that its sender gets to read the refusal.
constexpr qint64 maxIgnoredBytes = 1024L * 1024 * 1024;
// What all requests together may have in memory of their bodies.
constexpr qint64 maxHeldBytes = 32L * 1024 * 1024;

constexpr std::chrono::milliseconds endPatience{1000};

unsigned connectionLimit()
{
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = std::min<rlim_t>(files.rlim_max, 2UL * mostConnections + filesBesides);
    setrlimit(RLIMIT_NOFILE, &files);
    const rlim_t spare = files.rlim_cur > 2 * filesBesides ? files.rlim_cur - filesBesides : 200;
    return unsigned(std::min<rlim_t>(mostConnections, spare));
}

// The values of a header line, joined when there are several of one name.
QByteArray header(MHD_Connection *connection, const char *name)
{
    struct Search
    {
        const char *name;
        QByteArrayList values;
    } search{name, {}};
    MHD_get_connection_values(
        connection, MHD_HEADER_KIND,
        [](void *context, MHD_ValueKind, const char *key, const char *value) {
            auto *const wanted = static_cast<Search *>(context);
            if (qstricmp(key, wanted->name) == 0)
                wanted->values.append(value ? value : "");
            return MHD_YES;
        },
        &search);
    return search.values.join(", ");
}

// Who asks, without the port.
QByteArray address(MHD_Connection *connection)
{
    const MHD_ConnectionInfo *const info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    if (!info || info->client_addr->sa_family != AF_INET)
        return {};
    sockaddr_in client = {};
    memcpy(&client, info->client_addr, sizeof(client));
    return QByteArray::number(ntohl(client.sin_addr.s_addr), 16);
}

Fields query(MHD_Connection *connection)
{
    Fields fields;
    MHD_get_connection_values(
        connection, MHD_GET_ARGUMENT_KIND,
        [](void *context, MHD_ValueKind, const char *key, const char *value) {
            static_cast<Fields *>(context)->set(QString::fromUtf8(key), QString::fromUtf8(value));
            return MHD_YES;
        },
        &fields);
    return fields;
}

Failure busy()
{
    return broken(QStringLiteral("the service is busy, please try again"));
}

} // namespace

/** One request on its way: its body while it arrives, then its answer. */
class HttpService::Exchange
{
public:
    Exchange(HttpService &service, MHD_Connection *connection, const char *url, const char *method)
        : m_service(service)
        , m_connection(connection)
        , m_path(QString::fromUtf8(url))
        , m_method(method)
        , m_asker(service.m_address.asker(header(connection, "Host"), header(connection, "Origin")))
    {
        ++m_service.m_exchanges;
        static const QString prefix = QStringLiteral("/tolvex/");
        m_isOperation = m_method == "POST" && m_path.startsWith(prefix);
        if (m_isOperation)
            m_operation = m_path.section(QLatin1Char('/'), 2, 2);
        if (m_asker != OwnAddress::Own) {
            m_refusal = refused(QStringLiteral("the service is reached as localhost only"));
        } else if (isUpload()) {
            m_upload = std::make_unique<AuctionUpload>(
                m_service.m_accounts, m_service.m_auctions, m_service.m_folder,
                header(connection, "Content-Type"), address(connection), m_service.m_maxMediaBytes);
        }
    }
    ~Exchange()
    {
        hold(0);
        --m_service.m_exchanges;
    }
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    /** Takes a piece of the body; false when it has become so long that nobody waits for its end.
     */
    bool feed(const char *bytes, size_t length)
    {
        m_bodyBytes += qint64(length);
        if (m_upload)
            m_upload->feed(QByteArray::fromRawData(bytes, qsizetype(length)));
        else if (m_bodyBytes > maxFormBytes)
            refuse(refused(QStringLiteral("the request is too long")));
        else if (!m_refusal)
            m_body.append(bytes, qsizetype(length));
        if (!hold(m_upload ? m_upload->heldBytes() : m_body.size()))
            refuse(busy());
        const qint64 limit = isUpload() ? m_service.m_maxMediaBytes : maxFormBytes;
        return m_bodyBytes <= limit + maxIgnoredBytes;
    }

    /** Has the request answered by those who have the time for it, and sends the answer then. */
    MHD_Result begin()
    {
        if (m_service.m_isEnding)
            refuse(busy());
        if (m_refusal) {
            answer();
            return send();
        }
        MHD_suspend_connection(m_connection);
        if (m_upload)
            give(*m_service.m_changing);
        else
            m_service.m_reading->run([this] { sort(); });
        return MHD_YES;
    }

    bool isAnswered() const
    {
        return m_isAnswered;
    }
    MHD_Result send();

private:
    bool isUpload() const
    {
        return m_operation == QLatin1String("CreateAuction");
    }

    void refuse(const Failure &failure)
    {
        if (!m_refusal)
            m_refusal = failure;
        m_upload.reset();
        m_body.clear();
        hold(0);
    }

    // False when all requests together hold too much; then this one holds nothing.
    bool hold(qint64 bytes)
    {
        const qint64 all = m_service.m_heldBytes += bytes - m_heldBytes;
        m_heldBytes = bytes;
        return bytes == 0 || all <= maxHeldBytes;
    }

    Workers &workersFor(Effort effort)
    {
        switch (effort) {
        case Effort::Changing:
            return *m_service.m_changing;
        case Effort::Picturing:
            return *m_service.m_picturing;
        case Effort::Reading:
            break;
        }
        return *m_service.m_reading;
    }

    // Finds out how much there is to do, and does at once what is little.
    void sort()
    {
        m_form = fieldsOfForm(m_body);
        const Result<Effort> effort = m_isOperation
            ? m_service.m_operations.effort(m_operation, m_form)
            : WebSite::effort(m_method, m_path);
        if (!effort.isOk())
            refuse(effort.failure());
        if (!effort.isOk() || effort.value() == Effort::Reading)
            answerAndResume();
        else
            give(workersFor(effort.value()));
    }

    void give(Workers &workers)
    {
        workers.run([this] { answerAndResume(); });
    }

    void answerAndResume()
    {
        if (m_service.m_isEnding)
            refuse(busy());
        answer();
        if (m_delay.count() > 0)
            m_service.m_reading->run([this] { MHD_resume_connection(m_connection); }, m_delay);
        else
            MHD_resume_connection(m_connection);
    }

    void answer()
    {
        if (m_isOperation)
            answerOperation();
        else
            answerPage();
        m_isAnswered = true;
    }

    void answerOperation()
    {
        Operations::Reply reply;
        if (m_refusal)
            reply = Operations::refusal(*m_refusal);
        else if (m_upload)
            reply = m_upload->finish();
        else
            reply = m_service.m_operations.answer(m_operation, m_form, address(m_connection));
        m_answer.type = reply.type;
        m_answer.body = reply.body;
        m_answer.file = reply.file;
        m_delay = reply.delay;
    }

    void answerPage()
    {
        if (m_refusal && m_asker == OwnAddress::Own) {
            m_answer.status = m_refusal->kind == Failure::Broken ? MHD_HTTP_SERVICE_UNAVAILABLE
                                                                 : MHD_HTTP_BAD_REQUEST;
            return;
        }
        WebSite::Request asked;
        asked.method = m_method;
        asked.path = m_path;
        asked.query = query(m_connection);
        asked.form = m_form;
        asked.cookies = header(m_connection, "Cookie");
        asked.host = header(m_connection, "Host");
        asked.asker = m_asker;
        m_answer = m_service.m_site.answer(asked);
    }

    MHD_Response *makeResponse();
    MHD_Response *fileResponse();
    void addHeaders(MHD_Response *response) const;

    HttpService &m_service;
    MHD_Connection *m_connection;
    QString m_path;
    QByteArray m_method;
    bool m_isOperation = false; // or else a page
    QString m_operation;
    OwnAddress::Asker m_asker;

    QByteArray m_body;
    qint64 m_bodyBytes = 0;
    qint64 m_heldBytes = 0;
    Fields m_form;
    std::unique_ptr<AuctionUpload> m_upload;
    std::optional<Failure> m_refusal;

    WebSite::Reply m_answer;
    std::chrono::milliseconds m_delay{};
    bool m_isAnswered = false;
};

MHD_Result HttpService::Exchange::send()
{
    MHD_Response *const response = makeResponse();
    if (!response)
        return MHD_NO;
    addHeaders(response);
    const MHD_Result queued = MHD_queue_response(m_connection, unsigned(m_answer.status), response);
    MHD_destroy_response(response);
    return queued;
}

MHD_Response *HttpService::Exchange::makeResponse()
{
    if (!m_answer.file.isEmpty())
        return fileResponse();
    return MHD_create_response_from_buffer(size_t(m_answer.body.size()), m_answer.body.data(),
                                           MHD_RESPMEM_MUST_COPY);
}

MHD_Response *HttpService::Exchange::fileResponse()
{
    const int file = ::open(QFile::encodeName(m_answer.file).constData(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || ::fstat(file, &status) != 0) {
        m_answer.status = MHD_HTTP_NOT_FOUND;
        return MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
    }
    const qint64 size = status.st_size;
    const std::optional<ByteRange> asked = ByteRange::parse(header(m_connection, "Range"), size);
    const ByteRange range = asked.value_or(ByteRange{0, size});
    QByteArray part = "bytes */" + QByteArray::number(size);
    if (asked && range.length > 0) {
        m_answer.status = MHD_HTTP_PARTIAL_CONTENT;
        part = "bytes " + QByteArray::number(range.first) + '-'
            + QByteArray::number(range.first + range.length - 1) + '/' + QByteArray::number(size);
    } else if (asked) {
        m_answer.status = MHD_HTTP_RANGE_NOT_SATISFIABLE;
    }
    MHD_Response *const response = MHD_create_response_from_fd_at_offset64(
        uint64_t(range.length), file, uint64_t(range.length > 0 ? range.first : 0));
    if (!response) {
        ::close(file);
        return nullptr;
    }
    MHD_add_response_header(response, MHD_HTTP_HEADER_ACCEPT_RANGES, "bytes");
    if (asked)
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_RANGE, part.constData());
    return response;
}

void HttpService::Exchange::addHeaders(MHD_Response *response) const
{
    const auto add = [response](const char *name, const QByteArray &value) {
        if (!value.isEmpty())
            MHD_add_response_header(response, name, value.constData());
    };
    add(MHD_HTTP_HEADER_CONTENT_TYPE, m_answer.type);
    add(MHD_HTTP_HEADER_SET_COOKIE, m_answer.cookie);
    add(MHD_HTTP_HEADER_LOCATION, m_answer.location);
    if (m_answer.status == MHD_HTTP_METHOD_NOT_ALLOWED)
        add(MHD_HTTP_HEADER_ALLOW, "GET, HEAD, POST");
    if (m_service.m_isEnding)
        add(MHD_HTTP_HEADER_CONNECTION, "close");
    add("X-Content-Type-Options", "nosniff");
    if (m_isOperation)
        return;
    add("Content-Security-Policy",
        "default-src 'self'; script-src 'none'; object-src 'none'; base-uri 'none'; "
        "style-src 'unsafe-inline'; form-action 'self'; frame-ancestors 'none'");
    add("Referrer-Policy", "same-origin");
    add(MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
}

HttpService::HttpService(Accounts &accounts, Auctions &auctions, Operations &operations,
                         WebSite &site, const DataFolder &folder, qint64 maxMediaBytes)
    : m_accounts(accounts)
    , m_auctions(auctions)
    , m_operations(operations)
    , m_site(site)
    , m_folder(folder)
    , m_maxMediaBytes(maxMediaBytes)
    , m_address(0)
    , m_reading(std::make_unique<Workers>(readingThreads))
    , m_changing(std::make_unique<Workers>(changingThreads))
    , m_picturing(std::make_unique<Workers>(picturingThreads))
{
}

HttpService::~HttpService()
{
    stop();
}

Result<int> HttpService::start(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(quint16(port));
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int yes = 1;
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    socklen_t size = sizeof(address);
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), size) != 0
        || ::listen(listener, SOMAXCONN) != 0
        || ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size) != 0) {
        ::close(listener);
        return broken(QStringLiteral("port %1 is in use").arg(port));
    }
    m_address = OwnAddress(ntohs(address.sin_port));

    const auto begin = [](void *service, MHD_Connection *connection, const char *url,
                          const char *method, const char *, const char *bytes, size_t *length,
                          void **state) {
        auto *const exchange = static_cast<Exchange *>(*state);
        if (!exchange) {
            *state = new Exchange(*static_cast<HttpService *>(service), connection, url, method);
            return MHD_YES;
        }
        if (exchange->isAnswered())
            return exchange->send();
        if (*length == 0)
            return exchange->begin();
        const bool goesOn = exchange->feed(bytes, *length);
        *length = 0;
        return goesOn ? MHD_YES : MHD_NO;
    };
    const auto end = [](void *, MHD_Connection *, void **state, MHD_RequestTerminationCode) {
        delete static_cast<Exchange *>(*state);
        *state = nullptr;
    };
    // With poll: over epoll the library does not see the end of a connection that comes together
    // with its last bytes, and keeps half an upload until the silence is too long.
    m_daemon =
        MHD_start_daemon(MHD_USE_POLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr,
                         nullptr, MHD_AccessHandlerCallback(begin), this, MHD_OPTION_LISTEN_SOCKET,
                         listener, MHD_OPTION_THREAD_POOL_SIZE, loops, MHD_OPTION_CONNECTION_LIMIT,
                         connectionLimit(), MHD_OPTION_CONNECTION_MEMORY_LIMIT, connectionBytes,
                         MHD_OPTION_CONNECTION_TIMEOUT, silenceSeconds, MHD_OPTION_NOTIFY_COMPLETED,
                         MHD_RequestCompletedCallback(end), this, MHD_OPTION_END);
    if (!m_daemon) {
        ::close(listener);
        return broken(QStringLiteral("port %1 cannot be served").arg(port));
    }
    return int(ntohs(address.sin_port));
}

bool HttpService::stop()
{
    if (!m_daemon)
        return true;
    const Workers::Clock::time_point deadline = Workers::Clock::now() + endPatience;
    const int listener = MHD_quiesce_daemon(m_daemon);
    m_isEnding = true;
    // Answers that are held back go through those who read.
    for (Workers *workers : {m_changing.get(), m_picturing.get(), m_reading.get()}) {
        if (!workers->end(deadline))
            return false;
    }
    // The answers are on their way. Who has not sent a whole request by now gets none.
    while (m_exchanges > 0 && Workers::Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    MHD_stop_daemon(m_daemon);
    m_daemon = nullptr;
    if (listener >= 0)
        ::close(listener);
    return true;
}
