// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"
#include "patience.h"
#include "processmemory.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadrequest.h"

#include <QBuffer>
#include <QDir>
#include <QImageWriter>
#include <QTcpSocket>

#include <sys/resource.h>

#include <algorithm>
#include <memory>
#include <vector>

// What slow, greedy and many clients can do to the others: nothing.
class tst_LocalServiceLoad : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void idleAndDrippingClientsHoldNobodyUp();
    void aTermSignalDoesNotWaitForIdleClients();
    void aSlowStarterIsServed();
    void aConnectionCarriesManyRequests();
    void linesWithoutEndAreRefused_data();
    void linesWithoutEndAreRefused();
    void greedyFormsAreToldToComeAgain();
    void manyFieldsAreNotKept();
    void manyLargeUploadsAtOnceAllBecomeAuctions();
    void aLargeClipGoesToTheDisk();
    void aPhotoThatHasToBeUnpackedWholeIsNot();
    void othersDoNotWaitForPictures();
    void guessesAreHeldBackAndTheRightPasswordIsNot();

private:
    using Socket = std::unique_ptr<QTcpSocket>;

    Socket connected() const;
    static QByteArray progressivePhoto(int edge);
    QByteArray formHeader(const QByteArray &operation, qint64 length) const;
    bool isAnswered();

    LocalServiceProcess m_service;
};

namespace {

const QByteArray login = "Username=m1&Password=secret";

void flush(QTcpSocket &socket)
{
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten()) { }
}

// The reply that arrives on a socket, read to its end.
LocalServiceProcess::Reply replyOn(QTcpSocket &socket)
{
    QByteArray raw = socket.readAll();
    while (!LocalServiceProcess::isWhole(raw) && socket.waitForReadyRead(patience))
        raw += socket.readAll();
    return LocalServiceProcess::parsed(raw);
}

} // namespace

void tst_LocalServiceLoad::initTestCase()
{
    // A thousand connections and what else a test has open.
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
    QVERIFY(m_service.start());
    QCOMPARE(m_service
                 .post("CreateAccount",
                       "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org")
                 .body,
             QByteArray("1"));
}

// Whatever has been done to it, it runs on and answers.
void tst_LocalServiceLoad::cleanup()
{
    QVERIFY(isAnswered());
}

tst_LocalServiceLoad::Socket tst_LocalServiceLoad::connected() const
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QStringLiteral("127.0.0.1"), quint16(m_service.port()));
    return socket->waitForConnected() ? std::move(socket) : nullptr;
}

QByteArray tst_LocalServiceLoad::formHeader(const QByteArray &operation, qint64 length) const
{
    return "POST /tolvex/" + operation + "/ HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
        + "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: "
        + QByteArray::number(length) + "\r\n\r\n";
}

bool tst_LocalServiceLoad::isAnswered()
{
    return m_service.post("ValidateLogin", login).body == "1";
}

void tst_LocalServiceLoad::idleAndDrippingClientsHoldNobodyUp()
{
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    const size_t idle = size_t(std::min<rlim_t>(1000, files.rlim_cur - 200));
    std::vector<Socket> sockets;
    while (sockets.size() < idle) {
        sockets.push_back(connected());
        QVERIFY(sockets.back());
    }
    const QByteArrayList starts{"P", "POST /tolvex/Val",
                                "POST /tolvex/ValidateLogin/ HTTP/1.1\r\nHost: local",
                                formHeader("ValidateLogin", 100) + "Username=",
                                UploadRequest().bytes(m_service.host()).left(900)};
    for (int i = 0; i < 50; ++i) {
        sockets.push_back(connected());
        QVERIFY(sockets.back());
        sockets.back()->write(starts.at(i % starts.size()));
        flush(*sockets.back());
    }
    for (int i = 0; i < 20; ++i)
        QVERIFY(isAnswered());
    QVERIFY(m_service.send(UploadRequest().bytes(m_service.host())).body.toInt() > 0);
    // All of them were there all the time.
    for (const Socket &socket : sockets)
        QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
}

void tst_LocalServiceLoad::aTermSignalDoesNotWaitForIdleClients()
{
    LocalServiceProcess service;
    QVERIFY(service.start());
    std::vector<Socket> sockets;
    for (int i = 0; i < 60; ++i) {
        sockets.push_back(std::make_unique<QTcpSocket>());
        sockets.back()->connectToHost(QStringLiteral("127.0.0.1"), quint16(service.port()));
        QVERIFY(sockets.back()->waitForConnected());
        sockets.back()->write(i % 2 == 0 ? "" : "POST /tolvex/ValidateLogin/ HTTP/1.1\r\nHo");
        flush(*sockets.back());
    }
    // They stay connected until it ends, so that it can only have ended without waiting for them.
    QCOMPARE(service.terminate(), 0);
    QCOMPARE(service.complaints(), QByteArray());
}

