// SPDX-License-Identifier: MIT

#include "endlessservice.h"
#include "namelookup.h"
#include "processmemory.h"
#include "qhttp.h"
#include "qhttprequestheader.h"
#include "scriptedservice.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "testpaths.h"

#include <QAuthenticator>
#include <QBuffer>
#include <QEventLoop>
#include <QFile>
#include <QPointer>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <array>
#include <memory>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

QHttpRequestHeader postTo(const QString &path)
{
    return {QStringLiteral("POST"), path};
}

// Takes nothing.
class FailingSink : public QIODevice
{
public:
    FailingSink()
    {
        open(QIODevice::WriteOnly);
    }

protected:
    qint64 readData(char *, qint64) override
    {
        return -1;
    }

    qint64 writeData(const char *, qint64) override
    {
        setErrorString(QStringLiteral("no room"));
        return -1;
    }
};

} // namespace

class tst_QHttp : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutHostNothingIsSent();
    void everyRequestHasAnIdOfItsOwn();
    void fieldsLeaveInTheirOrderAndSpelling();
    void onlyTheFieldsGivenLeave();
    void aFieldSetTwiceKeepsItsPlace();
    void contentLengthIsThatOfTheBody();
    void fieldThatCannotBeSentFailsTheRequest_data();
    void fieldThatCannotBeSentFailsTheRequest();
    void requestAfterOneThatCannotBeSentTakesItsPlace();
    void valueOfManyLettersIsSent();
    void pathLeavesAsGiven_data();
    void pathLeavesAsGiven();
    void userGoesWithTheRequest();
    void headerComesBeforeTheBody();
    void bodyWaitsUntilItsHeaderHasBeenHeard();
    void linesOfTheHeaderAreReadTogether_data();
    void linesOfTheHeaderAreReadTogether();
    void bodyIsWrittenAsItArrives();
    void bodyIsNotHeldInMemory();
    void bodyOfTheRequestIsNotCopied();
    void aStatusCodeIsNoError_data();
    void aStatusCodeIsNoError();
    void redirectIsNotFollowed_data();
    void redirectIsNotFollowed();
    void compressedBodyIsHandedOnAsItCame();
    void cookiesAreNotKept();
    void challengeIsReportedAndNotAnswered();
    void aLargeBodyUnderAChallengeEndsToo();
    void abortEndsInDoneSoonAfter();
    void abortFromTheHeaderEndsInDone();
    void abortWithNothingUnderWayIsSilent();
    void closeLetsTheTransferEndByItself();
    void anEarlierRequestIsNotHeardOfAnyMore();
    void theReplyToAnEarlierRequestIsTakenWholeAndFreed();
    void anEarlierAbortedRequestIsNotHeardOfAnyMore();
    void brokenConnectionIsAnError_data();
    void brokenConnectionIsAnError();
    void refusedConnectionIsAnError();
    void sinkThatFailsIsAnError();
    void fullDiskIsAnError();
    void unknownHostIsAnError();
    void lookingUpANameHoldsNothingUp();
    void serviceThatTakesNoConnectionIsAnError();
    void unknownCertificateIsAnError();
    void noSecureServiceIsAnError();
    void proxyOfTheSystemIsUsed();
    void anAnswerAboutTheProxyIsGoodForAWhile_data();
    void anAnswerAboutTheProxyIsGoodForAWhile();
    void anAnswerAboutANameIsGoodForAWhile_data();
    void anAnswerAboutANameIsGoodForAWhile();
    void endlessReplyStopsWithItsRequest();
    void sinkMayBeDeletedMeanwhile();
    void ownerMayDeleteItWhenDone();
    void ownerMayDeleteItWhenTheHeaderComes();
    void deletedInFlightNothingIsEmitted();

private:
    int post(const QByteArray &body = "SUBMIT=Submit");
    void expect(const QByteArray &bytes, ScriptedService::Then then = ScriptedService::KeepOpen);

    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<QHttp> m_http;
    std::unique_ptr<QBuffer> m_sink;
    std::unique_ptr<QSignalSpy> m_done;
    std::unique_ptr<QSignalSpy> m_headers;
};

void tst_QHttp::init()
{
    TestCase::init();
    m_service = std::make_unique<ScriptedService>();
    m_http = std::make_unique<QHttp>();
    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, m_service->port());
    m_sink = std::make_unique<QBuffer>();
    m_sink->open(QIODevice::WriteOnly);
    m_done = std::make_unique<QSignalSpy>(m_http.get(), &QHttp::done);
    m_headers = std::make_unique<QSignalSpy>(m_http.get(), &QHttp::responseHeaderReceived);
}

void tst_QHttp::cleanup()
{
    m_http.reset();
    QVERIFY2(m_service->isDone(), m_service->report());
}

