// How the local service holds up: its operations against the cheapest one as their peer, what other
// clients notice of busy, idle, slow and greedy ones, its memory, and how soon it ends.
// --service PATH measures another build of it.

#include "localserviceprocess.h"
#include "uploadrequest.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr int auctions = 47;
const QByteArray login = "Username=m1&Password=secret";

QTextStream out(stdout);

/** A plain connection, since there are many of them on many threads. */
class Connection
{
public:
    explicit Connection(int port)
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(quint16(port));
        const timeval patience = {30, 0};
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience));
        m_isConnected =
            ::connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0;
    }
    ~Connection()
    {
        ::close(m_socket);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /** False once the other side has gone. */
    bool send(const QByteArray &bytes) const
    {
        qsizetype sent = 0;
        while (m_isConnected && sent < bytes.size()) {
            const ssize_t some = ::send(m_socket, bytes.constData() + sent,
                                        size_t(bytes.size() - sent), MSG_NOSIGNAL);
            if (some <= 0)
                return false;
            sent += some;
        }
        return m_isConnected;
    }

    QByteArray reply() const
    {
        QByteArray raw;
        char piece[65536];
        while (!LocalServiceProcess::isWhole(raw)) {
            const ssize_t some = ::recv(m_socket, piece, sizeof(piece), 0);
            if (some <= 0)
                return {};
            raw.append(piece, some);
        }
        return LocalServiceProcess::parsed(raw).body;
    }

private:
    int m_socket;
    bool m_isConnected = false;
};

class Bench
{
public:
    explicit Bench(const QString &program)
    {
        if (!program.isEmpty())
            m_service.setProgram(program);
    }

    bool run();

private:
    QByteArray request(const QByteArray &operation, const QByteArray &form) const
    {
        return "POST /tolvex/" + operation + "/ HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
            + "\r\nConnection: close\r\nContent-Type: application/x-www-form-urlencoded\r\n"
              "Content-Length: "
            + QByteArray::number(form.size()) + "\r\n\r\n" + form;
    }
    double rate(const QByteArray &operation, const QByteArray &form) const;
    double slowestAnswer(int count) const;
    qint64 peakMemory() const;
    void measureRates();
    void measureBusyPictures();
    void measureIdleClients();
    void measureUploads();
    void measureMemory();
    void measureEnd();

    LocalServiceProcess m_service;
};

