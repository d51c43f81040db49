// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadrequest.h"

#include <QDir>
#include <QTcpSocket>

#include <functional>
#include <memory>
#include <vector>

namespace {
constexpr int maxMedia = 300000;
}

class tst_LocalServiceUpload : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void anUploadBecomesAnAuction();
    void accepted_data();
    void accepted();
    void refused_data();
    void refused();
    void bodiesCutShortAreRefused_data();
    void bodiesCutShortAreRefused();
    void anUploadWithoutAnyBodyIsRefused();
    void aMediaFarOverTheLimitStillGetsToReadTheRefusal();
    void mediaThatLooksLikeABoundaryIsKept();
    void manyUploadsAtOnceAllBecomeAuctions();
    void aKillDuringAnUploadLeavesNothing();
    void aKillAfterTheReplyLosesNothing();

private:
    using Change = std::function<void(UploadRequest &)>;

    int auctionCount() const;
    QStringList mediaFiles() const;
    QStringList arrivingFiles() const;
    void expectNothingStored(const LocalServiceProcess::Reply &reply, int auctions);

    LocalServiceProcess m_service;
};

Q_DECLARE_METATYPE(std::function<void(UploadRequest &)>)

void tst_LocalServiceUpload::initTestCase()
{
    QVERIFY(m_service.start({QStringLiteral("--max-media"), QString::number(maxMedia)}));
    QCOMPARE(m_service
                 .post("CreateAccount",
                       "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org")
                 .body,
             QByteArray("1"));
}

void tst_LocalServiceUpload::cleanupTestCase()
{
    QCOMPARE(m_service.terminate(), 0);
    QCOMPARE(m_service.complaints(), QByteArray());
}

int tst_LocalServiceUpload::auctionCount() const
{
    return m_service.value(QStringLiteral("SELECT count(*) FROM auctions")).toInt();
}

QStringList tst_LocalServiceUpload::mediaFiles() const
{
    return QDir(m_service.dataDir() + QStringLiteral("/media"))
        .entryList(QDir::Files | QDir::Hidden);
}

QStringList tst_LocalServiceUpload::arrivingFiles() const
{
    return QDir(m_service.dataDir() + QStringLiteral("/incoming"))
        .entryList(QDir::Files | QDir::Hidden);
}

void tst_LocalServiceUpload::expectNothingStored(const LocalServiceProcess::Reply &reply,
                                                 int auctions)
{
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.type, QByteArray("text/plain"));
    QVERIFY2(reply.body.startsWith("ERROR: "), reply.body.constData());
    QVERIFY(reply.body.size() > 12);
    QCOMPARE(auctionCount(), auctions);
    QCOMPARE(mediaFiles().size(), auctions);
    QTRY_COMPARE(arrivingFiles(), QStringList());
}

void tst_LocalServiceUpload::anUploadBecomesAnAuction()
{
    UploadRequest upload;
    upload.set("Description", "Caf\xe9 <b>");
    upload.set("LongDescription", "Two\nlines");
    upload.set("ReservePrice", "20");
    upload.set("BuyItNowPrice", "3");
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    const LocalServiceProcess::Reply reply = m_service.send(upload.bytes(m_service.host()));
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.type, QByteArray("text/plain"));
    const qint64 id = reply.body.toLongLong();
    QVERIFY2(id > 0, reply.body.constData());

    const QList<QVariantList> rows = m_service.query(
        QStringLiteral("SELECT member, category, title, description, captured, start_price,"
                       " reserve_price, buy_price, state, views FROM auctions WHERE id = ?"),
        {id});
    const QVariantList stored{1,
                              400,
                              QStringLiteral(u"Caf\u00e9 <b>"),
                              QStringLiteral("Two\nlines"),
                              QStringLiteral("20240615203000"),
                              5,
                              20,
                              3,
                              QStringLiteral("running"),
                              0};
    QCOMPARE(rows.size(), 1);
    QCOMPARE(QVariant(rows.first()).toStringList(), QVariant(stored).toStringList());

    const qint64 ends =
        m_service.value(QStringLiteral("SELECT ends FROM auctions WHERE id = ?"), {id})
            .toLongLong();
    constexpr qint64 week = 7L * 24 * 60 * 60;
    QVERIFY(ends >= before + week && ends <= QDateTime::currentSecsSinceEpoch() + week);

    const LocalServiceProcess::Reply media = m_service.post(
        "GetRawMedia",
        "Username=m1&Password=secret&AuctionID=" + QByteArray::number(id) + "&SUBMIT=Submit");
    QCOMPARE(media.type, QByteArray("image/jpeg"));
    QCOMPARE(media.body, upload.media);
}

