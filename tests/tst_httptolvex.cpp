// SPDX-License-Identifier: MIT

#include "auctionrecord.h"
#include "httptolvex.h"
#include "kavlornotificationoptions.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "processmemory.h"
#include "scriptedservice.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <cerrno>
#include <climits>
#include <functional>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// The parts of the request object that its subclasses see.
class Probe : public CHttpTolvex
{
public:
    using CHttpTolvex::postForm;
};

CKavlorUser member(const QString &password)
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = QStringLiteral("member1");
    fields[CKavlorUser::Password] = password;
    fields[CKavlorUser::FirstName] = QStringLiteral("Ren\u00e9");
    fields[CKavlorUser::LastName] = QStringLiteral("O'Hara");
    fields[CKavlorUser::EmailAddress] = QStringLiteral("m.1+x@example.org");
    fields[CKavlorUser::PaypalAddress] = QStringLiteral("pay_1@example.org");
    fields[CKavlorUser::TwitterUsername] = QStringLiteral("tw-1");
    fields[CKavlorUser::TwitterPassword] = QStringLiteral("a=b");
    return {nullptr, nullptr, true, fields};
}

CKavlorUser nobody()
{
    return {nullptr, nullptr, true, {}};
}

CAuctionRecord photoAuction()
{
    CAuctionRecord auction;
    auction.mediaPath = QStringLiteral(TEST_DATA "/photo.jpg");
    auction.caption = QStringLiteral("Harbour = \"red\"");
    auction.description = QStringLiteral("Two lines:\nthe second & last, caf\u00e9");
    auction.category = 112;
    auction.captureDate = QDateTime(QDate(2011, 7, 13), QTime(13, 5, 9));
    auction.startPrice = 5;
    auction.reservePrice = 25;
    auction.buyItNowPrice = 4000000000;
    return auction;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The boundary that a multipart request announces.
QByteArray boundaryOf(const ScriptedService::Request &request)
{
    return request.header("Content-type").mid(qstrlen("multipart/form-data, boundary="));
}

using Operation = std::function<void(CHttpTolvex &)>;

// A memory card that is about to fail: reading the named file goes well up to a byte only.
struct FailingCard
{
    QByteArray file; // empty = no card fails
    qint64 goodBytes = 0;
    int error = 0; // 0 = the file ends there, whatever its length is said to be
};
FailingCard failingCard;

// Lets this process have so much more memory than it has now, for as long as it lives.
class MemoryLimit
{
public:
    explicit MemoryLimit(qint64 more)
    {
        const QByteArray pages = contents(QStringLiteral("/proc/self/statm")).split(' ').first();
        getrlimit(RLIMIT_AS, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = static_cast<rlim_t>(pages.toLongLong() * sysconf(_SC_PAGESIZE) + more);
        setrlimit(RLIMIT_AS, &limit);
    }
    ~MemoryLimit()
    {
        setrlimit(RLIMIT_AS, &m_before);
    }
    Q_DISABLE_COPY_MOVE(MemoryLimit)

private:
    rlimit m_before = {};
};

} // namespace

// In place of the system's own function, for the toolkit too.
extern "C" ssize_t read(int descriptor, void *data, size_t size)
{
    if (!failingCard.file.isEmpty()) {
        char name[PATH_MAX] = {};
        const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
        if (readlink(link.constData(), name, sizeof(name) - 1) > 0 && failingCard.file == name) {
            const qint64 good = failingCard.goodBytes - lseek(descriptor, 0, SEEK_CUR);
            if (good <= 0) {
                errno = failingCard.error;
                return failingCard.error == 0 ? 0 : -1;
            }
            size = qMin(size, static_cast<size_t>(good));
        }
    }
    return syscall(SYS_read, descriptor, data, size);
}

Q_DECLARE_METATYPE(Operation)

class tst_HttpTolvex : public TestCase
{
    Q_OBJECT

private slots:
    void anUploadHoldsTheFileOnce();
    void requestBytes_data();
    void requestBytes();
    void bodyEndsWithTheClosingBoundary();
    void everyUploadHasABoundaryOfItsOwn();
    void aLargeFileArrivesWhole();
    void unreadableMediaFileIsReportedAndNothingSent_data();
    void unreadableMediaFileIsReportedAndNothingSent();
    void aFailingCardIsReportedAndNothingSent_data();
    void aFailingCardIsReportedAndNothingSent();
    void aFileTooLargeForTheMemoryIsReportedAndNothingSent();
    void emptyOperationPathIsSentAsASlash();
    void pathIsEncoded();
    void userOfTheHostGoesWithTheRequest();
    void onlyTheFirstFourOptionsAreSent();

private:
    static void expectRefusal(const QString &path);

    OnlineConnector m_connector;
};

// The first, before others have made the process larger. What is sent is not copied again: the
// peak is looked at before anybody has received it.
void tst_HttpTolvex::anUploadHoldsTheFileOnce()
{
    constexpr qint64 size = 100LL * 1024 * 1024;
    QTemporaryFile media(QDir::tempPath() + QStringLiteral("/XXXXXX.mp4"));
    QVERIFY(media.open() && media.resize(size));
    ScriptedService service;
    CHttpTolvex http;
    CAuctionRecord auction;
    auction.mediaPath = media.fileName();
    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    http.createAuction(nobody(), auction);
    const qint64 spent = (peakMemory() - before) * 1024;
    QVERIFY2(spent < size * 5 / 4, QByteArray::number(spent).constData());
}

void tst_HttpTolvex::requestBytes_data()
{
    const QString user = QStringLiteral("member1");
    const QString password = QStringLiteral("secret");
    const QString none;
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<bool>("isUpload");
    const auto row = [](const char *name, const Operation &operation, bool isUpload = false) {
        QTest::newRow(name) << operation << isUpload;
    };

    row("GetServiceTerms", [](CHttpTolvex &http) { http.getServiceTerms(); });
    row("GetCountryList", [](CHttpTolvex &http) { http.getCountryList(); });
    row("GetCategoryList", [=](CHttpTolvex &http) { http.getCategoryList(user, password); });
    row("GetNotificationOptions",
        [=](CHttpTolvex &http) { http.getNotificationOptions(user, password); });
    row("SetNotificationOptions", [=](CHttpTolvex &http) {
        const CKavlorNotificationOptions options(nullptr, {true, false, false, true}, true);
        http.setNotificationOptions(user, password, options);
    });
    row("ModifyAuction",
        [=](CHttpTolvex &http) { http.modifyAuction(user, password, 4711, 25, 4000000000); });
    row("ModifyAuction-noPrices",
        [=](CHttpTolvex &http) { http.modifyAuction(user, password, 4711, 0, 0); });
    row("GetMyAuctions", [=](CHttpTolvex &http) { http.getMyAuctions(user, password); });
    row("ValidateLogin", [=](CHttpTolvex &http) { http.validateLogin(user, password); });
    row("ValidateLogin-oddPassword", [=](CHttpTolvex &http) {
        http.validateLogin(QStringLiteral("m.1@example.org"),
                           QStringLiteral(" &%+=@.~\"'/?#-_\u00e9\u20ac\u65e5"));
    });
    row("ValidateLogin-empty", [=](CHttpTolvex &http) { http.validateLogin(none, none); });
    row("GetRawMedia", [=](CHttpTolvex &http) { http.getRawMedia(user, password, 4711); });
    row("GetThumbnail", [=](CHttpTolvex &http) { http.getThumbnail(user, password, 4711); });
    row("GetThumbnail-highestId",
        [=](CHttpTolvex &http) { http.getThumbnail(user, password, 4294967295); });
    row("CreateAccount",
        [](CHttpTolvex &http) { http.createAccount(member(QStringLiteral("s e&c"))); });
    row("CreateAccount-empty", [](CHttpTolvex &http) { http.createAccount(nobody()); });
    row("ModifyAccount", [](CHttpTolvex &http) {
        http.modifyAccount(member(QStringLiteral("old one")), member(QStringLiteral("s e&c")));
    });
    row("ModifyAccount-empty", [](CHttpTolvex &http) { http.modifyAccount(nobody(), nobody()); });

    const auto upload = [&row](const char *name, const CAuctionRecord &auction) {
        row(
            name,
            [=](CHttpTolvex &http) {
                http.createAuction(member(QStringLiteral("s e&c")), auction);
            },
            true);
    };
    upload("CreateAuction", photoAuction());

    CAuctionRecord auction;
    auction.mediaPath = photoAuction().mediaPath;
    auction.category = -1;
    auction.startPrice = 0;
    upload("CreateAuction-noPrices", auction);

    auction.category = 112;
    auction.startPrice = 1;
    auction.captureDate = photoAuction().captureDate;
    auction.description = QStringLiteral("\u65e5\u20ac\u00fc");
    auction.caption = QStringLiteral("\u2265 5");
    upload("CreateAuction-notLatin1", auction);

    auction.mediaPath = QDir::temp().filePath(QStringLiteral("EMPTY.JPG"));
    QFile empty(auction.mediaPath);
    QVERIFY(empty.open(QIODevice::WriteOnly));
    auction.description = QStringLiteral("d");
    auction.caption = QStringLiteral("c");
    upload("CreateAuction-emptyFile", auction);
}

void tst_HttpTolvex::requestBytes()
{
    QFETCH(Operation, operation);
    QFETCH(bool, isUpload);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QByteArray expected = contents(QStringLiteral(TEST_DATA "/requests/") + name);
    QVERIFY(!expected.isEmpty());

    ScriptedService service;
    service.expect(name.section(QLatin1Char('-'), 0, 0).toLatin1(), "ok");
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    operation(http);
    QTRY_COMPARE(results.size(), 1);
    QCOMPARE(results.constFirst(), QVariantList({QStringLiteral("ok"), QString()}));
    QVERIFY2(service.isDone(), service.report());

    const ScriptedService::Request request = service.requests().constFirst();
    expected.replace("@HOST@", service.host().toLatin1());
    if (isUpload) {
        const QByteArray boundary = boundaryOf(request);
        static const QRegularExpression hex(QStringLiteral("^[0-9a-f]{32}$"));
        QVERIFY2(hex.match(QString::fromLatin1(boundary)).hasMatch(), boundary);
        expected.replace("@BOUNDARY@", boundary);
        const bool isEmpty = name.endsWith(QLatin1String("emptyFile"));
        expected.replace("@MEDIA@", isEmpty ? "" : contents(photoAuction().mediaPath));
    }
    QCOMPARE(request.raw, expected);
}

void tst_HttpTolvex::bodyEndsWithTheClosingBoundary()
{
    ScriptedService service;
    service.expect("CreateAuction", "1");
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    http.createAuction(nobody(), photoAuction());
    QTRY_COMPARE(results.size(), 1);
    const ScriptedService::Request request = service.requests().constFirst();
    QVERIFY(request.body.endsWith("\r\n--" + boundaryOf(request) + "--\r\n"));
    QVERIFY(request.body.contains("\r\nContent-length: "));
    QCOMPARE(request.body.size(), request.header("Content-Length").toLongLong());
}

void tst_HttpTolvex::everyUploadHasABoundaryOfItsOwn()
{
    ScriptedService service;
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    for (int i = 1; i <= 2; ++i) {
        service.expect("CreateAuction", "1");
        http.createAuction(nobody(), photoAuction());
        QTRY_COMPARE(results.size(), i);
    }
    QVERIFY(boundaryOf(service.requests().at(0)) != boundaryOf(service.requests().at(1)));
}

void tst_HttpTolvex::aLargeFileArrivesWhole()
{
    QTemporaryDir folder;
    QFile media(folder.filePath(QStringLiteral("clip.mp4")));
    QVERIFY(media.open(QIODevice::WriteOnly));
    QByteArray bytes(3 * 1024 * 1024 + 1, '\0');
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    QCOMPARE(media.write(bytes), bytes.size());
    media.close();

    ScriptedService service;
    service.expect("CreateAuction", "1");
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    CAuctionRecord auction;
    auction.mediaPath = media.fileName();
    http.createAuction(nobody(), auction);
    QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, 30000);
    const ScriptedService::Request request = service.requests().constFirst();
    QVERIFY(request.body.endsWith(bytes + "\r\n--" + boundaryOf(request) + "--\r\n"));
}

