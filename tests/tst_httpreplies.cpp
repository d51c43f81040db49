// SPDX-License-Identifier: MIT

#include "onlineconnector.h"
#include "resultlog.h"
#include "scriptedservice.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QDir>
#include <QFile>

#include <memory>

// Replays replies with odd or broken framing. Of each one is asked: one request on the wire, at
// least one result in time, which is at once where the connection is closed, no file left, and the
// next request works. KAVLOR_HTTP_REPLIES may name a folder with more of them: raw replies in
// files, and an index.tsv whose lines give a file's name, what is odd about it, and "keep" or
// "close" for the connection after it.
class tst_HttpReplies : public TestCase
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();

private:
    OnlineConnector m_connector;
};

namespace {

void addOwnReplies()
{
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const auto kept = [](const char *name, const QByteArray &bytes) {
        QTest::newRow(name) << bytes << false;
    };
    const auto closed = [](const char *name, const QByteArray &bytes) {
        QTest::newRow(name) << bytes << true;
    };

    kept("chunk size that is no number",
         ok + "Transfer-Encoding: chunked\r\n\r\nzz\r\nbody\r\n0\r\n\r\n");
    kept("chunk size beyond any number",
         ok + "Transfer-Encoding: chunked\r\n\r\nfffffffffffffffffff\r\nbody\r\n");
    kept("negative chunk size", ok + "Transfer-Encoding: chunked\r\n\r\n-4\r\nbody\r\n0\r\n\r\n");
    kept("chunk without its line end", ok + "Transfer-Encoding: chunked\r\n\r\n4\r\nbody0\r\n\r\n");
    closed("chunks without the last", ok + "Transfer-Encoding: chunked\r\n\r\n4\r\nbody\r\n");
    closed("nothing but a chunk size", ok + "Transfer-Encoding: chunked\r\n\r\n4");
    kept("chunked twice",
         ok
             + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n"
               "4\r\nbody\r\n0\r\n\r\n");
    kept("chunked and a length",
         ok + "Transfer-Encoding: chunked\r\nContent-Length: 99\r\n\r\n4\r\nbody\r\n0\r\n\r\n");
    closed("length that is no number", ok + "Content-Length: four\r\n\r\nbody");
    closed("negative length", ok + "Content-Length: -4\r\n\r\nbody");
    closed("length beyond any number", ok + "Content-Length: 99999999999999999999999\r\n\r\nbody");
    closed("two lengths", ok + "Content-Length: 4\r\nContent-Length: 9\r\n\r\nbody");
    kept("length too short", ok + "Content-Length: 2\r\n\r\nbody");
    kept("length too long", ok + "Content-Length: 9\r\n\r\nbody");
    kept("no length and no end", ok + "\r\nbody");
    kept("header without an end", ok + "Content-Type: text/plain\r\n");
    closed("header line without a colon", ok + "Nonsense\r\nContent-Length: 4\r\n\r\nbody");
    closed("folded header line", ok + "X: a\r\n b\r\nContent-Length: 4\r\n\r\nbody");
    closed("NUL in the header",
           ok + QByteArray("X: a\0b\r\n", 8) + "Content-Length: 4\r\n\r\nbody");
    closed("header line that begins with a carriage return", ok + "X: a\r\n\rY: b\r\n\r\nbody");
    closed("switch of protocols, and bytes of the other one",
           "HTTP/1.1 101 Switch\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\nbody");
    closed("header line of blanks", ok + "X: a\r\n  \r\nContent-Length: 4\r\n\r\nbody");
    closed("line feeds alone", "HTTP/1.1 200 OK\nContent-Length: 4\n\nbody");
    QByteArray many = ok;
    for (int i = 0; i < 500; ++i)
        many += "X-" + QByteArray::number(i) + ": y\r\n";
    closed("500 header lines", many + "Content-Length: 4\r\n\r\nbody");
    closed("header line of 300,000 bytes",
           ok + "X: " + QByteArray(300000, 'x') + "\r\nContent-Length: 4\r\n\r\nbody");
    closed("no status code", "HTTP/1.1\r\n\r\nbody");
    closed("status of one digit", "HTTP/1.1 2 OK\r\n\r\nbody");
    closed("status beyond any number", "HTTP/1.1 20000000000000 OK\r\n\r\nbody");
    closed("another version", "HTTP/9.9 200 OK\r\nContent-Length: 4\r\n\r\nbody");
    closed("no HTTP at all", "Welcome\r\n");
    kept("no HTTP at all, and no end", "Welcome\r\n");
    kept("100 and nothing else", "HTTP/1.1 100 Continue\r\n\r\n");
    QByteArray waits;
    for (int i = 0; i < 50; ++i)
        waits += "HTTP/1.1 102 Wait\r\n\r\n";
    kept("102 fifty times", waits + ScriptedService::reply("body"));
    kept("switch of protocols",
         "HTTP/1.1 101 Switch\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\n");
    kept("two replies at once", ScriptedService::reply("body") + ScriptedService::reply("body"));
    kept("compressed, but not really",
         ok + "Content-Encoding: gzip\r\nContent-Length: 4\r\n\r\nbody");
    kept("redirect to itself",
         "HTTP/1.1 302 Round\r\nLocation: /tolvex/GetThumbnail/\r\n"
         "Content-Length: 0\r\n\r\n");
    kept("redirect to nowhere",
         "HTTP/1.1 301 Away\r\nLocation: http:///\r\n"
         "Content-Length: 0\r\n\r\n");
    kept("challenge without an end",
         "HTTP/1.1 401 Who?\r\nWWW-Authenticate: Digest realm=\"\r\n"
         "Content-Length: 0\r\n\r\n");
}

void addRepliesOf(const QString &path)
{
    const QDir folder(path);
    QFile index(folder.filePath(QStringLiteral("index.tsv")));
    QVERIFY2(index.open(QIODevice::ReadOnly), qPrintable(index.fileName()));
    while (!index.atEnd()) {
        const QByteArrayList columns = index.readLine().trimmed().split('\t');
        QFile file(folder.filePath(QString::fromUtf8(columns.constFirst())));
        if (columns.size() < 3 || !file.open(QIODevice::ReadOnly))
            continue;
        QTest::newRow(columns.constFirst().constData())
            << file.readAll() << (columns.at(2) == "close");
    }
}

} // namespace