void tst_LocalServiceUpload::accepted_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("stored");

    const auto set = [](const QByteArray &name, const QByteArray &value) {
        return Change([=](UploadRequest &upload) { upload.set(name, value); });
    };
    const auto named = [](const QByteArray &name) {
        return Change([=](UploadRequest &upload) { upload.mediaName = name; });
    };
    const QString reserve = QStringLiteral("reserve_price");
    const QString buy = QStringLiteral("buy_price");
    const QString title = QStringLiteral("title");
    QTest::newRow("reserve 1 is no reserve") << set("ReservePrice", "1") << reserve << "0";
    QTest::newRow("reserve 0 is no reserve") << set("ReservePrice", "0") << reserve << "0";
    QTest::newRow("empty reserve") << set("ReservePrice", "") << reserve << "0";
    QTest::newRow("reserve just above the start") << set("ReservePrice", "6") << reserve << "6";
    QTest::newRow("empty buy it now") << set("BuyItNowPrice", "") << buy << "0";
    QTest::newRow("buy it now 0") << set("BuyItNowPrice", "0") << buy << "0";
    QTest::newRow("buy it now 1") << set("BuyItNowPrice", "1") << buy << "1";
    QTest::newRow("buy it now below the start") << set("BuyItNowPrice", "2") << buy << "2";
    QTest::newRow("highest price") << set("BuyItNowPrice", "999999999") << buy << "999999999";
    QTest::newRow("lowest start") << set("StartPrice", "1") << "start_price"
                                  << "1";
    QTest::newRow("caption of 500")
        << set("Description", QByteArray(500, 'x')) << title << QString(500, QLatin1Char('x'));
    QTest::newRow("caption with percent signs")
        << set("Description", "100%20 %1") << title << "100%20 %1";
    QTest::newRow("empty description") << set("LongDescription", "") << "description"
                                       << "";
    QTest::newRow("no capture date") << set("CaptureDate", "") << "captured"
                                     << "";
    QTest::newRow("top level category") << set("CategoryID", "7") << "category"
                                        << "7";
    for (const char *ending : {"png", "jpg", "jpeg", "bmp", "gif", "pbm", "pgm", "ppm", "tiff",
                               "xbm", "xpm", "mp4", "3gp"}) {
        QTest::newRow(ending) << named(QByteArray("1.") + ending)
                              << "substr(media, instr(media, '.') + 1)"
                              << QString::fromLatin1(ending);
    }
    QTest::newRow("ending in capitals") << named("1.JPG") << "substr(media, -4)"
                                        << ".jpg";
    QTest::newRow("several dots") << named("1.holiday.png") << "substr(media, -4)"
                                  << ".png";
    QTest::newRow("media of just the limit")
        << Change([](UploadRequest &upload) { upload.media = QByteArray(maxMedia, 'm'); }) << title
        << "The last goal";
    QTest::newRow("fields turned round") << Change([](UploadRequest &upload) {
        std::reverse(upload.fields.begin(), upload.fields.end());
    }) << "start_price"
                                         << "5";
    QTest::newRow("media first") << Change([](UploadRequest &upload) { upload.mediaPosition = 0; })
                                 << "start_price"
                                 << "5";
    QTest::newRow("media in between")
        << Change([](UploadRequest &upload) { upload.mediaPosition = 5; }) << "start_price"
        << "5";
    QTest::newRow("semicolon before the boundary") << Change([](UploadRequest &upload) {
        upload.contentType = "multipart/form-data; boundary=" + upload.boundary;
    }) << title << "The last goal";
    QTest::newRow("quoted boundary") << Change([](UploadRequest &upload) {
        upload.contentType = "multipart/form-data; charset=x; Boundary=\"" + upload.boundary + '"';
    }) << title << "The last goal";
    QTest::newRow("no SUBMIT") << Change([](UploadRequest &upload) { upload.remove("SUBMIT"); })
                               << title << "The last goal";
}

