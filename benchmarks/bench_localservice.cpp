// SPDX-License-Identifier: MIT

// How the local service holds up: its operations against the cheapest one as their peer, what other
// clients notice of busy, idle, slow and greedy ones, its memory, and how soon it ends.

#include "fileserver.h"
#include "localserviceprocess.h"
#include "plainconnection.h"
#include "rates.h"
#include "table.h"
#include "uploadrequest.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

namespace {

constexpr int ownAuctions = 47;
constexpr int auctionsOfOthers = 10000;
constexpr std::chrono::milliseconds drippingTime{50000};
constexpr std::chrono::milliseconds dripPause{20000};
const QByteArray login = "Username=m1&Password=secret";

QTextStream out(stdout);

class Bench
{
public:
    explicit Bench(Table *table)
        : m_table(table)
    {
    }

    bool run();

private:
    struct Measured
    {
        const char *name;
        QByteArray request;
    };

    QByteArray request(const QByteArray &operation, const QByteArray &form) const
    {
        return "POST /tolvex/" + operation + "/ HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
            + "\r\nConnection: close\r\nContent-Type: application/x-www-form-urlencoded\r\n"
              "Content-Length: "
            + QByteArray::number(form.size()) + "\r\n\r\n" + form;
    }
    double slowestAnswer(int count) const;
    qint64 peakMemory() const;
    void addAuctionsOfOthers();
    void measureRates();
    void measureBusyPictures();
    void measureIdleClients();
    void measureUploads();
    void measureMemory();
    void measureEnd();

    Table *m_table;
    LocalServiceProcess m_service;
};

// In milliseconds; a request without an answer counts as its patience of 30 s.
double Bench::slowestAnswer(int count) const
{
    double slowest = 0;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        const PlainConnection connection(m_service.port());
        const bool isRight =
            connection.send(request("ValidateLogin", login)) && connection.reply().body == "1";
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

// What the member's own 47 stand among.
void Bench::addAuctionsOfOthers()
{
    m_service.post("CreateAccount",
                   "Password2=secret&Username=m2&Password1=secret&EmailAddress=m2@example.org");
    m_service.execute(
        QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT ?)"
                       " INSERT INTO auctions (member, category, title, description, captured,"
                       " media, start_price, reserve_price, buy_price, created, ends)"
                       " SELECT 2, 400, 'Photo ' || i, 'Taken from the stand.', '', i || '.jpg', 5,"
                       " 0, 0, created, ends + i FROM n, auctions WHERE id = 1"),
        {m_table->scaled(auctionsOfOthers, 20)});
}

// Milliseconds for each answer, against the cheapest operation, and against nginx that has the same
// bytes ready in a file.
void Bench::measureRates()
{
    const QList<Measured> all{
        {"GetMyAuctions", request("GetMyAuctions", login)},
        {"GetThumbnail", request("GetThumbnail", login + "&AuctionID=1")},
        {"ValidateLogin", request("ValidateLogin", login)},
        {"front page",
         "GET / HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
             + "\r\nConnection: close\r\n\r\n"},
    };
    const std::chrono::milliseconds time{m_table->scaled(400, 20)};
    const auto answering = [time](int port, const QByteArray &bytes) {
        return [=](int clients) { return 1000 / answersASecond(port, bytes, clients, time); };
    };
    const QByteArray terms = request("GetServiceTerms", "SUBMIT=Submit");
    FileServer files;
    const bool hasNginx = files.start();
    const QList<int> clients{1, 8, 64};
    for (const Measured &measured : all) {
        const QString what = QString::fromLatin1(measured.name) + QStringLiteral(", %1 at a time");
        const Table::Side own{QString(), answering(m_service.port(), measured.request)};
        m_table->compareSizes(
            what, 5, clients, own,
            {QStringLiteral("GetServiceTerms"), answering(m_service.port(), terms)});
        if (!hasNginx)
            continue;
        files.offer(QStringLiteral("bytes"), m_service.send(measured.request).body);
        const QByteArray get =
            "GET /bytes HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
        m_table->compareSizes(what, 4, clients, own,
                              {QStringLiteral("nginx"), answering(files.port(), get)});
    }
}