int tst_QHttp::post(const QByteArray &body)
{
    return m_http->request(postTo(QStringLiteral("/tolvex/Echo/")), body, m_sink.get());
}

void tst_QHttp::expect(const QByteArray &bytes, ScriptedService::Then then)
{
    ScriptedService::Step step;
    step.operation = "Echo";
    step.bytes = bytes;
    step.then = then;
    m_service->expect(step);
}

void tst_QHttp::withoutHostNothingIsSent()
{
    m_http->setHost(QString());
    QCOMPARE(post(), 0);
    QCOMPARE(m_service->connectionCount(), 0);
    QCOMPARE(m_done->size(), 0);
}

void tst_QHttp::everyRequestHasAnIdOfItsOwn()
{
    m_service->expect("Echo", "one");
    const int first = post();
    QTRY_COMPARE(m_done->size(), 1);
    m_service->expect("Echo", "two");
    const int second = post();
    QTRY_COMPARE(m_done->size(), 2);

    QVERIFY(first != 0);
    QVERIFY(second != 0);
    QVERIFY(first != second);
    QCOMPARE(m_sink->data(), QByteArray("onetwo"));
}

void tst_QHttp::fieldsLeaveInTheirOrderAndSpelling()
{
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setValue(QStringLiteral("ZuLu"), QStringLiteral("last letter first"));
    header.setValue(QStringLiteral("host"), QStringLiteral("example.org:81"));
    header.setValue(QStringLiteral("User-AGENT"), QStringLiteral("tester"));
    header.setValue(QStringLiteral("Content-type"), QStringLiteral("text/odd, boundary=x"));
    header.setValue(QStringLiteral("content-LENGTH"), QStringLiteral("3"));
    header.setValue(QStringLiteral("connection"), QStringLiteral("Keep-Alive"));
    header.setValue(QStringLiteral("accept-Encoding"), QStringLiteral("gzip,deflate"));
    header.setValue(QStringLiteral("ACCEPT-language"), QStringLiteral("en-us"));
    m_service->expect("Echo", "ok");
    m_http->request(header, "abc", m_sink.get());
    QTRY_COMPARE(m_done->size(), 1);

    QCOMPARE(m_service->requests().constFirst().raw,
             QByteArray("POST /tolvex/Echo/ HTTP/1.1\r\n"
                        "ZuLu: last letter first\r\n"
                        "host: example.org:81\r\n"
                        "User-AGENT: tester\r\n"
                        "Content-type: text/odd, boundary=x\r\n"
                        "content-LENGTH: 3\r\n"
                        "connection: Keep-Alive\r\n"
                        "accept-Encoding: gzip,deflate\r\n"
                        "ACCEPT-language: en-us\r\n"
                        "\r\n"
                        "abc"));
}

void tst_QHttp::onlyTheFieldsGivenLeave()
{
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setValue(QStringLiteral("X-Empty"), QString());
    header.setValue(QStringLiteral("HOST"), QStringLiteral("example.org"));
    m_service->expect("Echo", "ok");
    // From a size on, other clients ask first.
    const QByteArray body(3LL * 1024 * 1024, 'x');
    m_http->request(header, body, m_sink.get());
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_service->requests().constFirst().headerLines,
             QByteArrayList({"X-Empty:", "HOST: example.org", "Content-Length: 3145728"}));
    QCOMPARE(m_service->requests().constFirst().body.size(), body.size());
}

void tst_QHttp::aFieldSetTwiceKeepsItsPlace()
{
    QHttpHeader header;
    header.setValue(QStringLiteral("One"), QStringLiteral("1"));
    header.setValue(QStringLiteral("Two"), QStringLiteral("2"));
    header.setValue(QStringLiteral("ONE"), QStringLiteral("3"));
    const QHttpHeader::Fields expected{
        {QStringLiteral("One"), QStringLiteral("3")},
        {QStringLiteral("Two"), QStringLiteral("2")},
    };
    QCOMPARE(header.fields(), expected);
    QCOMPARE(header.value(QStringLiteral("one")), QStringLiteral("3"));
    QCOMPARE(header.value(QStringLiteral("three")), QString());
}

void tst_QHttp::contentLengthIsThatOfTheBody()
{
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setContentLength(99);
    header.setContentType(QStringLiteral("text/plain"));
    m_service->expect("Echo", "ok");
    m_http->request(header, "four", m_sink.get());
    QTRY_COMPARE(m_done->size(), 1);
    const ScriptedService::Request request = m_service->requests().constFirst();
    QCOMPARE(request.headerLines.count("Content-Length: 4"), 1);
    QCOMPARE(request.headerLines.count("Content-type: text/plain"), 1);
    QCOMPARE(request.body, QByteArray("four"));
}