void tst_HttpTolvex::unreadableMediaFileIsReportedAndNothingSent_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral("/nonexistent/photo.jpg");
    QTest::newRow("folder") << QDir::tempPath();
    // Both say that they have no bytes at all.
    QTest::newRow("longer than announced") << QStringLiteral("/proc/self/status");
    QTest::newRow("cannot be read") << QStringLiteral("/proc/self/mem");
}

void tst_HttpTolvex::unreadableMediaFileIsReportedAndNothingSent()
{
    QFETCH(QString, path);
    expectRefusal(path);
}

void tst_HttpTolvex::expectRefusal(const QString &path)
{
    ScriptedService service;
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    CAuctionRecord auction;
    auction.mediaPath = path;
    http.createAuction(nobody(), auction);
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.constFirst(),
             QVariantList(
                 {QStringLiteral("I/O issue"), QStringLiteral("Unable to read a posted file")}));

    // The next request is the first one on the wire.
    service.expect("GetServiceTerms", "terms");
    http.getServiceTerms();
    QTRY_COMPARE(results.size(), 2);
    QVERIFY2(service.isDone(), service.report());
    QCOMPARE(service.connectionCount(), 1);
}

void tst_HttpTolvex::aFailingCardIsReportedAndNothingSent_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("an error half way") << EIO;
    QTest::newRow("an end half way") << 0;
}