// Requests a second from four clients, each request on a connection of its own.
double Bench::rate(const QByteArray &operation, const QByteArray &form) const
{
    const QByteArray bytes = request(operation, form);
    std::atomic<int> done{0};
    std::atomic<bool> isOver{false};
    std::vector<std::thread> clients;
    QElapsedTimer timer;
    timer.start();
    clients.reserve(4);
    for (int i = 0; i < 4; ++i) {
        clients.emplace_back([&] {
            while (!isOver) {
                const Connection connection(m_service.port());
                if (connection.send(bytes) && !connection.reply().isEmpty())
                    ++done;
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::seconds(3));
    isOver = true;
    for (std::thread &client : clients)
        client.join();
    return done * 1000.0 / double(timer.elapsed());
}

// In milliseconds; a request without an answer counts as its patience of 30 s.
double Bench::slowestAnswer(int count) const
{
    double slowest = 0;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        const Connection connection(m_service.port());
        const bool isRight =
            connection.send(request("ValidateLogin", login)) && connection.reply() == "1";
        slowest = std::max(slowest, isRight ? double(timer.nsecsElapsed()) / 1e6 : 30000.0);
    }
    return slowest;
}

qint64 Bench::peakMemory() const
{
    QFile status(QStringLiteral("/proc/%1/status").arg(m_service.processId()));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    static const QRegularExpression peak(QStringLiteral("VmHWM:\\s*(\\d+) kB"));
    return peak.match(QString::fromLatin1(status.readAll())).captured(1).toLongLong() / 1024;
}

void Bench::measureRates()
{
    const double terms = rate("GetServiceTerms", "SUBMIT=Submit");
    out << "GetServiceTerms        " << terms << " a second, the peer\n";
    for (const char *operation : {"GetThumbnail", "GetMyAuctions", "ValidateLogin"}) {
        const double own = rate(operation, login + "&AuctionID=1");
        out << qSetFieldWidth(23) << Qt::left << operation << qSetFieldWidth(0) << own
            << " a second, " << own / terms << " of the peer's\n";
    }
    out.flush();
}

void Bench::measureBusyPictures()
{
    std::atomic<bool> isOver{false};
    std::vector<std::thread> clients;
    clients.reserve(64);
    for (int i = 0; i < 64; ++i) {
        clients.emplace_back([this, i, &isOver] {
            const QByteArray bytes = request(
                "GetThumbnail", login + "&AuctionID=" + QByteArray::number(i % auctions + 1));
            while (!isOver) {
                const Connection connection(m_service.port());
                connection.send(bytes);
                connection.reply();
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    out << "64 thumbnails in flight: the slowest of 50 other requests " << slowestAnswer(50)
        << " ms\n";
    isOver = true;
    for (std::thread &client : clients)
        client.join();
    out.flush();
}

void Bench::measureIdleClients()
{
    std::vector<std::unique_ptr<Connection>> connections;
    for (int i = 0; i < 1050; ++i) {
        connections.push_back(std::make_unique<Connection>(m_service.port()));
        if (i >= 1000)
            connections.back()->send("POST /tolvex/");
    }
    out << "1,000 idle and 50 dripping clients: the slowest of 5 other requests "
        << slowestAnswer(5) << " ms\n";
    out.flush();
}

void Bench::measureUploads()
{
    UploadRequest upload;
    upload.media = QByteArray(5L * 1024 * 1024, 'm');
    const QByteArray bytes = upload.bytes(m_service.host());
    std::atomic<int> answered{0};
    std::vector<std::thread> clients;
    QElapsedTimer timer;
    timer.start();
    clients.reserve(64);
    for (int i = 0; i < 64; ++i) {
        clients.emplace_back([&] {
            const Connection connection(m_service.port());
            if (connection.send(bytes) && connection.reply().toInt() > 0)
                ++answered;
        });
    }
    for (std::thread &client : clients)
        client.join();
    out << "64 uploads of 5 MB at once: " << answered.load() << " stored in " << timer.elapsed()
        << " ms\n";
    out.flush();
}

void Bench::measureMemory()
{
    // Lines without end, headers without end, and forms that stop just before their end.
    std::vector<std::unique_ptr<Connection>> connections;
    for (int i = 0; i < 300; ++i) {
        connections.push_back(std::make_unique<Connection>(m_service.port()));
        const Connection &connection = *connections.back();
        const QByteArray kind = i % 3 == 0 ? "GET /" : "GET / HTTP/1.1\r\nHost: x\r\nX: ";
        if (i % 3 == 2) {
            connection.send(request("ValidateLogin", QByteArray(1000000, 'f')).chopped(1));
            continue;
        }
        bool goesOn = connection.send(kind);
        for (int piece = 0; goesOn && piece < 48; ++piece)
            goesOn = connection.send(QByteArray(131072, 'x'));
    }
    out << "most memory ever held: " << peakMemory() << " MB\n";
    out.flush();
}

void Bench::measureEnd()
{
    std::vector<std::unique_ptr<Connection>> connections;
    connections.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        connections.push_back(std::make_unique<Connection>(m_service.port()));
    QElapsedTimer timer;
    timer.start();
    const int code = m_service.terminate();
    out << "SIGTERM with 1,000 idle clients: ended with " << code << " after " << timer.elapsed()
        << " ms\n";
    out.flush();
}

bool Bench::run()
{
    if (!m_service.start())
        return false;
    m_service.post("CreateAccount",
                   "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org");
    UploadRequest upload;
    QImage picture(1600, 1200, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    upload.media = UploadRequest::encoded(picture, "JPEG");
    for (int i = 0; i < auctions; ++i)
        m_service.send(upload.bytes(m_service.host()));
    measureRates();
    measureBusyPictures();
    measureUploads();
    measureIdleClients();
    measureMemory();
    measureEnd();
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption service(QStringLiteral("service"),
                                     QStringLiteral("Measure the service at PATH."),
                                     QStringLiteral("PATH"));
    parser.addOption(service);
    parser.process(app);
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
    return Bench(parser.value(service)).run() ? 0 : 1;
}