void tst_LocalServiceLoad::aSlowStarterIsServed()
{
    const Socket socket = connected();
    QVERIFY(socket);
    QVERIFY(!socket->waitForDisconnected(4000));
    QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
    socket->write(formHeader("ValidateLogin", login.size()) + login);
    QCOMPARE(replyOn(*socket).body, QByteArray("1"));
}

void tst_LocalServiceLoad::aConnectionCarriesManyRequests()
{
    const Socket socket = connected();
    QVERIFY(socket);
    for (int i = 0; i < 5; ++i) {
        socket->write(formHeader("ValidateLogin", login.size()) + login);
        QCOMPARE(replyOn(*socket).body, QByteArray("1"));
        QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
    }
}

void tst_LocalServiceLoad::linesWithoutEndAreRefused_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("more");

    QTest::newRow("a request line") << QByteArray("GET /") << QByteArray(65536, 'x');
    QTest::newRow("a header line") << QByteArray("GET / HTTP/1.1\r\nX: ") << QByteArray(65536, 'x');
    QTest::newRow("many header lines")
        << QByteArray("GET / HTTP/1.1\r\n") << QByteArray("X: y\r\n").repeated(10000);
    QTest::newRow("a cookie") << QByteArray("GET / HTTP/1.1\r\nCookie: ")
                              << QByteArray("a=b;").repeated(10000);
}

void tst_LocalServiceLoad::linesWithoutEndAreRefused()
{
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, more);

    const Socket socket = connected();
    QVERIFY(socket);
    socket->write(start);
    // It goes away long before anybody has sent a gigabyte.
    qint64 sent = 0;
    while (socket->state() == QAbstractSocket::ConnectedState && sent < (1L << 30)) {
        sent += socket->write(more);
        flush(*socket);
    }
    QVERIFY(sent < (64L << 20));
}

void tst_LocalServiceLoad::greedyFormsAreToldToComeAgain()
{
    // More than may be kept of all requests together, none of them complete.
    constexpr qint64 length = 1024L * 1024;
    std::vector<Socket> sockets;
    int refused = 0;
    for (int i = 0; i < 60; ++i) {
        sockets.push_back(connected());
        QVERIFY(sockets.back());
        sockets.back()->write(formHeader("ValidateLogin", length) + login
                              + "&Filler=" + QByteArray(length - login.size() - 9, 'x'));
        flush(*sockets.back());
    }
    for (const Socket &socket : sockets)
        socket->write("y");
    for (const Socket &socket : sockets) {
        const QByteArray answer = replyOn(*socket).body;
        QVERIFY2(answer == "1" || answer == "ERROR: the service is busy, please try again",
                 answer.constData());
        refused += answer == "1" ? 0 : 1;
    }
    QVERIFY(refused > 0 && refused < 60);
}

void tst_LocalServiceLoad::manyFieldsAreNotKept()
{
    QByteArray form = login;
    for (int i = 0; form.size() < 1000000; ++i)
        form += '&' + QByteArray::number(i) + '=';
    QCOMPARE(m_service.post("ValidateLogin", form).body, QByteArray("1"));

    UploadRequest upload;
    for (int i = 0; i < 5000; ++i)
        upload.fields.emplaceBack(QByteArray::number(i), "");
    QCOMPARE(m_service.send(upload.bytes(m_service.host())).body,
             QByteArray("ERROR: the upload has too many parts"));
}

void tst_LocalServiceLoad::manyLargeUploadsAtOnceAllBecomeAuctions()
{
    constexpr int count = 64;
    UploadRequest upload;
    upload.set("Description", "At once");
    upload.media = QByteArray(5L * 1024 * 1024, 'm');
    const QByteArray bytes = upload.bytes(m_service.host());
    std::vector<Socket> sockets;
    for (int i = 0; i < count; ++i) {
        sockets.push_back(std::make_unique<QTcpSocket>());
        sockets.back()->connectToHost(QStringLiteral("127.0.0.1"), quint16(m_service.port()));
        sockets.back()->write(bytes);
    }
    for (const Socket &socket : sockets) {
        QByteArray raw;
        QTRY_VERIFY_WITH_TIMEOUT(LocalServiceProcess::isWhole(raw += socket->readAll()), 60000);
        QVERIFY2(LocalServiceProcess::parsed(raw).body.toInt() > 0, raw.constData());
    }
    const QList<QVariantList> rows =
        m_service.query(QStringLiteral("SELECT media FROM auctions WHERE title = 'At once'"));
    QCOMPARE(rows.size(), count);
    for (const QVariantList &row : rows) {
        const QFileInfo media(m_service.dataDir() + QStringLiteral("/media/")
                              + row.first().toString());
        QCOMPARE(media.size(), upload.media.size());
        QVERIFY(QFile::remove(media.filePath()));
    }
}