void tst_HttpTolvex::aFailingCardIsReportedAndNothingSent()
{
    QFETCH(int, error);
    QTemporaryFile media(QDir::tempPath() + QStringLiteral("/XXXXXX.jpg"));
    QVERIFY(media.open() && media.resize(300000));
    const QFileInfo file(media.fileName());
    failingCard = {QFile::encodeName(file.canonicalFilePath()), 150000, error};
    expectRefusal(media.fileName());
    failingCard = {};
}

void tst_HttpTolvex::aFileTooLargeForTheMemoryIsReportedAndNothingSent()
{
    QTemporaryFile media(QDir::tempPath() + QStringLiteral("/XXXXXX.mp4"));
    QVERIFY(media.open() && media.resize(4LL * 1024 * 1024 * 1024));
    const MemoryLimit limit(1024LL * 1024 * 1024);
    expectRefusal(media.fileName());
}

void tst_HttpTolvex::emptyOperationPathIsSentAsASlash()
{
    ScriptedService service;
    ScriptedService::Step step;
    step.bytes = ScriptedService::reply("ok");
    service.expect(step);
    Probe http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    http.postForm(QString(), "SUBMIT=Submit", true);
    QTRY_COMPARE(results.size(), 1);
    QCOMPARE(service.requests().constFirst().requestLine, QByteArray("POST /tolvex/ HTTP/1.1"));
}

