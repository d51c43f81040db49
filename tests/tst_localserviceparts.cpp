// SPDX-License-Identifier: MIT

#include "byterange.h"
#include "database.h"
#include "fields.h"
#include "formbody.h"
#include "localclock.h"
#include "multipartreader.h"
#include "operations.h"
#include "options.h"
#include "ownaddress.h"
#include "pagewriter.h"
#include "passwords.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadrequest.h"
#include "visitortoken.h"
#include "workers.h"

#include <QFile>
#include <QTemporaryDir>

#include <atomic>

// The service's own classes one by one, without a socket or another process.
class tst_LocalServiceParts : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void theReaderTakesAnUploadInPiecesOfAnySize_data();
    void theReaderTakesAnUploadInPiecesOfAnySize();
    void theReaderTakesADevicesOwnBytes();
    void theReaderRefusesEveryBodyCutShort();
    void theReaderRefusesBrokenBodies_data();
    void theReaderRefusesBrokenBodies();
    void theReaderStopsWhereTheDiskDoes();

    void formsAreDecoded_data();
    void formsAreDecoded();
    void formNumbersAreWholeAndBounded();
    void formsKeepAHundredFields();

    void tokensBelongToTheirVisitor();
    void passwordsAreHashed();
    void sealsCannotBeGuessed();
    void rangesAreRead_data();
    void rangesAreRead();
    void onlyTheOwnAddressIsOwn();
    void itemsFitIntoALine_data();
    void itemsFitIntoALine();
    void momentsAreShownInTheZoneOfThisMachine_data();
    void momentsAreShownInTheZoneOfThisMachine();
    void theCategoryLookedForIsShown();
    void pagesEscapeWhatTheyAreGiven();

    void sessionsAreWholeOrNothing();
    void aFailedStatementIsNoEmptyResult();
    void wordsOfEarlierAuctionsAreFound();

    void workersKeepTheirOrderAndDelays();
    void workersEndWithAllDone();
};

void tst_LocalServiceParts::initTestCase()
{
    QVERIFY(prepareSecrets());
}

namespace {

struct Read
{
    QString error;
    Fields fields;
    QByteArray media;
};

Read read(const UploadRequest &upload, const QByteArray &body, qsizetype piece)
{
    Read result;
    MultipartReader reader(upload.boundary, 100000, [&result](const QByteArray &bytes) {
        result.media += bytes;
        return true;
    });
    for (qsizetype i = 0; i < body.size(); i += piece)
        reader.feed(body.mid(i, piece));
    reader.finish();
    result.error = reader.error();
    result.fields = reader.fields();
    return result;
}

} // namespace

void tst_LocalServiceParts::theReaderTakesAnUploadInPiecesOfAnySize_data()
{
    QTest::addColumn<int>("piece");

    for (const int piece : {1, 2, 3, 7, 33, 34, 36, 64, 1000, 1000000})
        QTest::addRow("%d", piece) << piece;
}

void tst_LocalServiceParts::theReaderTakesAnUploadInPiecesOfAnySize()
{
    QFETCH(int, piece);

    UploadRequest upload;
    upload.media += "\r\n--" + upload.boundary.chopped(1) + "\r\n\r\n--";
    const Read result = read(upload, upload.body(), piece);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.media, upload.media);
    QCOMPARE(result.fields.text(QStringLiteral("Description")), QStringLiteral("The last goal"));
    QVERIFY(result.fields.has(QStringLiteral("CaptureLatitude")));
}

void tst_LocalServiceParts::theReaderTakesADevicesOwnBytes()
{
    QCOMPARE(MultipartReader::boundaryOf("multipart/form-data, boundary=0a1b"), QByteArray("0a1b"));
    QCOMPARE(MultipartReader::boundaryOf("multipart/form-data; boundary=\"0 a\"; x=y"),
             QByteArray("0 a"));
    QCOMPARE(MultipartReader::boundaryOf("multipart/form-data"), QByteArray());
}

void tst_LocalServiceParts::theReaderRefusesEveryBodyCutShort()
{
    UploadRequest upload;
    upload.media = "media";
    const QByteArray body = upload.body();
    for (qsizetype length = 0; length < body.size() - 2; ++length) {
        const Read result = read(upload, body.left(length), 1000);
        QVERIFY2(!result.error.isEmpty(), QByteArray::number(length));
    }
}

