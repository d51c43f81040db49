// SPDX-License-Identifier: MIT

#include "auctionrecord.h"
#include "httptolvex.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "processmemory.h"
#include "resultlog.h"
#include "scriptedservice.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "testpaths.h"

#include <QBuffer>
#include <QCursor>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <QtEndian>

#include <array>
#include <memory>

#include <zlib.h>

namespace {

const QString timeOut = ResultLog::text(QStringLiteral("ERROR:timeout"),
                                        QStringLiteral("Unable to get a server response"));
const QString noConnection = ResultLog::text(QStringLiteral("ERROR:no connection"),
                                             QStringLiteral("Unable to create a connection"));
const QString empty = ResultLog::text(QString(), QString());

void getText(CHttpTolvex *http)
{
    http->validateLogin(QStringLiteral("m1"), QStringLiteral("secret"));
}

void getImage(CHttpTolvex *http)
{
    http->getThumbnail(QStringLiteral("m1"), QStringLiteral("secret"), 17);
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray photo()
{
    return contents(QStringLiteral(TEST_DATA "/photo.jpg"));
}

// The photo with another size in its header.
QByteArray photoThatClaims(int width, int height)
{
    QByteArray bytes = photo();
    const qsizetype frame = bytes.indexOf("\xff\xc0");
    bytes[frame + 5] = static_cast<char>(height >> 8);
    bytes[frame + 6] = static_cast<char>(height & 0xff);
    bytes[frame + 7] = static_cast<char>(width >> 8);
    bytes[frame + 8] = static_cast<char>(width & 0xff);
    return bytes;
}

QByteArray encoded(int width, int height, const char *format)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    const QByteArray checked = type + data;
    const auto bigEndian = [](quint32 number) {
        QByteArray bytes(4, '\0');
        qToBigEndian(number, bytes.data());
        return bytes;
    };
    const uLong sum = crc32(0, reinterpret_cast<const Bytef *>(checked.constData()),
                            static_cast<uInt>(checked.size()));
    return bigEndian(static_cast<quint32>(data.size())) + checked
        + bigEndian(static_cast<quint32>(sum));
}

// A small PNG with so many chunks put in behind its header.
QByteArray pngWith(const QByteArray &type, const QByteArray &data, int count)
{
    constexpr qsizetype header = 33; // with the signature
    return encoded(40, 20, "PNG").insert(header, pngChunk(type, data).repeated(count));
}

QByteArray deflated(qsizetype size)
{
    return qCompress(QByteArray(size, 'x'), 9).mid(4);
}

// Counts what the mouse does over a window.
class InputCounter : public QObject
{
public:
    explicit InputCounter(QObject *window)
    {
        window->installEventFilter(this);
    }

    int count() const
    {
        return m_count;
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MouseMove)
            ++m_count;
        return false;
    }

private:
    int m_count = 0;
};

} // namespace

class tst_HttpTolvexOutcomes : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void reply_data();
    void reply();
    void bytesOfATextReply_data();
    void bytesOfATextReply();
    void htmlToAnImageOperationIsANullPixmap();
    void image_data();
    void image();
    void absurdImageIsRefusedWithoutSpendingMemory_data();
    void absurdImageIsRefusedWithoutSpendingMemory();
    void textsInAPictureAreBounded_data();
    void textsInAPictureAreBounded();
    void contentTypeOfAnEarlierReplyDoesNotStay();

    void brokenTransfer_data();
    void brokenTransfer();
    void refusedConnectionToATextOperation();
    void refusedConnectionToAnImageOperation();
    void tempFileThatCannotBeCreated();
    void tempFileThatCannotBeReopened();
    void withoutHostTheRequestFails();

    void timeOutIsNotEarly();
    void timeOutAndTheLateReply();
    void cancelledWithATextItComesWithTheLateReply();
    void cancelTwiceIsOneResult();
    void cancelledAgainWithATextTheLateReplyBringsIt();
    void uploadHasItsOwnTimeOut();
    void idleObjectReportsTheOldTimeOut();
    void refusedStatusSilencesTheTimeOut();
    void oldTimeOutCancelsALaterRequest();
    void afterATimeOutTheObjectSendsAgain();
    void uploadAfterATimeOutIsANewRequest();
    void newRequestDropsTheFileOfTheOneBefore();

    void everyRequestIsPostedOnce_data();
    void everyRequestIsPostedOnce();

    void destroyedInFlightLeavesNothing();
    void destroyedByItsResult_data();
    void destroyedByItsResult();
    void noTempFileIsLeft_data();
    void noTempFileIsLeft();
    void severalObjectsAtOnce();

    void connectedStatesSendAtOnce_data();
    void connectedStatesSendAtOnce();
    void connectionThatNeverComesIsOneResultAndNoTraffic_data();
    void connectionThatNeverComesIsOneResultAndNoTraffic();
    void withoutConnectionManagerThereIsNoConnection();
    void connectionThatComesLetsTheRequestGo();
    void lostConnectionIsAskedForAgain();
    void waitThatFailedDoesNotEndTheNext();
    void deletedWhileItWaits();
    void waitKeepsUserInputOutAndTimersAlive();

