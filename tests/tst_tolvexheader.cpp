// SPDX-License-Identifier: MIT

#include "testcase.h"
#include "testmain.h"
#include "tolvexheader.h"

#include <QUrl>
#include <QtTest>

class tst_TolvexHeader : public TestCase
{
    Q_OBJECT

private slots:
    void fieldsInTheirOrder();
    void hostNamesThePort_data();
    void hostNamesThePort();
    void path_data();
    void path();
};

void tst_TolvexHeader::fieldsInTheirOrder()
{
    const QHttpRequestHeader header =
        tolvexHeader(QUrl(QStringLiteral("http://example.org/tolvex/GetMyAuctions/")));
    QCOMPARE(header.method(), QStringLiteral("POST"));
    QCOMPARE(header.path(), QStringLiteral("/tolvex/GetMyAuctions/"));
    const auto field = [](const char *name, const char *value) {
        return qMakePair(QString::fromLatin1(name), QString::fromLatin1(value));
    };
    const QHttpHeader::Fields expected{
        field("User-Agent", "Nokia N900, kavlor application 0.1.6"),
        field("Host", "example.org"),
        field("Connection", "Keep-Alive"),
        field("Cache-Control", "no-cache"),
        field("Accept", "*/*"),
        field("Accept-Language", "en-us"),
        field("Accept-Encoding", "gzip,deflate"),
        field("Accept-Charset", "ISO-8859-1,utf-8"),
    };
    QCOMPARE(header.fields(), expected);
}

void tst_TolvexHeader::hostNamesThePort_data()
{
    QTest::addColumn<QString>("serviceHost");
    QTest::addColumn<QString>("field");
    QTest::newRow("port") << QStringLiteral("example.org:8470")
                          << QStringLiteral("example.org:8470");
    QTest::newRow("no port") << QStringLiteral("example.org") << QStringLiteral("example.org");
    QTest::newRow("IPv6") << QStringLiteral("[::1]:81") << QStringLiteral("[::1]:81");
    QTest::newRow("user") << QStringLiteral("m1:secret@example.org:81")
                          << QStringLiteral("example.org:81");
}

void tst_TolvexHeader::hostNamesThePort()
{
    QFETCH(QString, serviceHost);
    QFETCH(QString, field);
    const QHttpRequestHeader header =
        tolvexHeader(QUrl(QStringLiteral("http://%1/tolvex/").arg(serviceHost)));
    QCOMPARE(header.value(QStringLiteral("Host")), field);
}

void tst_TolvexHeader::path_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << QStringLiteral("http://h") << QStringLiteral("/");
    QTest::newRow("permitted characters") << QStringLiteral("http://h/a!$&'()*+,;=:@/-._~b")
                                          << QStringLiteral("/a!$&'()*+,;=:@/-._~b");
    QTest::newRow("others") << QStringLiteral("http://h/Get \u00fc[1]/")
                            << QStringLiteral("/Get%20%C3%BC%5B1%5D/");
}

void tst_TolvexHeader::path()
{
    QFETCH(QString, url);
    QFETCH(QString, expected);
    QCOMPARE(tolvexPath(QUrl(url)), expected);
    QCOMPARE(tolvexHeader(QUrl(url)).path(), expected);
}

KAVLOR_TEST_MAIN(tst_TolvexHeader)

#include "tst_tolvexheader.moc"