void tst_LocalServiceParts::theReaderRefusesBrokenBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("error");

    const QByteArray line = "--" + UploadRequest().boundary;
    QTest::newRow("not a boundary after it") << line + "x\r\n\r\n"
                                             << "a broken boundary";
    QTest::newRow("a header without end")
        << line + "\r\nX: " + QByteArray(9000, 'x') << "without an end to its header";
    QTest::newRow("no header") << line + "\r\nX: y\r\n\r\nx\r\n" + line + "--"
                               << "without a name";
    QTest::newRow("nothing but bytes") << QByteArray(9000, 'x') << "does not hold its boundary";
    QTest::newRow("many small parts")
        << (line + "\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n\r\n").repeated(200)
        << "too many parts";
    QTest::newRow("more than was announced") << line
            + "\r\nContent-Disposition: form-data; name=\"MediaFile\"; filename=\"1.jpg\"\r\n"
              "Content-length: 1\r\n\r\nxx\r\n"
            + line + "--"
                                             << "cut short";
}

void tst_LocalServiceParts::theReaderRefusesBrokenBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, error);

    for (const qsizetype piece : {1, 100000}) {
        const Read result = read(UploadRequest(), body, piece);
        QVERIFY2(result.error.contains(error), qPrintable(result.error));
    }
}

void tst_LocalServiceParts::theReaderStopsWhereTheDiskDoes()
{
    UploadRequest upload;
    MultipartReader reader(upload.boundary, 100000, [](const QByteArray &) { return false; });
    reader.feed(upload.body());
    reader.finish();
    QCOMPARE(reader.error(), QStringLiteral("the media could not be stored"));
}

void tst_LocalServiceParts::formsAreDecoded_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("value"); // of the field "a"

    QTest::newRow("plain") << QByteArray("a=b") << "b";
    QTest::newRow("the last one stands") << QByteArray("a=b&a=c") << "c";
    QTest::newRow("doubled ampersands") << QByteArray("&&x=y&&a=b&&") << "b";
    QTest::newRow("percent signs") << QByteArray("a=%26%3D%25") << "&=%";
    QTest::newRow("blanks") << QByteArray("a=b+c%20d") << "b c d";
    QTest::newRow("UTF-8") << QByteArray("a=%C3%A9") << QStringLiteral(u"\u00e9");
    QTest::newRow("Latin-1") << QByteArray("a=%E9") << QStringLiteral(u"\u00e9");
    QTest::newRow("equals signs") << QByteArray("a=b=c") << "b=c";
    QTest::newRow("no name") << QByteArray("=b&a") << "";
    QTest::newRow("nothing") << QByteArray() << "";
}

void tst_LocalServiceParts::formsAreDecoded()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, value);

    QCOMPARE(fieldsOfForm(body).text(QStringLiteral("a")), value);
}

void tst_LocalServiceParts::formNumbersAreWholeAndBounded()
{
    const Fields form = fieldsOfForm("a=12&b=-1&c=1.5&d=&e=99999999999999999999&f=+1");
    QCOMPARE(form.number(QStringLiteral("a"), 12), 12);
    QCOMPARE(form.number(QStringLiteral("a"), 11), -1);
    for (const char *name : {"b", "c", "d", "e", "f", "g"})
        QCOMPARE(form.number(QLatin1String(name), 1000), -1);
}

void tst_LocalServiceParts::formsKeepAHundredFields()
{
    QByteArray body;
    for (int i = 0; i < 200; ++i)
        body += 'f' + QByteArray::number(i) + "=x&";
    const Fields form = fieldsOfForm(body);
    QVERIFY(form.has(QStringLiteral("f99")));
    QVERIFY(!form.has(QStringLiteral("f100")));
}

void tst_LocalServiceParts::tokensBelongToTheirVisitor()
{
    const VisitorToken fresh = VisitorToken::fromCookies("other=1");
    QVERIFY(!fresh.newCookie().isEmpty());
    QVERIFY(!fresh.isOwnForm(fresh.formToken())); // before the cookie has come back
    const QByteArray cookie = fresh.newCookie().left(fresh.newCookie().indexOf(';'));

    const VisitorToken known = VisitorToken::fromCookies("other=1; " + cookie);
    QCOMPARE(known.newCookie(), QByteArray());
    QCOMPARE(known.formToken(), fresh.formToken());
    QVERIFY(known.isOwnForm(fresh.formToken()));
    QVERIFY(!known.isOwnForm({}));
    QVERIFY(!known.isOwnForm(fresh.formToken().chopped(1) + 'g'));
    QVERIFY(!VisitorToken::fromCookies("visitor=somebody").isOwnForm(fresh.formToken()));
}