void tst_QHttp::fieldThatCannotBeSentFailsTheRequest_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("line end in the value") << "X"
                                           << "a\r\nEvil: 1";
    QTest::newRow("line feed in the value") << "X"
                                            << "a\nEvil: 1";
    QTest::newRow("carriage return in the value") << "X"
                                                  << "a\rEvil: 1";
    QTest::newRow("NUL in the value") << "X" << QStringLiteral("a") + QChar(0) + QLatin1Char('b');
    QTest::newRow("control character in the value") << "X"
                                                    << "a\x01";
    QTest::newRow("DEL in the value") << "X"
                                      << "a\x7f";
    QTest::newRow("line end in the name") << "X\r\nEvil"
                                          << "1";
    QTest::newRow("colon in the name") << "X:"
                                       << "1";
    QTest::newRow("blank in the name") << "X Y"
                                       << "1";
    QTest::newRow("other letters in the name") << QStringLiteral(u"\u010C") << "1";
    QTest::newRow("no name") << ""
                             << "1";
}

void tst_QHttp::fieldThatCannotBeSentFailsTheRequest()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setValue(name, value);
    QVERIFY(m_http->request(header, "x", m_sink.get()) > 0);
    QCOMPARE(m_done->size(), 0); // not inside the call
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(),
             QStringLiteral("The request holds characters that cannot be sent."));

    // The object is as good as before.
    m_service->expect("Echo", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 2);
    QCOMPARE(m_done->constLast(), QVariantList{false});
    QCOMPARE(m_service->connectionCount(), 1);
}

void tst_QHttp::requestAfterOneThatCannotBeSentTakesItsPlace()
{
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setValue(QStringLiteral("X"), QStringLiteral("\n"));
    m_http->request(header, "x", m_sink.get());
    m_service->expect("Echo", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_sink->data(), QByteArray("ok"));
}

void tst_QHttp::valueOfManyLettersIsSent()
{
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setValue(QStringLiteral("X"), QStringLiteral(u"a\tb \u00E9"));
    m_service->expect("Echo", "ok");
    m_http->request(header, "x", m_sink.get());
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_service->requests().constFirst().header("X"), QByteArray("a\tb \xE9"));
}

void tst_QHttp::pathLeavesAsGiven_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("plain") << QStringLiteral("/tolvex/Echo/") << QByteArray("/tolvex/Echo/");
    QTest::newRow("kept characters")
        << QStringLiteral("/tolvex/!$&'()*+,;=:@/") << QByteArray("/tolvex/!$&'()*+,;=:@/");
    QTest::newRow("encoded") << QStringLiteral("/tolvex/a%20b%3Fc%25d/")
                             << QByteArray("/tolvex/a%20b%3Fc%25d/");
    QTest::newRow("root") << QStringLiteral("/") << QByteArray("/");
    QTest::newRow("none") << QString() << QByteArray("/");
}

void tst_QHttp::pathLeavesAsGiven()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, sent);
    ScriptedService::Step step;
    step.bytes = ScriptedService::reply("ok");
    m_service->expect(step);
    m_http->request(postTo(path), "x", m_sink.get());
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_service->requests().constFirst().requestLine, "POST " + sent + " HTTP/1.1");
}

void tst_QHttp::userGoesWithTheRequest()
{
    m_http->setUser(QStringLiteral("m1"), QStringLiteral("se:cret"));
    m_service->expect("Echo", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_service->requests().constFirst().header("Authorization"),
             QByteArray("Basic bTE6c2U6Y3JldA=="));

    m_http->setUser(QString());
    m_service->expect("Echo", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 2);
    QCOMPARE(m_service->requests().constLast().header("Authorization"), QByteArray());
}

void tst_QHttp::headerComesBeforeTheBody()
{
    qint64 bodyThen = -1;
    QHttpResponseHeader header;
    connect(m_http.get(), &QHttp::responseHeaderReceived, this,
            [&](const QHttpResponseHeader &received) {
                bodyThen = m_sink->size();
                header = received;
            });
    expect("HTTP/1.1 200 Fine\r\nX-Odd: one\r\nContent-type: a/b; c\r\nContent-Length: 4\r\n\r\n"
           "body");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_headers->size(), 1);
    QCOMPARE(bodyThen, 0);
    QCOMPARE(header.statusCode(), 200);
    QCOMPARE(header.value(QStringLiteral("CONTENT-TYPE")), QStringLiteral("a/b; c"));
    QCOMPARE(header.value(QStringLiteral("X-Odd")), QStringLiteral("one"));
    QCOMPARE(m_sink->data(), QByteArray("body"));
}