private:
    void expect(const QByteArray &bytes, ScriptedService::Then then = ScriptedService::KeepOpen);
    void upload(CHttpTolvex *http, qint64 size = 1024LL * 1024);
    void makeHttp();

    QTemporaryDir m_folder;
    int m_filesBefore = 0;
    std::unique_ptr<OnlineConnector> m_connector;
    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<CHttpTolvex> m_http;
    std::unique_ptr<ResultLog> m_log;
};

void tst_HttpTolvexOutcomes::init()
{
    TestCase::init();
    m_connector = std::make_unique<OnlineConnector>();
    m_service = std::make_unique<ScriptedService>();
    m_filesBefore = temporaryFileCount();
    makeHttp();
}

void tst_HttpTolvexOutcomes::cleanup()
{
    m_http.reset();
    QVERIFY2(m_service->isDone(), m_service->report());
    m_service.reset();
    QCOMPARE(temporaryFileCount(), m_filesBefore);
}

void tst_HttpTolvexOutcomes::makeHttp()
{
    m_http = std::make_unique<CHttpTolvex>();
    m_log = std::make_unique<ResultLog>(m_http.get());
}

void tst_HttpTolvexOutcomes::expect(const QByteArray &bytes, ScriptedService::Then then)
{
    ScriptedService::Step step;
    step.bytes = bytes;
    step.then = then;
    m_service->expect(step);
}

void tst_HttpTolvexOutcomes::upload(CHttpTolvex *http, qint64 size)
{
    QFile media(m_folder.filePath(QStringLiteral("clip.mp4")));
    QVERIFY(media.open(QIODevice::WriteOnly));
    QVERIFY(media.resize(size));
    media.close();
    CAuctionRecord auction;
    auction.mediaPath = media.fileName();
    http->createAuction(CKavlorUser(nullptr, nullptr, true, CKavlorUser::defaultFields()), auction);
}

void tst_HttpTolvexOutcomes::reply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<QString>("response");
    const QString body = QStringLiteral("body");

    QTest::newRow("length") << ScriptedService::reply("body") << false << body;
    QTest::newRow("length, then closed") << ScriptedService::reply("body") << true << body;
    QTest::newRow("no length") << QByteArray("HTTP/1.1 200 OK\r\n\r\nbody") << true << body;
    QTest::newRow("HTTP/1.0") << QByteArray("HTTP/1.0 200 OK\r\n\r\nbody") << true << body;
    QTest::newRow("chunks") << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                          "2\r\nbo\r\n2;x=y\r\ndy\r\n0\r\nTrailer: x\r\n\r\n")
                            << false << body;
    QTest::newRow("after 100") << "HTTP/1.1 100 Continue\r\n\r\n" + ScriptedService::reply("body")
                               << false << body;
    QTest::newRow("another type") << ScriptedService::reply("body", "text/html; charset=utf-8")
                                  << false << body;
    QTest::newRow("image type") << ScriptedService::reply("body", "image/jpeg") << false << body;
    QTest::newRow("no type") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody")
                             << false << body;
    QTest::newRow("empty") << ScriptedService::reply("") << false << QString();
    for (const char *status : {"301", "302", "303", "307"}) {
        QTest::newRow(status) << ScriptedService::reply(
            "body", "text/plain\r\nLocation: /tolvex/Elsewhere/", status + QByteArray(" Moved"))
                              << false << body;
    }
    for (const char *status : {"201 Created", "204 No Content", "206 Partial Content", "304 Same",
                               "308 Moved", "400 Bad", "403 No", "404 Not Found", "407 Proxy",
                               "413 Too much", "500 Broken", "503 Later", "999 Odd"}) {
        const QByteArray text =
            status == QByteArray("204 No Content") || status == QByteArray("304 Same")
            ? QByteArray()
            : QByteArray("reason");
        QTest::newRow(status) << ScriptedService::reply(text, "text/plain", status) << false
                              << QString();
    }
    QTest::newRow("401 with a challenge") << ScriptedService::reply(
        "reason", "text/plain\r\nWWW-Authenticate: Basic realm=\"x\"", "401 Who?")
                                          << false << QString();
    QTest::newRow("401 with an unknown challenge")
        << ScriptedService::reply("reason", "text/plain\r\nWWW-Authenticate: Odd x", "401 Who?")
        << false << QString();
    QTest::newRow("ERROR text") << ScriptedService::reply("ERROR: no such member") << false
                                << QStringLiteral("ERROR: no such member");
}