void tst_LocalServiceLoad::aLargeClipGoesToTheDisk()
{
    LocalServiceProcess service;
    QVERIFY(service.start({QStringLiteral("--max-media"), QString::number(300L << 20)}));
    QVERIFY(service
                .post("CreateAccount",
                      "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org")
                .body.toInt()
            > 0);
    UploadRequest upload;
    upload.mediaName = "1.mp4";
    upload.media = QByteArray(200L << 20, 'c');
    QCOMPARE(service.send(upload.bytes(service.host())).body, QByteArray("1"));
    const LocalServiceProcess::Reply clip = service.post("GetRawMedia", login + "&AuctionID=1");
    QCOMPARE(clip.type, QByteArray("video/mp4"));
    QVERIFY(clip.body == upload.media);
}

// Its reader keeps all of it, in two bytes for each pixel, until the last pass is there.
QByteArray tst_LocalServiceLoad::progressivePhoto(int edge)
{
    QImage picture(edge, edge, QImage::Format_Grayscale8);
    picture.fill(Qt::lightGray);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "JPEG");
    writer.setProgressiveScanWrite(true);
    return writer.write(picture) ? bytes : QByteArray();
}

void tst_LocalServiceLoad::aPhotoThatHasToBeUnpackedWholeIsNot()
{
    LocalServiceProcess service;
    QVERIFY(service.start());
    QVERIFY(service
                .post("CreateAccount",
                      "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org")
                .body.toInt()
            > 0);
    UploadRequest upload;
    for (const int edge : {4000, 11000}) {
        upload.media = progressivePhoto(edge);
        QVERIFY(service.send(upload.bytes(service.host())).body.toInt() > 0);
    }
    const auto thumbnail = [&service](const char *id) {
        return QImage::fromData(service.post("GetThumbnail", login + "&AuctionID=" + id).body);
    };
    QCOMPARE(thumbnail("1").size(), QSize(220, 220));
    const qint64 before = peakMemoryOf(service.processId());
    QCOMPARE(thumbnail("2").size(), QSize(220, 165)); // the drawn one
    // Its 121 million pixels would be 242 MB.
    QVERIFY(peakMemoryOf(service.processId()) - before < 80L * 1024);
    QCOMPARE(service.post("GetRawMedia", login + "&AuctionID=2").body, upload.media);
}

void tst_LocalServiceLoad::othersDoNotWaitForPictures()
{
    // Pictures that take a while each, asked for before and answered after what is asked later.
    UploadRequest upload;
    QImage picture(3000, 3000, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    upload.mediaName = "1.png";
    upload.media = UploadRequest::encoded(picture, "PNG");
    QByteArrayList ids;
    for (int i = 0; i < 32; ++i) {
        ids.append(m_service.send(upload.bytes(m_service.host())).body);
        QVERIFY2(ids.last().toInt() > 0, ids.last().constData());
    }
    std::vector<Socket> sockets;
    for (const QByteArray &id : ids) {
        const QByteArray form = login + "&AuctionID=" + id;
        sockets.push_back(connected());
        QVERIFY(sockets.back());
        sockets.back()->write(formHeader("GetThumbnail", form.size()) + form);
        flush(*sockets.back());
    }
    QVERIFY(isAnswered());
    const bool wasLater = sockets.back()->waitForReadyRead(0);
    QVERIFY(!wasLater);
    for (const Socket &socket : sockets) {
        const LocalServiceProcess::Reply reply = replyOn(*socket);
        QVERIFY2(reply.type.startsWith("image/"), reply.header + reply.body);
    }
}

void tst_LocalServiceLoad::guessesAreHeldBackAndTheRightPasswordIsNot()
{
    LocalServiceProcess service;
    QVERIFY(service.start());
    QVERIFY(service
                .post("CreateAccount",
                      "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org")
                .body.toInt()
            > 0);
    const QByteArray guess = "Username=m1&Password=guess";
    std::vector<Socket> sockets;
    for (int i = 0; i < 12; ++i) {
        sockets.push_back(std::make_unique<QTcpSocket>());
        sockets.back()->connectToHost(QStringLiteral("127.0.0.1"), quint16(service.port()));
        QVERIFY(sockets.back()->waitForConnected());
        sockets.back()->write(
            "POST /tolvex/GetMyAuctions/ HTTP/1.1\r\nHost: " + service.host().toLatin1()
            + "\r\nContent-Length: " + QByteArray::number(guess.size()) + "\r\n\r\n" + guess);
        flush(*sockets.back());
    }
    // It waits for the guesses' hashes at most, not for their answers.
    QCOMPARE(service.post("ValidateLogin", login).body, QByteArray("1"));
    const auto unanswered = [&sockets] {
        return std::count_if(sockets.cbegin(), sockets.cend(), [](const Socket &socket) {
            return socket->bytesAvailable() == 0 && !socket->waitForReadyRead(0);
        });
    };
    QVERIFY(unanswered() > 0);
    // They are answered in the end.
    for (const Socket &socket : sockets)
        QCOMPARE(replyOn(*socket).body, QByteArray("ERROR: wrong user name or password"));
}

KAVLOR_TEST_MAIN(tst_LocalServiceLoad)
#include "tst_localserviceload.moc"