// Also where whoever hears of the header shows a box and waits in an event loop.
void tst_QHttp::bodyWaitsUntilItsHeaderHasBeenHeard()
{
    qint64 bodyThen = -1;
    connect(m_http.get(), &QHttp::responseHeaderReceived, this, [&] {
        QHttp other;
        other.setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, m_service->port());
        QEventLoop loop;
        connect(&other, &QHttp::done, &loop, &QEventLoop::quit);
        other.request(postTo(QStringLiteral("/tolvex/Other/")), "x", nullptr);
        loop.exec();
        bodyThen = m_sink->size();
    });
    const QByteArray body(300000, 'x');
    m_service->expect("Echo", body);
    m_service->expect("Other", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(bodyThen, 0);
    QCOMPARE(m_sink->data(), body);
}

void tst_QHttp::linesOfTheHeaderAreReadTogether_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("value");
    QTest::newRow("one") << QByteArray("X:  one  \r\n") << "one";
    QTest::newRow("no blank") << QByteArray("X:one\r\n") << "one";
    QTest::newRow("none") << QByteArray("Y: one\r\n") << QString();
    QTest::newRow("empty") << QByteArray("X:\r\n") << QString();
    QTest::newRow("folded") << QByteArray("X: one\r\n  two\r\n\tthree\r\n") << "one two three";
    QTest::newRow("twice") << QByteArray("X: one\r\nY: other\r\nx: two\r\n") << "one, two";
    QTest::newRow("Latin-1") << QByteArray("X: caf\xe9\r\n") << QStringLiteral(u"caf\u00e9");
}

void tst_QHttp::linesOfTheHeaderAreReadTogether()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, value);
    expect("HTTP/1.1 100 Continue\r\nX: early\r\n\r\nHTTP/1.1 200 OK\r\n" + lines
           + "Transfer-Encoding: chunked\r\n\r\n4\r\nbody\r\n0\r\nX: late\r\n\r\n");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_headers->size(), 1);
    const auto header = m_headers->constFirst().constFirst().value<QHttpResponseHeader>();
    QCOMPARE(header.value(QStringLiteral("X")), value);
    QCOMPARE(m_sink->data(), QByteArray("body"));
}

void tst_QHttp::bodyIsWrittenAsItArrives()
{
    expect("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nfirst");
    post();
    QTRY_COMPARE(m_sink->data(), QByteArray("first"));
    QCOMPARE(m_done->size(), 0);
    QVERIFY(m_service->write("after"));
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_sink->data(), QByteArray("firstafter"));
}

// While the client does not get to read, a server must run into the full connection rather than
// fill the client's memory.
void tst_QHttp::bodyIsNotHeldInMemory()
{
    constexpr qint64 bodySize = 96LL * 1024 * 1024;
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QSemaphore stalledOrSent;
    qint64 taken = 0;
    std::unique_ptr<QThread> sender;
    connect(&server, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *socket = server.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [&, socket] {
            if (sender || !socket->readAll().endsWith("SUBMIT=Submit"))
                return;
            socket->setParent(nullptr);
            sender.reset(QThread::create([&, socket] {
                const QByteArray chunk(256LL * 1024, 'x');
                socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(bodySize)
                              + "\r\n\r\n");
                while (taken < bodySize) {
                    socket->write(chunk);
                    if (!socket->waitForBytesWritten(1000))
                        break;
                    taken += chunk.size();
                }
                stalledOrSent.release();
                socket->abort();
                delete socket;
            }));
            socket->disconnect();
            socket->moveToThread(sender.get());
            sender->start();
        });
    });
    bool inTime = false;
    connect(m_http.get(), &QHttp::responseHeaderReceived, this,
            [&] { inTime = stalledOrSent.tryAcquire(1, 30000); });
    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, server.serverPort());
    post();
    QTRY_COMPARE_WITH_TIMEOUT(m_done->size(), 1, 40000);
    sender->wait();
    QVERIFY(inTime);
    QVERIFY2(taken < bodySize / 2, QByteArray::number(taken));
}

// It may be a whole clip. Its receiver spends no memory on it either, in a thread of its own.
void tst_QHttp::bodyOfTheRequestIsNotCopied()
{
    const QByteArray body(64LL * 1024 * 1024, 'x');
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    server.pauseAccepting();
    const auto listener = static_cast<int>(server.socketDescriptor());
    const std::unique_ptr<QThread> receiver(QThread::create([listener, size = body.size()] {
        pollfd ready{listener, POLLIN, 0};
        poll(&ready, 1, 10000);
        const int socket = accept(listener, nullptr, nullptr);
        std::array<char, 65536> buffer;
        qint64 taken = 0;
        for (ssize_t count = 1; count > 0; taken += count) {
            count = recv(socket, buffer.data(), buffer.size(), 0);
            const QByteArray reply = ScriptedService::reply("ok");
            if (taken < size && taken + count >= size)
                send(socket, reply.constData(), static_cast<size_t>(reply.size()), MSG_NOSIGNAL);
        }
        ::close(socket);
    }));
    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, server.serverPort());
    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    receiver->start();
    post(body);
    QTRY_COMPARE(m_done->size(), 1);
    receiver->wait();
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QVERIFY2(peakMemory() - before < 16LL * 1024, QByteArray::number(peakMemory() - before));
}

