// SPDX-License-Identifier: MIT

// What it costs to send and to fetch, in milliseconds of processor time: the request object against
// the HTTP library used bare, and curl, each in a program of its own.

#include "auctionrecord.h"
#include "costs.h"
#include "httptolvex.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "processmemory.h"
#include "qhttp.h"
#include "qhttprequestheader.h"
#include "sink.h"
#include "table.h"
#include "testconstants.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTextStream>

#include <curl/curl.h>

namespace {

constexpr qint64 megabyte = 1024LL * 1024;
constexpr double mostStall = 40; // ms

using Post = std::function<void(const QByteArray &body)>;

class Request : public CHttpTolvex
{
public:
    using CHttpTolvex::postForm;
};

const auto textResult = qOverload<QString, QString>(&CHttpTolvex::requestIsFinished);

bool sendClip(const QString &path)
{
    CAuctionRecord auction;
    auction.mediaPath = path;
    const CKavlorUser user(nullptr, nullptr, true, CKavlorUser::defaultFields());
    CHttpTolvex request;
    bool isRight = false;
    QEventLoop loop;
    QObject::connect(&request, textResult, &loop, [&](const QString &response, const QString &) {
        isRight = response == QLatin1String("1");
        loop.quit();
    });
    QMetaObject::invokeMethod(
        &loop, [&] { request.createAuction(user, auction); }, Qt::QueuedConnection);
    loop.exec();
    return isRight;
}

bool postForms(int count, int bytes)
{
    Request request;
    int right = 0;
    QEventLoop loop;
    const QByteArray body(bytes, 'f');
    const auto post = [&] { request.postForm(QStringLiteral("1/"), body, true); };
    QObject::connect(
        &request, textResult, &loop,
        [&](const QString &response, const QString &) {
            right += response == QLatin1String("1") ? 1 : 0;
            if (right == count || response.isEmpty())
                loop.quit();
            else
                post();
        },
        Qt::QueuedConnection);
    QMetaObject::invokeMethod(&loop, post, Qt::QueuedConnection);
    loop.exec();
    return right == count;
}

bool fetch(const QString &host, const QString &bytes)
{
    QTemporaryFile file;
    QHttp http;
    http.setHost(host.section(QLatin1Char(':'), 0, 0), QHttp::ConnectionModeHttp,
                 host.section(QLatin1Char(':'), 1).toUShort());
    QEventLoop loop;
    QObject::connect(&http, &QHttp::done, &loop, &QEventLoop::quit);
    const QHttpRequestHeader header(QStringLiteral("POST"),
                                    QStringLiteral("/tolvex/%1/").arg(bytes));
    if (!file.open() || http.request(header, "SUBMIT=Submit", &file) == 0)
        return false;
    loop.exec();
    return file.size() == bytes.toLongLong();
}

// The library without anything around it. What it gets is thrown away.
class BareTransfer
{
public:
    explicit BareTransfer(const QString &url)
        : m_url(url.toLatin1())
        , m_fields(curl_slist_append(nullptr, "Expect:"))
    {
    }
    ~BareTransfer()
    {
        curl_slist_free_all(m_fields);
    }
    BareTransfer(const BareTransfer &) = delete;
    BareTransfer &operator=(const BareTransfer &) = delete;

    bool streamFile(const QString &path) const
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return false;
        CURL *transfer = prepared();
        curl_easy_setopt(transfer, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(file.size()));
        curl_easy_setopt(transfer, CURLOPT_READFUNCTION, &BareTransfer::readFile);
        curl_easy_setopt(transfer, CURLOPT_READDATA, &file);
        return finished(transfer);
    }
    bool post(const QByteArray &body) const
    {
        CURL *transfer = prepared();
        curl_easy_setopt(transfer, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(body.size()));
        curl_easy_setopt(transfer, CURLOPT_POSTFIELDS, body.constData());
        curl_easy_setopt(transfer, CURLOPT_FRESH_CONNECT, 1L);
        curl_easy_setopt(transfer, CURLOPT_FORBID_REUSE, 1L);
        return finished(transfer);
    }

    bool fetch() const
    {
        QTemporaryFile file;
        if (!file.open())
            return false;
        CURL *transfer = prepared();
        curl_easy_setopt(transfer, CURLOPT_COPYPOSTFIELDS, "SUBMIT=Submit");
        curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, &BareTransfer::writeFile);
        curl_easy_setopt(transfer, CURLOPT_WRITEDATA, &file);
        return finished(transfer);
    }