void tst_LocalServiceParts::passwordsAreHashed()
{
    const Result<QByteArray> hash = hashPassword(QStringLiteral("secret"));
    QVERIFY(hash.isOk() && hash.value().startsWith("$argon2id$"));
    QVERIFY(hash.value() != hashPassword(QStringLiteral("secret")).value());
    QVERIFY(isPassword(hash.value(), QStringLiteral("secret")).value());
    QVERIFY(!isPassword(hash.value(), QStringLiteral("Secret")).value());
    QVERIFY(!isPassword(hash.value(), {}).value());
    QVERIFY(!isPassword({}, QStringLiteral("secret")).value());
    QVERIFY(!isPassword("no hash", QStringLiteral("secret")).value());
}

void tst_LocalServiceParts::sealsCannotBeGuessed()
{
    QVERIFY(isSeal("text", seal("text")));
    QVERIFY(!isSeal("text", seal("other")));
    QVERIFY(!isSeal("text", {}));
    QVERIFY(seal("text") != fingerprint("text"));
    QVERIFY(randomName() != randomName());
    QCOMPARE(randomName().size(), 32);
}

void tst_LocalServiceParts::rangesAreRead_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<qint64>("first"); // -1 = the whole file
    QTest::addColumn<qint64>("length");

    const auto row = [](const char *line, qint64 first, qint64 length) {
        QTest::newRow(line) << QByteArray(line) << first << length;
    };
    row("", -1, 0);
    row("bytes=0-0", 0, 1);
    row("bytes=3-5", 3, 3);
    row("bytes=3-", 3, 7);
    row("bytes=-4", 6, 4);
    row("bytes=-40", 0, 10);
    row("bytes=5-99", 5, 5);
    row("bytes=10-", 10, 0);
    row("bytes=-0", 10, 0);
    row("bytes=-", -1, 0);
    row("bytes=5-3", -1, 0);
    row("bytes=0-1,3-4", -1, 0);
    row("lines=1-2", -1, 0);
    row("bytes=x-y", -1, 0);
    row("bytes=9999999999999999999999-", -1, 0);
}

void tst_LocalServiceParts::rangesAreRead()
{
    QFETCH(QByteArray, line);
    QFETCH(qint64, first);
    QFETCH(qint64, length);

    const std::optional<ByteRange> range = ByteRange::parse(line, 10);
    QCOMPARE(range.has_value(), first >= 0);
    if (!range)
        return;
    QCOMPARE(range->first, first);
    QCOMPARE(range->length, length);
}

void tst_LocalServiceParts::onlyTheOwnAddressIsOwn()
{
    const OwnAddress address(8470);
    QCOMPARE(address.asker("localhost:8470", {}), OwnAddress::Own);
    QCOMPARE(address.asker("127.0.0.1:8470", "http://127.0.0.1:8470"), OwnAddress::Own);
    QCOMPARE(address.asker("localhost:8470", "http://127.0.0.1:8470"), OwnAddress::ForeignOrigin);
    QCOMPARE(address.asker("localhost", {}), OwnAddress::ForeignHost);
    QCOMPARE(address.asker("localhost:80", {}), OwnAddress::ForeignHost);
    QCOMPARE(OwnAddress(80).asker("localhost", {}), OwnAddress::Own);
}

void tst_LocalServiceParts::itemsFitIntoALine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("item");

    QTest::newRow("plain") << "The last goal" << QByteArray("The last goal");
    QTest::newRow("commas") << "a,b,,c" << QByteArray("a;b;;c");
    QTest::newRow("line ends and tabs") << " a\r\nb\t \tc\n" << QByteArray("a b c");
    QTest::newRow("control characters")
        << QStringLiteral(u"a\u0000\u0001\u0085b\u009f") << QByteArray("a b");
    QTest::newRow("a blank that is none to a line") << QStringLiteral(u"a\u00a0\u2028b")
                                                    << QByteArray("a\xc2\xa0\xe2\x80\xa8"
                                                                  "b");
    QTest::newRow("the word of a refusal")
        << "ERRORERROR, Error" << QByteArray("ErrorError; Error");
    QTest::newRow("beyond the first plane")
        << QStringLiteral(u"\U0001f5bc,") << QByteArray("\xf0\x9f\x96\xbc;");
    QTest::newRow("nothing") << "" << QByteArray();
}