void tst_LocalServiceUpload::accepted()
{
    QFETCH(Change, change);
    QFETCH(QString, column);
    QFETCH(QString, stored);

    UploadRequest upload;
    change(upload);
    const LocalServiceProcess::Reply reply = m_service.send(upload.bytes(m_service.host()));
    const qint64 id = reply.body.toLongLong();
    QVERIFY2(id > 0, reply.body.constData());
    QCOMPARE(
        m_service.value(QStringLiteral("SELECT %1 FROM auctions WHERE id = ?").arg(column), {id})
            .toString(),
        stored);
    const QString media =
        m_service.value(QStringLiteral("SELECT media FROM auctions WHERE id = ?"), {id}).toString();
    QVERIFY(mediaFiles().contains(media));
}

void tst_LocalServiceUpload::refused_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QByteArray>("reason");

    const auto set = [](const QByteArray &name, const QByteArray &value) {
        return Change([=](UploadRequest &upload) { upload.set(name, value); });
    };
    const auto without = [](const QByteArray &name) {
        return Change([=](UploadRequest &upload) { upload.remove(name); });
    };
    const auto named = [](const QByteArray &name) {
        return Change([=](UploadRequest &upload) { upload.mediaName = name; });
    };
    QTest::newRow("wrong password") << set("Password", "Secret") << QByteArray("password");
    QTest::newRow("no password") << without("Password") << QByteArray("password");
    QTest::newRow("unknown member") << set("Username", "nobody") << QByteArray("user name");
    QTest::newRow("unknown category") << set("CategoryID", "99") << QByteArray("category");
    QTest::newRow("category 0") << set("CategoryID", "0") << QByteArray("category");
    QTest::newRow("negative category") << set("CategoryID", "-1") << QByteArray("category");
    QTest::newRow("no category") << without("CategoryID") << QByteArray("category");
    QTest::newRow("no caption") << without("Description") << QByteArray("caption");
    QTest::newRow("empty caption") << set("Description", "") << QByteArray("caption");
    QTest::newRow("blank caption") << set("Description", "  ") << QByteArray("caption");
    QTest::newRow("caption of 501")
        << set("Description", QByteArray(501, 'x')) << QByteArray("caption is longer");
    QTest::newRow("description too long")
        << set("LongDescription", QByteArray(20001, 'x')) << QByteArray("description is longer");
    QTest::newRow("broken capture date") << set("CaptureDate", "yesterday") << QByteArray("date");
    QTest::newRow("start 0") << set("StartPrice", "0") << QByteArray("start price");
    QTest::newRow("empty start") << set("StartPrice", "") << QByteArray("start price");
    QTest::newRow("no start") << without("StartPrice") << QByteArray("start price");
    QTest::newRow("negative start") << set("StartPrice", "-5") << QByteArray("start price");
    QTest::newRow("start with cents") << set("StartPrice", "5.50") << QByteArray("start price");
    QTest::newRow("start in words") << set("StartPrice", "five") << QByteArray("start price");
    QTest::newRow("start with a blank") << set("StartPrice", " 5") << QByteArray("start price");
    QTest::newRow("start too high") << set("StartPrice", "1000000000") << QByteArray("start price");
    QTest::newRow("start beyond all numbers")
        << set("StartPrice", "99999999999999999999") << QByteArray("start price");
    QTest::newRow("reserve equals start")
        << set("ReservePrice", "5") << QByteArray("reserve price");
    QTest::newRow("reserve below start") << set("ReservePrice", "2") << QByteArray("reserve price");
    QTest::newRow("reserve with cents") << set("ReservePrice", "9.5") << QByteArray("whole");
    QTest::newRow("negative reserve") << set("ReservePrice", "-9") << QByteArray("whole");
    QTest::newRow("reserve too high") << set("ReservePrice", "1000000000") << QByteArray("whole");
    QTest::newRow("buy it now in words") << set("BuyItNowPrice", "much") << QByteArray("whole");
    QTest::newRow("buy it now too high")
        << set("BuyItNowPrice", "1000000000") << QByteArray("whole");
    QTest::newRow("no media") << named("") << QByteArray("media is missing");
    QTest::newRow("empty media") << Change([](UploadRequest &upload) { upload.media.clear(); })
                                 << QByteArray("media is missing");
    QTest::newRow("media over the limit")
        << Change([](UploadRequest &upload) { upload.media = QByteArray(maxMedia + 1, 'm'); })
        << QByteArray("larger than 300000 bytes");
    QTest::newRow("ending of a program") << named("1.exe") << QByteArray("kind of media");
    QTest::newRow("ending of a page") << named("1.svg") << QByteArray("kind of media");
    QTest::newRow("no ending") << named("1") << QByteArray("kind of media");
    QTest::newRow("a path for an ending") << named("1.jpg/../../x") << QByteArray("kind of media");
    QTest::newRow("fewer media bytes than announced") << Change([](UploadRequest &upload) {
        upload.announcedMediaBytes = upload.media.size() + 1;
    }) << QByteArray("cut short");
    QTest::newRow("two media") << Change([](UploadRequest &upload) {
        upload.fields.emplaceBack("MediaFile", "second");
    }) << QByteArray("more than one");
    QTest::newRow("a part without a name")
        << Change([](UploadRequest &upload) { upload.fields.emplaceBack("", "x"); })
        << QByteArray("without a name");
    QTest::newRow("another boundary") << Change([](UploadRequest &upload) {
        upload.contentType = "multipart/form-data, boundary=ffffffffffffffffffffffffffffffff";
    }) << QByteArray("boundary");
    QTest::newRow("no boundary") << Change([](UploadRequest &upload) {
        upload.contentType = "multipart/form-data";
    }) << QByteArray("boundary");
    QTest::newRow("texts beyond all measure")
        << set("LongDescription", QByteArray(1100000, 'x')) << QByteArray("too long");
}