void tst_HttpTolvexOutcomes::reply()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, closes);
    QFETCH(QString, response);
    expect(bytes, closes ? ScriptedService::Close : ScriptedService::KeepOpen);
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(response, QString()));
    QCOMPARE(m_service->requests().size(), 1);
}

void tst_HttpTolvexOutcomes::bytesOfATextReply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("ASCII") << QByteArray("1,Cars\n2,Boats\n")
                           << QStringLiteral("1,Cars\n2,Boats\n");
    QTest::newRow("line ends stay") << QByteArray("a\r\nb\rc") << QStringLiteral("a\r\nb\rc");
    QTest::newRow("UTF-8") << QByteArray("caf\xc3\xa9 \xe6\x97\xa5")
                           << QStringLiteral("caf\u00e9 \u65e5");
    QTest::newRow("not UTF-8") << QByteArray("caf\xe9!") << QStringLiteral("caf\ufffd!");
    QTest::newRow("NUL") << QByteArray("a\0b", 3) << QString::fromLatin1("a\0b", 3);
    QTest::newRow("large") << QByteArray(300000, 'x') << QString(300000, QLatin1Char('x'));
}

void tst_HttpTolvexOutcomes::bytesOfATextReply()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    m_service->expect("ValidateLogin", bytes);
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->at(0).response, text);
    QCOMPARE(m_log->at(0).error, QString());
}

void tst_HttpTolvexOutcomes::htmlToAnImageOperationIsANullPixmap()
{
    expect(ScriptedService::reply("<html>no</html>", "text/html"));
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QVERIFY(m_log->at(0).isImage);
    QVERIFY(m_log->at(0).image.isNull());
    QCOMPARE(m_log->at(0).error, QString());
}

void tst_HttpTolvexOutcomes::image_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QString>("result");
    const QString null = QStringLiteral("image 0x0 | ");
    QTest::newRow("small") << photo() << QByteArray("image/jpeg")
                           << QStringLiteral("image 220x165 | ");
    QTest::newRow("wrong type") << photo() << QByteArray("application/octet-stream")
                                << QStringLiteral("image 220x165 | ");
    QTest::newRow("plain text with a character set")
        << QByteArray("ERROR: none") << QByteArray("text/plain; charset=utf-8") << null;
    QTest::newRow("plain text in capitals")
        << QByteArray("ERROR: none") << QByteArray("Text/Plain") << null;
    QTest::newRow("plain text") << QByteArray("ERROR: none") << QByteArray("text/plain")
                                << ResultLog::text(QStringLiteral("ERROR: none"), QString());
    QTest::newRow("empty") << QByteArray() << QByteArray("image/jpeg") << null;
    QTest::newRow("broken") << encoded(40, 20, "PNG").left(60) << QByteArray("image/png") << null;
    QTest::newRow("no image") << QByteArray("not an image") << QByteArray("image/png") << null;
    QTest::newRow("PNG, upright") << encoded(50, 100, "PNG") << QByteArray("image/png")
                                  << QStringLiteral("image 110x220 | ");
    QTest::newRow("square") << encoded(500, 500, "PNG") << QByteArray("image/png")
                            << QStringLiteral("image 220x220 | ");
    QTest::newRow("a line") << encoded(3000, 1, "PNG") << QByteArray("image/png")
                            << QStringLiteral("image 220x1 | ");
    QTest::newRow("BMP") << encoded(40, 20, "BMP") << QByteArray("image/bmp")
                         << QStringLiteral("image 220x110 | ");
    QTest::newRow("as a camera makes it") << encoded(4000, 3000, "JPEG") << QByteArray("image/jpeg")
                                          << QStringLiteral("image 220x165 | ");
}

void tst_HttpTolvexOutcomes::image()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, type);
    QFETCH(QString, result);
    expect(ScriptedService::reply(body, type));
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), result);
}

void tst_HttpTolvexOutcomes::absurdImageIsRefusedWithoutSpendingMemory_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("JPEG") << photoThatClaims(20000, 20000);
    QTest::newRow("PPM") << QByteArray("P6\n20000 20000\n255\n") + QByteArray(1000, 'x');
    QImage bits(20000, 20000, QImage::Format_Mono);
    bits.fill(0);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    bits.save(&png, "PNG");
    QTest::newRow("PNG") << png.data();
}

void tst_HttpTolvexOutcomes::absurdImageIsRefusedWithoutSpendingMemory()
{
    QFETCH(QByteArray, body);
    expect(ScriptedService::reply(body, "image/x"));
    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), QStringLiteral("image 0x0 | "));
    QVERIFY(peakMemory() - before < 64LL * 1024);
}