private:
    CURL *prepared() const
    {
        CURL *transfer = curl_easy_init();
        curl_easy_setopt(transfer, CURLOPT_URL, m_url.constData());
        curl_easy_setopt(transfer, CURLOPT_POST, 1L);
        curl_easy_setopt(transfer, CURLOPT_HTTPHEADER, m_fields);
        curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, &BareTransfer::drop);
        return transfer;
    }
    static bool finished(CURL *transfer)
    {
        const bool isRight = curl_easy_perform(transfer) == CURLE_OK;
        curl_easy_cleanup(transfer);
        return isRight;
    }
    static size_t readFile(char *buffer, size_t, size_t size, void *file)
    {
        return size_t(static_cast<QFile *>(file)->read(buffer, qint64(size)));
    }
    static size_t writeFile(char *bytes, size_t, size_t size, void *file)
    {
        return size_t(static_cast<QFile *>(file)->write(bytes, qint64(size)));
    }
    static size_t drop(char *, size_t, size_t size, void *)
    {
        return size;
    }

    const QByteArray m_url;
    curl_slist *const m_fields;
};

// One job in a program of its own: tells what it cost and how much more memory it took at most.
int doJob(const QStringList &job)
{
    const OnlineConnector connector;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const QString &kind = job.at(0);
    const QString &host = job.at(1);
    const QString &what = job.at(2);
    setServiceHost(host);
    const BareTransfer bare(
        QStringLiteral("http://%1/tolvex/%2/")
            .arg(host, kind == QLatin1String("fetch bare") ? what : QStringLiteral("1")));
    resetPeakMemory();
    const qint64 memory = peakMemory();
    bool isRight = false;
    const double cost = costOf([&] {
        if (kind == QLatin1String("send"))
            isRight = sendClip(what);
        else if (kind == QLatin1String("stream"))
            isRight = bare.streamFile(what);
        else if (kind == QLatin1String("fetch"))
            isRight = fetch(host, what);
        else if (kind == QLatin1String("fetch bare"))
            isRight = bare.fetch();
        else if (kind == QLatin1String("post"))
            isRight = postForms(what.toInt(), 50);
        else if (kind == QLatin1String("post bare"))
            for (int i = what.toInt(); i > 0; --i)
                isRight = bare.post(QByteArray(50, 'f'));
    });
    QTextStream(stdout) << cost << ' ' << peakMemory() - memory;
    return isRight ? 0 : 1;
}

const QString jobOption = QStringLiteral("--job");

struct JobCost
{
    double processorTime = 0; // 0 = it went wrong
    double memory = -1;       // MB
};

JobCost costOfJob(const QString &kind, const QString &host, const QString &what)
{
    const ProgramCost told =
        costOfProgram({QCoreApplication::applicationFilePath(), jobOption, kind, host, what});
    const QList<QByteArray> figures = told.output.split(' ');
    if (!told.isRight || figures.size() != 2)
        return {};
    return {figures.at(0).toDouble(), figures.at(1).toDouble() / 1024};
}

double costOfCurl(const QStringList &options)
{
    const ProgramCost cost = costOfProgram(
        QStringList{QStringLiteral("curl"), QStringLiteral("-s"), QStringLiteral("-o")} + options);
    return cost.isRight ? cost.processorTime : 0;
}

class Bench
{
public:
    explicit Bench(Table *table)
        : m_table(table)
    {
    }

    bool run();

private:
    QString url(const QString &bytes) const
    {
        return QStringLiteral("http://%1/tolvex/%2/").arg(m_host, bytes);
    }
    QString clip(int megabytes) const
    {
        return m_folder.filePath(QStringLiteral("%1.mp4").arg(megabytes));
    }
    Table::Side side(const QString &name, const QString &kind) const
    {
        return {name, [this, kind](int megabytes) {
                    return costOfJob(kind, m_host, clip(megabytes)).processorTime;
                }};
    }
    void measureUploads(const QList<int> &sizes);
    void measureForms();
    double longestForm() const;
    void measureReplies();

    Table *m_table;
    const Sink m_sink;
    const QString m_host = QStringLiteral("127.0.0.1:%1").arg(m_sink.port());
    const QTemporaryDir m_folder;
    const bool m_hasCurl = !QStandardPaths::findExecutable(QStringLiteral("curl")).isEmpty();
};