void tst_LocalServiceParts::itemsFitIntoALine()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, item);

    QCOMPARE(Operations::item(text), item);
}

void tst_LocalServiceParts::momentsAreShownInTheZoneOfThisMachine_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<qint64>("moment");
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("no zone") << QByteArray("UTC") << qint64(1718397000)
                             << QByteArray("06/14/2024 20:30");
    QTest::newRow("winter") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3") << qint64(1705264200)
                            << QByteArray("01/14/2024 21:30");
    QTest::newRow("summer") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3") << qint64(1718397000)
                            << QByteArray("06/14/2024 22:30");
    QTest::newRow("the day before")
        << QByteArray("XXX9:30") << qint64(1718411400) << QByteArray("06/14/2024 15:00");
}

void tst_LocalServiceParts::momentsAreShownInTheZoneOfThisMachine()
{
    QFETCH(QByteArray, zone);
    QFETCH(qint64, moment);
    QFETCH(QByteArray, text);

    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", zone);
    const QByteArray shown = LocalClock().text(moment, "%m/%d/%Y %H:%M");
    qputenv("TZ", before);
    QCOMPARE(shown, text);
}

void tst_LocalServiceParts::theCategoryLookedForIsShown()
{
    Auctions::Search search;
    for (const qint64 category : {0, 4, 40, 400}) {
        search.category = category;
        const QByteArray page = PageWriter("0123").auctions({}, search, {});
        const QByteArray option =
            "<option value=\"" + QByteArray::number(category) + "\" selected>";
        QCOMPARE(page.count(" selected"), category == 0 ? 0 : 1);
        QCOMPARE(page.contains(option), category != 0);
    }
}

void tst_LocalServiceParts::pagesEscapeWhatTheyAreGiven()
{
    Auctions::Auction auction;
    auction.id = 7;
    auction.title = QStringLiteral("<title> %1 \"&");
    auction.seller = QStringLiteral("<seller>");
    auction.description = QStringLiteral("<description> %2");
    auction.ends = LocalClock::now() + 86400;
    Fields typed;
    typed.set(QStringLiteral("name"), QStringLiteral("\"><name>"));
    Auctions::Search search;
    search.words = QStringLiteral("\"><words>%1");
    const PageWriter writer("0123");
    for (const QByteArray &page :
         {writer.auction(auction, {{QStringLiteral("<bidder>"), 5, {}}},
                         {QStringLiteral("<notice>"), true}, typed),
          writer.auctions({{auction}, true}, search, {auction}),
          writer.outbox({{1,
                          QStringLiteral("<to>"),
                          QStringLiteral("<subject>"),
                          QStringLiteral("http://own/<body>"),
                          {}}},
                        QStringLiteral("http://own/")),
          writer.newPassword("<secret>", {QStringLiteral("<notice>"), true}),
          writer.message(QStringLiteral("<title>"), QStringLiteral("<text>"))}) {
        for (const char *name :
             {"<title> ", "<seller", "<description", "<name", "<words", "<bidder", "<notice", "<to",
              "<subject", "<body>\n", "<secret", "<text>"})
            QVERIFY2(!page.contains(name), name);
        QVERIFY(page.contains("&lt;"));
    }
}

void tst_LocalServiceParts::sessionsAreWholeOrNothing()
{
    QTemporaryDir folder;
    Database database(folder.filePath(QStringLiteral("a.sqlite")));
    QVERIFY(database.open(Database::MayBeEmpty).isOk());
    const auto mails = [&database] {
        return Database::Session(database)
            .select(QStringLiteral("SELECT count(*) FROM mails"))
            .value()
            .first()
            .first()
            .toInt();
    };
    const QString insert = QStringLiteral(
        "INSERT INTO mails (recipient, subject, body, written) VALUES (?, '', '', 0)");
    {
        Database::Session session(database, Database::Writing);
        session.change(insert, {QStringLiteral("nobody")});
    }
    QCOMPARE(mails(), 0);
    {
        Database::Session session(database, Database::Writing);
        session.change(insert, {QStringLiteral("somebody")});
        QCOMPARE(session.addedRow(), 1);
        QVERIFY(session.commit().isOk());
    }
    QCOMPARE(mails(), 1);
    {
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral("the database failed.*nowhere")));
        Database::Session session(database, Database::Writing);
        session.change(insert, {QStringLiteral("half")});
        session.change(QStringLiteral("INSERT INTO nowhere VALUES (1)"));
        QVERIFY(!session.commit().isOk());
    }
    QCOMPARE(mails(), 1);
}