void tst_HttpTolvexOutcomes::textsInAPictureAreBounded_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("result");
    const QString refused = QStringLiteral("image 0x0 | ");
    const QString shown = QStringLiteral("image 220x110 | ");
    // The largest that the reader takes of one chunk.
    const QByteArray large = deflated(7'900'000);
    const QByteArray zText = QByteArray("key\0\0", 5) + large;
    const QByteArray iText = QByteArray("key\0\1\0en\0key\0", 13) + large;
    const QByteArray plainText = QByteArray("key\0", 4) + QByteArray(100000, 'x');
    QTest::newRow("70 MB in 68 kB") << pngWith("zTXt", zText, 9) << refused;
    QTest::newRow("700 MB in 684 kB") << pngWith("zTXt", zText, 89) << refused;
    QTest::newRow("70 MB of international text") << pngWith("iTXt", iText, 9) << refused;
    QTest::newRow("70 MB in one chunk")
        << pngWith("zTXt", QByteArray("key\0\0", 5) + deflated(70'000'000), 1) << refused;
    QTest::newRow("55 MB") << pngWith("zTXt", zText, 7) << shown;
    QTest::newRow("1 MB, not compressed") << pngWith("tEXt", plainText, 10) << shown;
    QTest::newRow("broken text") << pngWith("zTXt", QByteArray("key\0\0xyz", 8), 3) << shown;
    QTest::newRow("empty text") << pngWith("iTXt", QByteArray(), 3) << shown;
    QTest::newRow("a chunk longer than the file")
        << pngWith("zTXt", zText, 1).left(5000) << refused;
}

void tst_HttpTolvexOutcomes::textsInAPictureAreBounded()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, result);
    expect(ScriptedService::reply(body, "image/png"));
    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), result);
    QVERIFY(peakMemory() - before < 64LL * 1024);
}

void tst_HttpTolvexOutcomes::contentTypeOfAnEarlierReplyDoesNotStay()
{
    expect(ScriptedService::reply("no", "text/plain"));
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QVERIFY(!m_log->at(0).isImage);
    expect("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nno");
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 2);
    QVERIFY(m_log->at(1).isImage);
}

void tst_HttpTolvexOutcomes::brokenTransfer_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("response");
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("in the status line") << QByteArray("HTTP/1.1 20") << QString();
    QTest::newRow("in the body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\npart")
                                 << QStringLiteral("part");
    QTest::newRow("in a chunk") << QByteArray(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\npart")
                                << QStringLiteral("part");
}

void tst_HttpTolvexOutcomes::brokenTransfer()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, response);
    expect(bytes, ScriptedService::Close);
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QVERIFY(!m_log->at(0).isImage);
    QCOMPARE(m_log->at(0).response, response);
    QCOMPARE(m_log->at(0).error, QStringLiteral("Connection closed"));
}

void tst_HttpTolvexOutcomes::refusedConnectionToATextOperation()
{
    setServiceHost(QStringLiteral("127.0.0.1:1"));
    makeHttp();
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(QString(), QStringLiteral("Connection refused")));
}

void tst_HttpTolvexOutcomes::refusedConnectionToAnImageOperation()
{
    setServiceHost(QStringLiteral("127.0.0.1:1"));
    makeHttp();
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), QStringLiteral("image 0x0 | Connection refused"));
}

void tst_HttpTolvexOutcomes::tempFileThatCannotBeCreated()
{
    const QByteArray folder = qgetenv("TMPDIR");
    qputenv("TMPDIR", "/proc"); // where nobody can make a file
    getText(m_http.get());
    qputenv("TMPDIR", folder);
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0),
             ResultLog::text(QStringLiteral("I/O issue"),
                             QStringLiteral("Unable to create a temp file")));
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_HttpTolvexOutcomes::tempFileThatCannotBeReopened()
{
    m_service->expectHeld("GetThumbnail", "body");
    getImage(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    const auto *file = m_http->findChild<QTemporaryFile *>();
    QVERIFY(file);
    QVERIFY(QFile::remove(file->fileName()));
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(QString(), QStringLiteral("I/O issue")));
}

void tst_HttpTolvexOutcomes::withoutHostTheRequestFails()
{
    setServiceHost(QString());
    makeHttp();
    getText(m_http.get());
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0),
             ResultLog::text(QStringLiteral("ERROR:http request failure"),
                             QStringLiteral("Unable to query kavlor server")));
}