void Bench::measureUploads(const QList<int> &sizes)
{
    const QString what = QStringLiteral("a clip of %1 MB sent");
    for (const int size : sizes) // into the system's cache of files
        costOfJob(QStringLiteral("stream"), m_host, clip(size));
    m_table->compareSizes(what, 1.3, sizes, side({}, QStringLiteral("send")),
                          side(QStringLiteral("library, streaming"), QStringLiteral("stream")));
    const int largest = sizes.constLast();
    const QString file = clip(largest);
    m_table->limit(QStringLiteral("memory for the clip, of its size"),
                   m_table->isTiny() ? 100 : 1.15, QStringLiteral("files"), [&] {
                       return costOfJob(QStringLiteral("send"), m_host, file).memory / largest;
                   });
    if (!m_hasCurl)
        return;
    const auto own = [&] { return costOfJob(QStringLiteral("send"), m_host, file).processorTime; };
    m_table->compare(what.arg(largest), 0, own, QStringLiteral("curl --data-binary"), [&] {
        return costOfCurl({QStringLiteral("/dev/null"), QStringLiteral("--data-binary"),
                           QLatin1Char('@') + file, url(QStringLiteral("1"))});
    });
    m_table->compare(what.arg(largest), 0, own, QStringLiteral("curl -F"), [&] {
        return costOfCurl({QStringLiteral("/dev/null"), QStringLiteral("-F"),
                           QStringLiteral("MediaFile=@") + file, url(QStringLiteral("1"))});
    });
}

void Bench::measureForms()
{
    const auto posted = [this](const QString &kind) {
        return [this, kind](int count) {
            return costOfJob(kind, m_host, QString::number(count)).processorTime;
        };
    };
    m_table->compareSizes(
        QStringLiteral("%1 small form requests in a row"), 2,
        {m_table->scaled(100, 2), m_table->scaled(1000, 3), m_table->scaled(3000, 4)},
        {QString(), posted(QStringLiteral("post"))},
        {QStringLiteral("library"), posted(QStringLiteral("post bare"))});
}

// The longest of the usual times at any size: a wait for an acknowledgement comes every time.
double Bench::longestForm() const
{
    const OnlineConnector connector;
    setServiceHost(m_host);
    const int count = m_table->scaled(9, 1);
    double longest = 0;
    for (int bytes = 1; bytes <= 100000; bytes *= 10) {
        QList<double> times;
        for (int i = 0; i < count; ++i) {
            QElapsedTimer timer;
            timer.start();
            postForms(1, bytes);
            times.append(double(timer.nsecsElapsed()) / 1e6);
        }
        longest = qMax(longest, middle(times));
    }
    return longest;
}

void Bench::measureReplies()
{
    const QString bytes = QString::number(m_table->scaled(64, 1) * megabyte);
    const QString file = m_folder.filePath(QStringLiteral("reply"));
    const QList<int> sizes{m_table->scaled(4, 1), m_table->scaled(16, 2), m_table->scaled(64, 3)};
    const auto size = [](int megabytes) { return QString::number(megabytes * megabyte); };
    const auto fetched = [&](const QString &kind) {
        return [&, kind](int megabytes) {
            return costOfJob(kind, m_host, size(megabytes)).processorTime;
        };
    };
    const Table::Side own{QString(), fetched(QStringLiteral("fetch"))};
    const QString what = QStringLiteral("a reply of %1 MiB into a file");
    m_table->compareSizes(what, 1.5, sizes, own,
                          {QStringLiteral("library"), fetched(QStringLiteral("fetch bare"))});
    m_table->limit(QStringLiteral("memory for the reply"), 8, QStringLiteral("MB"),
                   [&] { return costOfJob(QStringLiteral("fetch"), m_host, bytes).memory; });
    if (!m_hasCurl)
        return;
    m_table->compareSizes(
        what, 1.5, sizes, own,
        {QStringLiteral("curl -o, less its start"), [&](int megabytes) {
             const QStringList post{file, QStringLiteral("-d"), QStringLiteral("SUBMIT=Submit")};
             const double start = costOfCurl(post + QStringList{url(QStringLiteral("1"))});
             const double whole = costOfCurl(post + QStringList{url(size(megabytes))});
             return qMax(whole - start, 0.01); // little is left of a little reply
         }});
}

bool Bench::run()
{
    const QList<int> sizes = m_table->isTiny() ? QList<int>{1, 2, 3} : QList<int>{20, 60, 200};
    for (const int megabytes : sizes) {
        QFile file(clip(megabytes));
        if (!file.open(QIODevice::WriteOnly) || !file.resize(megabytes * megabyte))
            return false;
    }
    measureUploads(sizes);
    measureForms();
    m_table->limitOnce(QStringLiteral("a form of 1 B to 100 kB until its reply, the slowest size"),
                       mostStall, QStringLiteral("ms"), [this] { return longestForm(); });
    measureReplies();
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 5 && arguments.at(1) == jobOption)
        return doJob(arguments.mid(2));
    Table table(app, QStringLiteral("Sending and fetching, in milliseconds of processor time"));
    return Bench(&table).run() ? table.exitCode() : 1;
}