void tst_LocalServiceParts::aFailedStatementIsNoEmptyResult()
{
    QTemporaryDir folder;
    Database database(folder.filePath(QStringLiteral("a.sqlite")));
    QVERIFY(database.open(Database::MayBeEmpty).isOk());
    Database::Session session(database);
    const Result<Database::Rows> none = session.select(QStringLiteral("SELECT id FROM mails"));
    QVERIFY(none.isOk() && none.value().isEmpty());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("nowhere")));
    const Result<Database::Rows> failed = session.select(QStringLiteral("SELECT id FROM nowhere"));
    QVERIFY(!failed.isOk());
    QCOMPARE(failed.failure().kind, Failure::Broken);
    // Nothing of such a session counts any more.
    QVERIFY(!session.select(QStringLiteral("SELECT id FROM mails")).isOk());
    QVERIFY(!Database(folder.filePath(QStringLiteral("none.sqlite")))
                 .open(Database::MustBeThere)
                 .isOk());
    QVERIFY(!QFile::exists(folder.filePath(QStringLiteral("none.sqlite"))));
}

void tst_LocalServiceParts::wordsOfEarlierAuctionsAreFound()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.sqlite"));
    {
        Database database(path);
        QVERIFY(database.open(Database::MayBeEmpty).isOk());
        Database::Session session(database, Database::Writing);
        for (const char *statement :
             {"DROP TRIGGER auction_is_new", "DROP TABLE auction_words", "PRAGMA user_version = 1",
              "INSERT INTO members VALUES (1, 'm1', '', '', '', '', '', '', '', '', '', 1, 1, 0, "
              "1)",
              "INSERT INTO auctions (member, category, title, description, captured, media,"
              " start_price, reserve_price, buy_price, created, ends)"
              " VALUES (1, 400, 'An early bird', '', '', 'x.jpg', 1, 0, 0, 1, 4000000000)"})
            session.change(QLatin1String(statement));
        QVERIFY(session.commit().isOk());
    }
    Database database(path);
    QVERIFY(database.open(Database::MustBeThere).isOk());
    Auctions::Search search;
    search.words = QStringLiteral("birds");
    QVERIFY(Auctions(database).onSale(search).value().auctions.isEmpty());
    search.words = QStringLiteral("EARLY bir");
    QCOMPARE(Auctions(database).onSale(search).value().auctions.size(), 1);
}

void tst_LocalServiceParts::workersKeepTheirOrderAndDelays()
{
    Workers workers(1);
    std::mutex mutex;
    QByteArray order;
    std::atomic<int> done{0};
    const auto note = [&](char name) {
        return [&, name] {
            const std::lock_guard<std::mutex> lock(mutex);
            order += name;
            ++done;
        };
    };
    workers.run(note('c'), std::chrono::milliseconds(200));
    workers.run(note('b'), std::chrono::milliseconds(100));
    workers.run(note('a'));
    QTRY_COMPARE(done.load(), 3);
    const std::lock_guard<std::mutex> lock(mutex);
    QCOMPARE(order, QByteArray("abc"));
}

void tst_LocalServiceParts::workersEndWithAllDone()
{
    Workers workers(2);
    std::atomic<int> done{0};
    for (int i = 0; i < 10; ++i)
        workers.run([&done] { ++done; }, std::chrono::hours(1));
    QVERIFY(workers.end(Workers::Clock::now() + std::chrono::minutes(1)));
    QCOMPARE(done.load(), 10);
    workers.run([&done] { ++done; });
    QCOMPARE(done.load(), 11);
}

KAVLOR_TEST_MAIN(tst_LocalServiceParts)
#include "tst_localserviceparts.moc"