void tst_HttpTolvexOutcomes::timeOutIsNotEarly()
{
    // At different times of a second: a time that may be rounded is cut short at some of them.
    constexpr int count = 20;
    testTimeConstants().formTimeout = 2000;
    std::array<QElapsedTimer, count> timers;
    std::array<std::unique_ptr<CHttpTolvex>, count> requests;
    QList<qint64> times;
    for (int i = 0; i < count; ++i) {
        m_service->expectHeld("ValidateLogin", "1");
        requests.at(i) = std::make_unique<CHttpTolvex>();
        connect(requests.at(i).get(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished),
                this, [&, i] { times.append(timers.at(i).nsecsElapsed()); });
        timers.at(i).start();
        getText(requests.at(i).get());
        QTest::qWait(15);
    }
    QTRY_COMPARE(times.size(), count);
    for (const qint64 time : std::as_const(times))
        QVERIFY2(time >= 2000LL * 1000 * 1000, QByteArray::number(time));
}

void tst_HttpTolvexOutcomes::timeOutAndTheLateReply()
{
    testTimeConstants().formTimeout = 100;
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), timeOut);
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), empty);
    QCOMPARE(m_service->requests().size(), 1);
}

void tst_HttpTolvexOutcomes::cancelledWithATextItComesWithTheLateReply()
{
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    m_http->cancelRequest(QStringLiteral("changed my mind"));
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), timeOut);
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), ResultLog::text(QString(), QStringLiteral("changed my mind")));
}

void tst_HttpTolvexOutcomes::cancelTwiceIsOneResult()
{
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    m_http->cancelRequest();
    m_http->cancelRequest(QStringLiteral("again"));
    QCOMPARE(m_log->size(), 1);
}

void tst_HttpTolvexOutcomes::cancelledAgainWithATextTheLateReplyBringsIt()
{
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    m_http->cancelRequest();
    m_http->cancelRequest(QStringLiteral("changed my mind"));
    QCOMPARE(m_log->size(), 1);
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), ResultLog::text(QString(), QStringLiteral("changed my mind")));
}

void tst_HttpTolvexOutcomes::uploadHasItsOwnTimeOut()
{
    testTimeConstants().formTimeout = 1;
    testTimeConstants().uploadTimeout = 150;
    ScriptedService::Step step;
    step.operation = "CreateAuction";
    step.held = true;
    m_service->expect(step);
    QElapsedTimer timer;
    timer.start();
    upload(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QVERIFY(timer.elapsed() >= 140);
    QCOMPARE(m_log->textAt(0), timeOut);
    QTRY_VERIFY(m_service->isHolding());
}

void tst_HttpTolvexOutcomes::idleObjectReportsTheOldTimeOut()
{
    testTimeConstants().formTimeout = 300;
    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(QStringLiteral("17"), QString()));
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), timeOut);
}

void tst_HttpTolvexOutcomes::refusedStatusSilencesTheTimeOut()
{
    testTimeConstants().formTimeout = 300;
    expect(ScriptedService::reply("no", "text/plain", "404 Not Found"));
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    // Its time-out comes after that of the request above.
    CHttpTolvex witness;
    const ResultLog witnessLog(&witness);
    m_service->expect("ValidateLogin", "17");
    getText(&witness);
    QTRY_COMPARE(witnessLog.size(), 2);
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), empty);
}

void tst_HttpTolvexOutcomes::oldTimeOutCancelsALaterRequest()
{
    testTimeConstants().formTimeout = 300;
    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);

    testTimeConstants().formTimeout = 10000;
    m_service->expectHeld("GetThumbnail", "late");
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), timeOut);
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 3);
    QCOMPARE(m_log->textAt(2), empty);

    m_service->expect("ValidateLogin", "18");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 4);
    QCOMPARE(m_log->textAt(3), ResultLog::text(QStringLiteral("18"), QString()));
}

void tst_HttpTolvexOutcomes::afterATimeOutTheObjectSendsAgain()
{
    testTimeConstants().formTimeout = 100;
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);

    testTimeConstants().formTimeout = 10000;
    m_service->expectHeld("GetMyAuctions", "list");
    m_http->getMyAuctions(QStringLiteral("m1"), QStringLiteral("secret"));
    QTRY_COMPARE(m_service->requests().size(), 2);
    QVERIFY(m_service->release()); // the late reply to the first
    QTRY_VERIFY(m_service->isHolding());
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), ResultLog::text(QStringLiteral("list"), QString()));
}

void tst_HttpTolvexOutcomes::uploadAfterATimeOutIsANewRequest()
{
    testTimeConstants().formTimeout = 100;
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), timeOut);

    m_service->expect("CreateAuction", "4711");
    upload(m_http.get());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), ResultLog::text(QStringLiteral("4711"), QString()));
}