void tst_QHttp::aStatusCodeIsNoError_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<int>("code");
    for (int code : {200, 204, 304, 400, 403, 404, 405, 407, 409, 410, 418, 500, 501, 503, 599}) {
        const QByteArray number = QByteArray::number(code);
        QTest::newRow(number.constData()) << number + " Odd" << code;
    }
}

void tst_QHttp::aStatusCodeIsNoError()
{
    QFETCH(QByteArray, status);
    QFETCH(int, code);
    expect(ScriptedService::reply("", "text/plain", status));
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_headers->size(), 1);
    QCOMPARE(m_headers->constFirst().constFirst().value<QHttpResponseHeader>().statusCode(), code);
}

void tst_QHttp::redirectIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("closes");
    const QByteArray redirect = "HTTP/1.1 %1 Moved\r\nLocation: /tolvex/Elsewhere/\r\n";
    for (const char *status : {"301", "302", "303", "307", "308"}) {
        const QByteArray head = QByteArray(redirect).replace("%1", status);
        QTest::addRow("%s with a length", status) << head + "Content-Length: 4\r\n\r\n"
                                                  << QByteArray("body") << false;
        QTest::addRow("%s in chunks", status) << head + "Transfer-Encoding: chunked\r\n\r\n"
                                              << QByteArray("4\r\nbody\r\n0\r\n\r\n") << false;
        QTest::addRow("%s to the end", status) << head + "\r\n" << QByteArray("body") << true;
    }
}

void tst_QHttp::redirectIsNotFollowed()
{
    QFETCH(QByteArray, header);
    QFETCH(QByteArray, body);
    QFETCH(bool, closes);
    expect(header + body, closes ? ScriptedService::Close : ScriptedService::KeepOpen);
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_sink->data(), QByteArray("body"));
    QCOMPARE(m_service->requests().size(), 1);
}

void tst_QHttp::compressedBodyIsHandedOnAsItCame()
{
    QHttpRequestHeader header = postTo(QStringLiteral("/tolvex/Echo/"));
    header.setValue(QStringLiteral("Accept-Encoding"), QStringLiteral("gzip,deflate"));
    const QByteArray packed =
        QByteArray::fromHex("1f8b08000000000000034bcecf2d284a2d2e4e4d0100c4d0a5e80a000000");
    expect("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: "
           + QByteArray::number(packed.size()) + "\r\n\r\n" + packed);
    m_http->request(header, "x", m_sink.get());
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_sink->data(), packed);
}

void tst_QHttp::cookiesAreNotKept()
{
    expect("HTTP/1.1 200 OK\r\nSet-Cookie: a=b; Path=/\r\nContent-Length: 0\r\n\r\n");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    m_service->expect("Echo", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 2);
    QCOMPARE(m_service->requests().constLast().header("Cookie"), QByteArray());
}

void tst_QHttp::challengeIsReportedAndNotAnswered()
{
    int asked = 0;
    connect(m_http.get(), &QHttp::authenticationRequired, this,
            [&](const QString &host, quint16 port, QAuthenticator *authenticator) {
                ++asked;
                QCOMPARE(host, QStringLiteral("127.0.0.1"));
                QCOMPARE(port, m_service->port());
                QCOMPARE(authenticator->realm(), QStringLiteral("members"));
                authenticator->setUser(QStringLiteral("m1"));
                authenticator->setPassword(QStringLiteral("secret"));
            });
    expect("HTTP/1.1 401 Who?\r\nWWW-Authenticate: Basic realm=\"members\"\r\n"
           "Content-Length: 2\r\n\r\nno");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(asked, 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_headers->constFirst().constFirst().value<QHttpResponseHeader>().statusCode(), 401);
    QCOMPARE(m_service->requests().size(), 1);
}

void tst_QHttp::aLargeBodyUnderAChallengeEndsToo()
{
    expect(ScriptedService::reply(QByteArray(1024LL * 1024, 'x'),
                                  "text/html\r\nWWW-Authenticate: Basic realm=\"members\"",
                                  "401 Who?"));
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_headers->size(), 1);
}