void tst_HttpTolvex::pathIsEncoded()
{
    ScriptedService service;
    ScriptedService::Step step;
    step.bytes = ScriptedService::reply("ok");
    service.expect(step);
    Probe http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    http.postForm(QStringLiteral("Get \u00fc[1]/"), "SUBMIT=Submit", true);
    QTRY_COMPARE(results.size(), 1);
    QCOMPARE(service.requests().constFirst().requestLine,
             QByteArray("POST /tolvex/Get%20%C3%BC%5B1%5D/ HTTP/1.1"));
}

void tst_HttpTolvex::userOfTheHostGoesWithTheRequest()
{
    ScriptedService service;
    setServiceHost(QStringLiteral("m1:secret@") + service.host());
    service.expect("GetServiceTerms", "terms");
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    http.getServiceTerms();
    QTRY_COMPARE(results.size(), 1);
    const ScriptedService::Request request = service.requests().constFirst();
    QCOMPARE(request.header("Authorization"), QByteArray("Basic bTE6c2VjcmV0"));
    QCOMPARE(request.header("Host"), service.host().toLatin1());
}

void tst_HttpTolvex::onlyTheFirstFourOptionsAreSent()
{
    CKavlorNotificationOptions options;
    options.parse(QStringLiteral("17\n1,0,1,1,m1@example.org"));
    ScriptedService service;
    service.expect("SetNotificationOptions", "17");
    CHttpTolvex http;
    QSignalSpy results(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    http.setNotificationOptions(QStringLiteral("m"), QStringLiteral("p"), options);
    QTRY_COMPARE(results.size(), 1);
    QCOMPARE(service.requests().constFirst().body,
             QByteArray("Username=m&Password=p&NotifyOnBid=1&NotifyOnAuctionEnd=0&NotifyOnView=1"
                        "&NotifyOnBuyerQuestion=1&SUBMIT=Submit"));
}

KAVLOR_TEST_MAIN(tst_HttpTolvex)

#include "tst_httptolvex.moc"