void tst_LocalServiceUpload::refused()
{
    QFETCH(Change, change);
    QFETCH(QByteArray, reason);

    const int auctions = auctionCount();
    UploadRequest upload;
    change(upload);
    const LocalServiceProcess::Reply reply = m_service.send(upload.bytes(m_service.host()));
    expectNothingStored(reply, auctions);
    QVERIFY2(reply.body.contains(reason), reply.body.constData());
}

void tst_LocalServiceUpload::bodiesCutShortAreRefused_data()
{
    QTest::addColumn<int>("missing");
    QTest::addColumn<bool>("announced");

    // Both a body that is shorter than announced, and one that was announced to end there.
    for (const bool announced : {false, true}) {
        const char *kind = announced ? "announced so" : "connection lost";
        QTest::addRow("line end missing, %s", kind) << 2 << announced;
        QTest::addRow("closing dashes missing, %s", kind) << 4 << announced;
        QTest::addRow("half a boundary missing, %s", kind) << 20 << announced;
        QTest::addRow("media's end missing, %s", kind) << 100 << announced;
        QTest::addRow("media missing, %s", kind) << 900 << announced;
    }
}

void tst_LocalServiceUpload::bodiesCutShortAreRefused()
{
    QFETCH(int, missing);
    QFETCH(bool, announced);

    const int auctions = auctionCount();
    const UploadRequest upload;
    const QByteArray whole = upload.body();
    const QByteArray sent = whole.chopped(missing);
    if (announced) {
        const LocalServiceProcess::Reply reply =
            m_service.send(upload.header(sent, m_service.host()) + sent);
        // The line end after the closing boundary says nothing more.
        if (missing == 2)
            QVERIFY2(reply.body.toLongLong() > 0, reply.body.constData());
        else
            expectNothingStored(reply, auctions);
        return;
    }
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), quint16(m_service.port()));
    QVERIFY(socket.waitForConnected());
    socket.write(upload.header(whole, m_service.host()) + sent);
    while (socket.bytesToWrite() > 0)
        QVERIFY(socket.waitForBytesWritten());
    socket.disconnectFromHost();
    // A request after it shows that the service is past the first.
    QCOMPARE(m_service.post("ValidateLogin", "Username=m1&Password=secret").body, QByteArray("1"));
    QTRY_COMPARE(arrivingFiles(), QStringList());
    QCOMPARE(auctionCount(), auctions);
    QCOMPARE(mediaFiles().size(), auctions);
}

void tst_LocalServiceUpload::anUploadWithoutAnyBodyIsRefused()
{
    const int auctions = auctionCount();
    expectNothingStored(m_service.send(UploadRequest().header({}, m_service.host())), auctions);
    expectNothingStored(m_service.post("CreateAuction", "Username=m1&Password=secret"), auctions);
}