void tst_QHttp::abortEndsInDoneSoonAfter()
{
    expect("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nfirst");
    post();
    QTRY_COMPARE(m_sink->data(), QByteArray("first"));
    m_http->abort();
    QCOMPARE(m_done->size(), 0);
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("Request aborted"));
}

void tst_QHttp::abortFromTheHeaderEndsInDone()
{
    connect(m_http.get(), &QHttp::responseHeaderReceived, m_http.get(), &QHttp::abort);
    expect(ScriptedService::reply("body"));
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_sink->data(), QByteArray());
}

void tst_QHttp::abortWithNothingUnderWayIsSilent()
{
    m_http->abort();
    m_service->expect("Echo", "ok");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
}

void tst_QHttp::closeLetsTheTransferEndByItself()
{
    m_service->expectHeld("Echo", "late");
    post();
    QTRY_VERIFY(m_service->isHolding());
    m_http->close();
    QVERIFY(m_service->release());
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_sink->data(), QByteArray("late"));
}

void tst_QHttp::anEarlierRequestIsNotHeardOfAnyMore()
{
    m_service->expectHeld("Echo", "early");
    m_service->expect("Echo", "late");
    post();
    QTRY_VERIFY(m_service->isHolding());
    QBuffer other;
    other.open(QIODevice::WriteOnly);
    m_http->request(postTo(QStringLiteral("/tolvex/Echo/")), "x", &other);
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(other.data(), QByteArray("late"));

    QVERIFY(m_service->release());
    m_service->expect("Echo", "again");
    m_http->request(postTo(QStringLiteral("/tolvex/Echo/")), "x", &other);
    QTRY_COMPARE(m_done->size(), 2);
    QCOMPARE(other.data(), QByteArray("lateagain"));
    QCOMPARE(m_headers->size(), 2);
    QCOMPARE(m_sink->data(), QByteArray());
}

// The service gets rid of its reply, however large, and the connection does not stay.
void tst_QHttp::theReplyToAnEarlierRequestIsTakenWholeAndFreed()
{
    const QByteArray large(32LL * 1024 * 1024, 'x');
    m_service->expectHeld("Echo", large);
    m_service->expect("Echo", "late");
    post();
    QTRY_VERIFY(m_service->isHolding());
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QTRY_COMPARE(m_service->openConnectionCount(), 1);

    QVERIFY(m_service->release());
    QTRY_COMPARE(m_service->openConnectionCount(), 0);
    QVERIFY(m_service->sentBytes() > large.size());
    QCOMPARE(m_sink->data(), QByteArray("late"));
}

void tst_QHttp::anEarlierAbortedRequestIsNotHeardOfAnyMore()
{
    m_service->expectHeld("Echo", "early");
    post();
    QTRY_VERIFY(m_service->isHolding());
    m_http->abort();
    m_service->expect("Echo", "late");
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    QCOMPARE(m_sink->data(), QByteArray("late"));
}

void tst_QHttp::brokenConnectionIsAnError_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<ScriptedService::Then>("then");
    QTest::addColumn<QString>("error");
    const QString closed = QStringLiteral("Connection closed");
    const QString unclear = QStringLiteral("The service sent a reply that cannot be understood.");
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const QByteArray nine = "Content-Length: 9\r\n\r\npart";
    const auto row = [](const char *name, const QByteArray &bytes, const QByteArray &body,
                        ScriptedService::Then then, const QString &error) {
        QTest::newRow(name) << bytes << body << then << error;
    };
    row("not a byte", {}, {}, ScriptedService::Close, closed);
    row("in the status line", "HTTP/1.1 2", {}, ScriptedService::Close, closed);
    row("after 100", "HTTP/1.1 100 Continue\r\n\r\n", {}, ScriptedService::Close, closed);
    row("in the body", ok + nine, "part", ScriptedService::Close, closed);
    row("in a chunk", ok + "Transfer-Encoding: chunked\r\n\r\n9\r\npart", "part",
        ScriptedService::Close, closed);
    row("in the header", ok + "Content-Ty", {}, ScriptedService::Close, closed);
    row("after a line of the header", ok + "Content-Type: text/plain\r\n", {},
        ScriptedService::Close, closed);
    row("no HTTP", "SSH-2.0-Some_1\r\n\r\n", {}, ScriptedService::Close, unclear);
    row("no HTTP, and no end", "SSH-2.0-Some_1\r\n\r\n", {}, ScriptedService::KeepOpen, unclear);
    row("no status", "HTTP/1.1 000 Odd\r\n\r\n", {}, ScriptedService::Close, unclear);
    row("no length", ok + "Content-Length: four\r\n\r\nbody", {}, ScriptedService::Close, unclear);
    row("no chunk", ok + "Transfer-Encoding: chunked\r\n\r\nzz\r\nbody\r\n", {},
        ScriptedService::KeepOpen, unclear);
    row("NUL in the header", ok + QByteArray("X: a\0b\r\n\r\n", 10), {}, ScriptedService::KeepOpen,
        unclear);
    row("body of 404", "HTTP/1.1 404 No\r\n" + nine, "part", ScriptedService::Close, closed);
    row("reset before a byte", {}, {}, ScriptedService::Reset, closed);
    row("reset in the body", ok + nine, {}, ScriptedService::Reset, closed);
}