void tst_HttpTolvexOutcomes::newRequestDropsTheFileOfTheOneBefore()
{
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    m_http->cancelRequest();
    const int filesOfOneRequest = temporaryFileCount();

    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QCOMPARE(temporaryFileCount(), filesOfOneRequest);
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), ResultLog::text(QStringLiteral("17"), QString()));
    QCOMPARE(temporaryFileCount(), m_filesBefore);
}

void tst_HttpTolvexOutcomes::everyRequestIsPostedOnce_data()
{
    QTest::addColumn<ScriptedService::Step>("ending");
    QTest::addColumn<bool>("isUpload");
    QTest::addColumn<bool>("isReused");

    struct Ending
    {
        const char *name;
        ScriptedService::Step step;
    };
    const QByteArray half = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\npart";
    const QList<Ending> endings{
        {"closed without a byte",
         {"", "", ScriptedService::AfterRequest, 0, ScriptedService::Close}},
        {"reset without a byte",
         {"", "", ScriptedService::AfterRequest, 0, ScriptedService::Reset}},
        {"closed after the first byte",
         {"", "", ScriptedService::AfterBytes, 1, ScriptedService::Close}},
        {"reset after the first byte",
         {"", "", ScriptedService::AfterBytes, 1, ScriptedService::Reset}},
        {"closed after the header",
         {"", "", ScriptedService::AfterHeader, 0, ScriptedService::Close}},
        {"closed in the request's body",
         {"", "", ScriptedService::AfterBytes, 330, ScriptedService::Close}},
        {"reset in the request's body",
         {"", "", ScriptedService::AfterBytes, 330, ScriptedService::Reset}},
        {"closed in the status line",
         {"", "HTTP/1.1 2", ScriptedService::AfterRequest, 0, ScriptedService::Close}},
        {"closed in the header",
         {"", "HTTP/1.1 200 OK\r\nContent-Ty", ScriptedService::AfterRequest, 0,
          ScriptedService::Close}},
        {"closed after 100",
         {"", "HTTP/1.1 100 Continue\r\n\r\n", ScriptedService::AfterRequest, 0,
          ScriptedService::Close}},
        {"closed after an early 100",
         {"", "HTTP/1.1 100 Continue\r\n\r\n", ScriptedService::AfterHeader, 0,
          ScriptedService::Close}},
        {"closed in the body",
         {"", half, ScriptedService::AfterRequest, 0, ScriptedService::Close}},
        {"reset in the body", {"", half, ScriptedService::AfterRequest, 0, ScriptedService::Reset}},
        {"garbage",
         {"", QByteArray(500, '\xee'), ScriptedService::AfterRequest, 0, ScriptedService::Close}},
        {"garbage and no end",
         {"", QByteArray(500, '\xee'), ScriptedService::AfterRequest, 0,
          ScriptedService::KeepOpen}},
        {"redirect that asks for the body again",
         {"", "HTTP/1.1 307 Again\r\nLocation: /tolvex/Again/\r\nContent-Length: 0\r\n\r\n",
          ScriptedService::AfterRequest, 0, ScriptedService::KeepOpen}},
        {"challenge",
         {"",
          "HTTP/1.1 401 Who?\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n",
          ScriptedService::AfterRequest, 0, ScriptedService::KeepOpen}},
        {"request timed out at the server",
         {"", "HTTP/1.1 408 Late\r\nConnection: close\r\nContent-Length: 0\r\n\r\n",
          ScriptedService::AfterRequest, 0, ScriptedService::Close}},
        {"try later",
         {"", "HTTP/1.1 503 Later\r\nRetry-After: 0\r\nContent-Length: 0\r\n\r\n",
          ScriptedService::AfterRequest, 0, ScriptedService::Close}},
        {"an early reply, then closed",
         {"", ScriptedService::reply("no", "text/plain", "413 Too much"),
          ScriptedService::AfterHeader, 0, ScriptedService::Close}},
        {"an early reply",
         {"", ScriptedService::reply("yes"), ScriptedService::AfterHeader, 0,
          ScriptedService::KeepOpen}},
        {"never answers", {"", "", ScriptedService::AfterRequest, 0, ScriptedService::KeepOpen}},
        {"stops reading, then reset",
         {"", "", ScriptedService::AfterBytes, 330, ScriptedService::StopReading}},
    };
    for (const Ending &ending : endings) {
        for (const bool isUpload : {false, true}) {
            for (const bool isReused : {false, true}) {
                QTest::addRow("%s, %s, %s object", ending.name, isUpload ? "upload" : "form",
                              isReused ? "used" : "fresh")
                    << ending.step << isUpload << isReused;
            }
        }
    }
}