void tst_LocalServiceUpload::aMediaFarOverTheLimitStillGetsToReadTheRefusal()
{
    const int auctions = auctionCount();
    UploadRequest upload;
    upload.media = QByteArray(40L * 1024 * 1024, 'm');
    expectNothingStored(m_service.send(upload.bytes(m_service.host())), auctions);
}

void tst_LocalServiceUpload::mediaThatLooksLikeABoundaryIsKept()
{
    UploadRequest upload;
    upload.media =
        "\r\n--" + upload.boundary.chopped(1) + "X\r\n\r\n--\r\n--" + upload.boundary.chopped(2);
    const LocalServiceProcess::Reply reply = m_service.send(upload.bytes(m_service.host()));
    const LocalServiceProcess::Reply media =
        m_service.post("GetRawMedia", "Username=m1&Password=secret&AuctionID=" + reply.body);
    QCOMPARE(media.body, upload.media);
}

void tst_LocalServiceUpload::manyUploadsAtOnceAllBecomeAuctions()
{
    constexpr int count = 12;
    const int auctions = auctionCount();
    std::vector<std::unique_ptr<QTcpSocket>> sockets;
    for (int i = 0; i < count; ++i) {
        UploadRequest upload;
        upload.set("Description", "At once " + QByteArray::number(i));
        sockets.push_back(std::make_unique<QTcpSocket>());
        sockets.back()->connectToHost(QStringLiteral("127.0.0.1"), quint16(m_service.port()));
        sockets.back()->write(upload.bytes(m_service.host()));
    }
    QSet<QByteArray> ids;
    for (const auto &socket : sockets) {
        QByteArray raw;
        QTRY_VERIFY(LocalServiceProcess::isWhole(raw += socket->readAll()));
        const QByteArray id = LocalServiceProcess::parsed(raw).body;
        QVERIFY2(id.toLongLong() > 0, id.constData());
        ids.insert(id);
    }
    QCOMPARE(ids.size(), count);
    QCOMPARE(auctionCount(), auctions + count);
    QCOMPARE(mediaFiles().size(), auctions + count);
    QCOMPARE(
        m_service
            .value(QStringLiteral("SELECT count(*) FROM auctions WHERE title LIKE 'At once %'"))
            .toInt(),
        count);
}

void tst_LocalServiceUpload::aKillDuringAnUploadLeavesNothing()
{
    const int auctions = auctionCount();
    UploadRequest upload;
    upload.media = QByteArray(maxMedia, 'k');
    const QByteArray bytes = upload.bytes(m_service.host());
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), quint16(m_service.port()));
    QVERIFY(socket.waitForConnected());
    socket.write(bytes.left(bytes.size() - 100000));
    while (socket.bytesToWrite() > 0)
        QVERIFY(socket.waitForBytesWritten());
    m_service.kill();

    QVERIFY(m_service.start({QStringLiteral("--max-media"), QString::number(maxMedia)}));
    QCOMPARE(auctionCount(), auctions);
    QCOMPARE(mediaFiles().size(), auctions);
    QCOMPARE(arrivingFiles(), QStringList());

    // What an upload that was about to be recorded would have left, too.
    m_service.kill();
    for (const char *name : {"/incoming/abc.part", "/media/0123.jpg"}) {
        QFile orphan(m_service.dataDir() + QLatin1String(name));
        QVERIFY(orphan.open(QIODevice::WriteOnly));
    }
    QVERIFY(m_service.start({QStringLiteral("--max-media"), QString::number(maxMedia)}));
    QCOMPARE(mediaFiles().size(), auctions);
    QCOMPARE(arrivingFiles(), QStringList());
}

void tst_LocalServiceUpload::aKillAfterTheReplyLosesNothing()
{
    for (int round = 0; round < 3; ++round) {
        UploadRequest upload;
        upload.media += QByteArray::number(round);
        const QByteArray id = m_service.send(upload.bytes(m_service.host())).body;
        m_service.kill();
        QVERIFY2(id.toLongLong() > 0, id.constData());

        QVERIFY(m_service.start({QStringLiteral("--max-media"), QString::number(maxMedia)}));
        QCOMPARE(m_service.post("GetRawMedia", "Username=m1&Password=secret&AuctionID=" + id).body,
                 upload.media);
    }
}

KAVLOR_TEST_MAIN(tst_LocalServiceUpload)
#include "tst_localserviceupload.moc"