void Bench::measureBusyPictures()
{
    std::atomic<bool> isOver{false};
    std::vector<std::thread> clients;
    clients.reserve(64);
    for (int i = 0; i < 64; ++i) {
        clients.emplace_back([this, i, &isOver] {
            const QByteArray bytes = request(
                "GetThumbnail", login + "&AuctionID=" + QByteArray::number(i % ownAuctions + 1));
            while (!isOver) {
                const PlainConnection connection(m_service.port());
                connection.send(bytes);
                connection.reply();
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    out << "- 64 thumbnails in flight: the slowest of 50 other requests " << slowestAnswer(50)
        << " ms\n";
    isOver = true;
    for (std::thread &client : clients)
        client.join();
    out.flush();
}

// For 50 seconds, in which each of those that drip says three bytes of a request.
void Bench::measureIdleClients()
{
    std::vector<std::unique_ptr<PlainConnection>> idle;
    std::vector<std::unique_ptr<PlainConnection>> dripping;
    while (idle.size() < 1000)
        idle.push_back(std::make_unique<PlainConnection>(m_service.port()));
    while (dripping.size() < 50)
        dripping.push_back(std::make_unique<PlainConnection>(m_service.port()));
    double slowest = 0;
    int asked = 0;
    QElapsedTimer timer;
    timer.start();
    qsizetype said = 0;
    for (; timer.elapsed() < drippingTime.count(); ++asked) {
        if (timer.elapsed() >= said * dripPause.count()) {
            for (const auto &connection : dripping)
                connection->send(QByteArray("POST /tolvex/").mid(said, 1));
            ++said;
        }
        slowest = std::max(slowest, slowestAnswer(1));
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    out << "- 1,000 idle clients and 50 that drip a byte every 20 s: the slowest of " << asked
        << " other requests " << slowest << " ms\n";
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
            const PlainConnection connection(m_service.port());
            if (connection.send(bytes) && connection.reply().body.toInt() > 0)
                ++answered;
        });
    }
    for (std::thread &client : clients)
        client.join();
    out << "- 64 uploads of 5 MB at once: " << answered.load() << " stored in " << timer.elapsed()
        << " ms\n";
    out.flush();
}

void Bench::measureMemory()
{
    // Lines without end, headers without end, and forms that stop just before their end.
    std::vector<std::unique_ptr<PlainConnection>> connections;
    for (int i = 0; i < 300; ++i) {
        connections.push_back(std::make_unique<PlainConnection>(m_service.port()));
        const PlainConnection &connection = *connections.back();
        const QByteArray kind = i % 3 == 0 ? "GET /" : "GET / HTTP/1.1\r\nHost: x\r\nX: ";
        if (i % 3 == 2) {
            connection.send(request("ValidateLogin", QByteArray(1000000, 'f')).chopped(1));
            continue;
        }
        bool goesOn = connection.send(kind);
        for (int piece = 0; goesOn && piece < 48; ++piece)
            goesOn = connection.send(QByteArray(131072, 'x'));
    }
    out << "- most memory ever held: " << peakMemory() << " MB\n";
    out.flush();
}

void Bench::measureEnd()
{
    std::vector<std::unique_ptr<PlainConnection>> connections;
    connections.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        connections.push_back(std::make_unique<PlainConnection>(m_service.port()));
    QElapsedTimer timer;
    timer.start();
    const int code = m_service.terminate();
    out << "- SIGTERM with 1,000 idle clients: ended with " << code << " after " << timer.elapsed()
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
    const int auctions = m_table->scaled(ownAuctions, 2);
    for (int i = 0; i < auctions; ++i)
        m_service.send(upload.bytes(m_service.host()));
    addAuctionsOfOthers();
    measureRates();
    if (m_table->isTiny() || !m_table->isWanted(QStringLiteral("the rest")))
        return true;
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
    const QCoreApplication app(argc, argv);
    Table table(app, QStringLiteral("The local service, in milliseconds for each answer"));
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
    return Bench(&table).run() ? table.exitCode() : 1;
}