void tst_QHttp::brokenConnectionIsAnError()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, body);
    QFETCH(ScriptedService::Then, then);
    QFETCH(QString, error);
    expect(bytes, then);
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), error);
    if (then != ScriptedService::Reset) // a reset may overtake the bytes
        QCOMPARE(m_sink->data(), body);
    QCOMPARE(m_service->requests().size(), 1);
}

void tst_QHttp::refusedConnectionIsAnError()
{
    QTcpServer nobody;
    QVERIFY(nobody.listen(QHostAddress::LocalHost));
    const quint16 port = nobody.serverPort();
    nobody.close();
    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, port);
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("Connection refused"));
    QCOMPARE(m_headers->size(), 0);
}

void tst_QHttp::sinkThatFailsIsAnError()
{
    FailingSink sink;
    m_service->expect("Echo", "body");
    m_http->request(postTo(QStringLiteral("/tolvex/Echo/")), "x", &sink);
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("no room"));
}

void tst_QHttp::fullDiskIsAnError()
{
    QFile sink(QStringLiteral("/dev/full"));
    QVERIFY(sink.open(QIODevice::WriteOnly));
    m_service->expect("Echo", "body");
    m_http->request(postTo(QStringLiteral("/tolvex/Echo/")), "x", &sink);
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(),
             QStringLiteral("The reply could not be stored. The device may be full."));
}

void tst_QHttp::unknownHostIsAnError()
{
    m_http->setHost(QStringLiteral("no-such-host.invalid"));
    post();
    QTRY_COMPARE_WITH_TIMEOUT(m_done->size(), 1, 60000);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("Host no-such-host.invalid not found"));
}

// A name server that does not answer must not stop the program, nor those who no longer want to
// know.
void tst_QHttp::lookingUpANameHoldsNothingUp()
{
    const NameLookup names(NameLookup::Held);
    m_http->setHost(QStringLiteral("no-such-host.invalid"));
    post();
    QTRY_VERIFY(NameLookup::isWaitedFor());
    m_http->abort();
    QTRY_COMPARE(m_done->size(), 1);
    QVERIFY(NameLookup::isWaitedFor());
    post();
    m_http.reset();
    QVERIFY(NameLookup::isWaitedFor());
}

void tst_QHttp::serviceThatTakesNoConnectionIsAnError()
{
    testTimeConstants().reachWait = 200;
    QTcpServer full;
    full.setListenBacklogSize(0);
    QVERIFY(full.listen(QHostAddress::LocalHost));
    full.pauseAccepting();
    QTcpSocket first;
    first.connectToHost(full.serverAddress(), full.serverPort());
    QTRY_COMPARE(first.state(), QAbstractSocket::ConnectedState);

    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, full.serverPort());
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("The service could not be reached in time."));
}

void tst_QHttp::unknownCertificateIsAnError()
{
    QFile keyFile(QStringLiteral(TEST_DATA "/tls/key.pem"));
    QVERIFY(keyFile.open(QIODevice::ReadOnly));
    QSslConfiguration own = QSslConfiguration::defaultConfiguration();
    own.setLocalCertificateChain(
        QSslCertificate::fromPath(QStringLiteral(TEST_DATA "/tls/certificate.pem")));
    own.setPrivateKey(QSslKey(&keyFile, QSsl::Ec));
    QSslServer server;
    server.setSslConfiguration(own);
    QVERIFY(server.listen(QHostAddress::LocalHost));

    m_http->setHost(QStringLiteral("localhost"), QHttp::ConnectionModeHttps, server.serverPort());
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("The connection to the service is not secure."));
    QCOMPARE(m_headers->size(), 0);
}

void tst_QHttp::noSecureServiceIsAnError()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, this,
            [&] { server.nextPendingConnection()->write("HTTP/1.1 400 Plain\r\n\r\n"); });
    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttps, server.serverPort());
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{true});
    QCOMPARE(m_http->errorString(), QStringLiteral("The connection to the service is not secure."));
}

void tst_QHttp::anAnswerAboutTheProxyIsGoodForAWhile_data()
{
    QTest::addColumn<int>("goodFor"); // ms
    QTest::addColumn<QString>("host");
    QTest::newRow("over") << 0 << QStringLiteral("no-such-host.invalid");
    QTest::newRow("not over") << 3600000 << QStringLiteral("nor-this-one.invalid");
}