void tst_HttpTolvexOutcomes::everyRequestIsPostedOnce()
{
    QFETCH(ScriptedService::Step, ending);
    QFETCH(bool, isUpload);
    QFETCH(bool, isReused);
    int before = 0;
    if (isReused) {
        m_service->expect("ValidateLogin", "17");
        getText(m_http.get());
        QTRY_COMPARE(m_log->size(), 1);
        before = 1;
    }

    testTimeConstants().formTimeout = 400;
    testTimeConstants().uploadTimeout = 400;
    m_service->expect(ending);
    // More than the connection holds on its way, where the service stops reading.
    const qint64 size = ending.then == ScriptedService::StopReading ? 16 : 1;
    if (isUpload)
        upload(m_http.get(), size * 1024 * 1024);
    else
        getText(m_http.get());
    QTRY_VERIFY(m_log->size() > before);
    if (ending.then == ScriptedService::StopReading) {
        QCOMPARE(m_log->textAt(before), timeOut);
        m_service->dropConnections();
        QTRY_COMPARE(m_log->size(), before + 2);
    }

    // Whatever would be sent again arrives before this one does.
    CHttpTolvex next;
    const ResultLog nextLog(&next);
    testTimeConstants().formTimeout = 10000;
    m_service->expect("GetCountryList", "US");
    next.getCountryList();
    QTRY_COMPARE(nextLog.size(), 1);
    QCOMPARE(nextLog.textAt(0), ResultLog::text(QStringLiteral("US"), QString()));
    QCOMPARE(m_service->requests().size(), before + 2);
}

void tst_HttpTolvexOutcomes::destroyedInFlightLeavesNothing()
{
    m_service->expectHeld("ValidateLogin", "late");
    getText(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    QVERIFY(temporaryFileCount() > m_filesBefore);
    m_http.reset();
    QCOMPARE(temporaryFileCount(), m_filesBefore);
    QTRY_VERIFY(!m_service->isHolding()); // the connection is gone
    QCOMPARE(m_log->size(), 0);
}

void tst_HttpTolvexOutcomes::destroyedByItsResult_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isImage");
    QTest::newRow("text") << ScriptedService::reply("17") << false;
    QTest::newRow("image") << ScriptedService::reply(photo(), "image/jpeg") << true;
    QTest::newRow("refused status") << ScriptedService::reply("", "text/plain", "404 No") << false;
    QTest::newRow("broken") << QByteArray("garbage\r\n\r\n") << false;
    QTest::newRow("time-out") << QByteArray() << false;
}

void tst_HttpTolvexOutcomes::destroyedByItsResult()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isImage);
    testTimeConstants().formTimeout = bytes.isEmpty() ? 100 : 10000;
    bool destroyed = false;
    const auto destroy = [&] {
        m_http.reset();
        destroyed = true;
    };
    connect(m_http.get(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            destroy);
    connect(m_http.get(), qOverload<QPixmap, QString>(&CHttpTolvex::requestIsFinished), this,
            destroy);
    expect(bytes);
    if (isImage)
        getImage(m_http.get());
    else
        getText(m_http.get());
    QTRY_VERIFY(destroyed);
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(temporaryFileCount(), m_filesBefore);
}

void tst_HttpTolvexOutcomes::noTempFileIsLeft_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("closes");
    QTest::newRow("text") << ScriptedService::reply("17") << false;
    QTest::newRow("image") << ScriptedService::reply(photo(), "image/jpeg") << false;
    QTest::newRow("refused status") << ScriptedService::reply("", "text/plain", "404 No") << false;
    QTest::newRow("broken") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\npart")
                            << true;
}

void tst_HttpTolvexOutcomes::noTempFileIsLeft()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, closes);
    expect(bytes, closes ? ScriptedService::Close : ScriptedService::KeepOpen);
    getImage(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(temporaryFileCount(), m_filesBefore);
}

void tst_HttpTolvexOutcomes::severalObjectsAtOnce()
{
    CHttpTolvex other;
    const ResultLog otherLog(&other);
    m_service->expectHeld("ValidateLogin", "17");
    getText(m_http.get());
    QTRY_VERIFY(m_service->isHolding());
    m_service->expect("GetCountryList", "US");
    other.getCountryList();
    QTRY_COMPARE(otherLog.size(), 1);
    QCOMPARE(otherLog.textAt(0), ResultLog::text(QStringLiteral("US"), QString()));
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(QStringLiteral("17"), QString()));
}

void tst_HttpTolvexOutcomes::connectedStatesSendAtOnce_data()
{
    QTest::addColumn<quint32>("state");
    QTest::newRow("connected") << 2u;
    QTest::newRow("disconnecting") << 3u;
    QTest::newRow("limited") << 4u;
}