void tst_HttpReplies::replay_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("closes");
    addOwnReplies();
    const QString more = qEnvironmentVariable("KAVLOR_HTTP_REPLIES");
    if (!more.isEmpty())
        addRepliesOf(more);
}

void tst_HttpReplies::replay()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, closes);
    const int filesBefore = temporaryFileCount();
    testTimeConstants().formTimeout = closes ? patience : 300;
    ScriptedService service;
    ScriptedService::Step step;
    step.operation = "GetThumbnail";
    step.bytes = bytes;
    step.then = closes ? ScriptedService::Close : ScriptedService::KeepOpen;
    service.expect(step);

    auto http = std::make_unique<CHttpTolvex>();
    const ResultLog log(http.get());
    http->getThumbnail(QStringLiteral("m1"), QStringLiteral("secret"), 17);
    QTRY_VERIFY(log.size() > 0);
    if (closes) // nothing more can come, so that there is nothing to wait for
        QVERIFY(!log.textAt(0).contains(QStringLiteral("timeout")));
    http.reset();
    QCOMPARE(temporaryFileCount(), filesBefore);

    testTimeConstants().formTimeout = 10000;
    CHttpTolvex next;
    const ResultLog nextLog(&next);
    service.expect("GetCountryList", "US");
    next.getCountryList();
    QTRY_COMPARE(nextLog.size(), 1);
    QCOMPARE(nextLog.textAt(0), ResultLog::text(QStringLiteral("US"), QString()));
    QCOMPARE(service.requests().size(), 2);
    QVERIFY2(service.isDone(), service.report());
}

KAVLOR_TEST_MAIN(tst_HttpReplies)

#include "tst_httpreplies.moc"