void tst_QHttp::anAnswerAboutTheProxyIsGoodForAWhile()
{
    QFETCH(const int, goodFor);
    QFETCH(const QString, host);

    testTimeConstants().proxyAnswer = goodFor;
    m_http->setHost(host);
    ScriptedService::Step step;
    step.bytes = ScriptedService::reply("ok");
    m_service->expect(step);
    if (goodFor > 0)
        m_service->expect(step);
    qputenv("HTTP_PROXY", "http://" + m_service->host().toLatin1());
    const auto restore = qScopeGuard([] { qunsetenv("HTTP_PROXY"); });
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constLast(), QVariantList{false});
    qunsetenv("HTTP_PROXY");
    post();
    QTRY_COMPARE(m_done->size(), 2);
    QCOMPARE(m_done->constLast(), QVariantList{goodFor == 0});
}

void tst_QHttp::proxyOfTheSystemIsUsed()
{
    qputenv("HTTP_PROXY", "http://" + m_service->host().toLatin1());
    const auto restore = qScopeGuard([] { qunsetenv("HTTP_PROXY"); });
    m_http->setHost(QStringLiteral("no-such-host.invalid"));
    ScriptedService::Step step;
    step.bytes = ScriptedService::reply("ok");
    m_service->expect(step);
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
    const ScriptedService::Request request = m_service->requests().constFirst();
    QCOMPARE(request.requestLine,
             QByteArray("POST http://no-such-host.invalid/tolvex/Echo/ HTTP/1.1"));
    QCOMPARE(request.header("Proxy-Connection"), QByteArray());
}

void tst_QHttp::anAnswerAboutANameIsGoodForAWhile_data()
{
    QTest::addColumn<int>("goodFor"); // ms
    QTest::addColumn<QString>("host");
    QTest::newRow("over") << 0 << QStringLiteral("over.test");
    QTest::newRow("not over") << 3600000 << QStringLiteral("not-over.test");
}

void tst_QHttp::anAnswerAboutANameIsGoodForAWhile()
{
    QFETCH(const int, goodFor);
    QFETCH(const QString, host);

    testTimeConstants().nameAnswer = goodFor;
    m_http->setHost(host, QHttp::ConnectionModeHttp, m_service->port());
    ScriptedService::Step step;
    step.bytes = ScriptedService::reply("ok");
    m_service->expect(step);
    if (goodFor > 0)
        m_service->expect(step);
    post();
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constLast(), QVariantList{false});
    const NameLookup names(NameLookup::Unknown);
    post();
    QTRY_COMPARE(m_done->size(), 2);
    QCOMPARE(m_done->constLast(), QVariantList{goodFor == 0});
}

void tst_QHttp::endlessReplyStopsWithItsRequest()
{
    EndlessService service;
    m_http->setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, service.serverPort());
    post();
    QTRY_VERIFY(m_sink->size() > 1024LL * 1024);
    m_http.reset();
    QTRY_VERIFY(service.isLeft());
}

void tst_QHttp::sinkMayBeDeletedMeanwhile()
{
    expect("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nfirst");
    post();
    QTRY_COMPARE(m_sink->data(), QByteArray("first"));
    m_sink.reset();
    QVERIFY(m_service->write("after"));
    QTRY_COMPARE(m_done->size(), 1);
    QCOMPARE(m_done->constFirst(), QVariantList{false});
}

void tst_QHttp::ownerMayDeleteItWhenDone()
{
    bool heard = false;
    connect(m_http.get(), &QHttp::done, this, [&] {
        heard = true;
        m_http.reset();
    });
    m_service->expect("Echo", "body");
    post();
    QTRY_VERIFY(heard);
    QVERIFY(!m_http);
}

void tst_QHttp::ownerMayDeleteItWhenTheHeaderComes()
{
    const QPointer<QHttp> http = m_http.get();
    connect(http, &QHttp::responseHeaderReceived, this,
            [this] { m_http.release()->deleteLater(); });
    expect("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nfirst");
    post();
    QTRY_VERIFY(!http);
    QCOMPARE(m_headers->size(), 1);
    QCOMPARE(m_done->size(), 0);
}

void tst_QHttp::deletedInFlightNothingIsEmitted()
{
    m_service->expectHeld("Echo", "late");
    post();
    QTRY_VERIFY(m_service->isHolding());
    m_http.reset();
    QTRY_VERIFY(!m_service->isHolding()); // its connection is gone
    QCOMPARE(m_done->size(), 0);
}

KAVLOR_TEST_MAIN(tst_QHttp)

#include "tst_qhttp.moc"