void tst_HttpTolvexOutcomes::connectedStatesSendAtOnce()
{
    QFETCH(quint32, state);
    m_connector->reportState(state);
    makeHttp();
    bool eventLoopRan = false;
    QMetaObject::invokeMethod(
        this, [&] { eventLoopRan = true; }, Qt::QueuedConnection);
    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QVERIFY(!eventLoopRan);
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(QStringLiteral("17"), QString()));
}

void tst_HttpTolvexOutcomes::connectionThatNeverComesIsOneResultAndNoTraffic_data()
{
    QTest::addColumn<quint32>("state");
    QTest::addColumn<bool>("isUpload");
    for (const quint32 state : {0u, 1u, 5u, 6u}) {
        QTest::addRow("form in state %u", state) << state << false;
        QTest::addRow("upload in state %u", state) << state << true;
    }
}

void tst_HttpTolvexOutcomes::connectionThatNeverComesIsOneResultAndNoTraffic()
{
    QFETCH(quint32, state);
    QFETCH(bool, isUpload);
    testTimeConstants().connectionWait = 100;
    m_connector->reportState(state);
    makeHttp();
    QElapsedTimer timer;
    timer.start();
    if (isUpload)
        upload(m_http.get());
    else
        getText(m_http.get());
    QVERIFY(timer.elapsed() >= 90);
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), noConnection);
    QCOMPARE(m_service->connectionCount(), 0);
    QCOMPARE(temporaryFileCount(), m_filesBefore);
}

void tst_HttpTolvexOutcomes::withoutConnectionManagerThereIsNoConnection()
{
    testTimeConstants().connectionWait = 100;
    m_connector.reset();
    makeHttp();
    getText(m_http.get());
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), noConnection);
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_HttpTolvexOutcomes::connectionThatComesLetsTheRequestGo()
{
    m_connector->reportState(OnlineConnector::Connecting);
    makeHttp();
    QTimer::singleShot(50, this, [this] {
        QCOMPARE(m_service->connectionCount(), 0);
        QCOMPARE(temporaryFileCount(), m_filesBefore);
        m_connector->reportState(OnlineConnector::Connected);
    });
    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), ResultLog::text(QStringLiteral("17"), QString()));
}

void tst_HttpTolvexOutcomes::lostConnectionIsAskedForAgain()
{
    testTimeConstants().connectionWait = 100;
    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 1);
    m_connector->reportState(OnlineConnector::Disconnected);
    getText(m_http.get());
    QCOMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), noConnection);
}

void tst_HttpTolvexOutcomes::waitThatFailedDoesNotEndTheNext()
{
    testTimeConstants().connectionWait = 100;
    m_connector->reportState(OnlineConnector::Disconnected);
    makeHttp();
    getText(m_http.get());
    QCOMPARE(m_log->size(), 1);
    QCOMPARE(m_log->textAt(0), noConnection);

    testTimeConstants().connectionWait = 10000;
    QTimer::singleShot(0, this, [this] { m_connector->reportState(OnlineConnector::Connected); });
    m_service->expect("ValidateLogin", "17");
    getText(m_http.get());
    QTRY_COMPARE(m_log->size(), 2);
    QCOMPARE(m_log->textAt(1), ResultLog::text(QStringLiteral("17"), QString()));
}

void tst_HttpTolvexOutcomes::deletedWhileItWaits()
{
    m_connector->reportState(OnlineConnector::Disconnected);
    makeHttp();
    QTimer::singleShot(20, this, [this] { m_http.reset(); });
    getText(m_http.get());
    QVERIFY(!m_http);
    QCOMPARE(m_log->size(), 0);
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_HttpTolvexOutcomes::waitKeepsUserInputOutAndTimersAlive()
{
    testTimeConstants().connectionWait = 200;
    m_connector->reportState(OnlineConnector::Disconnected);
    makeHttp();
    QWidget window;
    window.setMouseTracking(true);
    window.resize(200, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    InputCounter input(&window);
    QTimer ticker;
    const QSignalSpy ticks(&ticker, &QTimer::timeout);
    ticker.start(10);

    // The platform hands in the mouse's way over the window; it waits until input is let in.
    QCursor::setPos(window.mapToGlobal(QPoint(50, 50)));
    QCursor::setPos(window.mapToGlobal(QPoint(60, 60)));
    getText(m_http.get());
    QCOMPARE(m_log->textAt(0), noConnection);
    QCOMPARE(input.count(), 0);
    QVERIFY(ticks.size() > 3);
    QCursor::setPos(window.mapToGlobal(QPoint(70, 70)));
    QTRY_COMPARE(input.count(), 3);
}

KAVLOR_TEST_MAIN(tst_HttpTolvexOutcomes)

#include "tst_httptolvexoutcomes.moc"
