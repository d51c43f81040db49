// SPDX-License-Identifier: MIT

#include "auctionrecord.h"
#include "kavloruser.h"
#include "multipartbody.h"
#include "testcase.h"
#include "testmain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>
#include <optional>

namespace {

CKavlorUser nobody()
{
    return {nullptr, nullptr, true, {}};
}

// What announces the media file: from its disposition to the empty line.
QByteArray mediaHead(const QByteArray &body)
{
    const qsizetype start = body.indexOf("Content-Disposition: form-data; name=\"MediaFile");
    return body.mid(start, body.indexOf("\r\n\r\n", start) - start);
}

} // namespace

class tst_MultipartBody : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void bytes();
    void mediaNameIsTheExtension_data();
    void mediaNameIsTheExtension();
    void mediaPathWithoutAnyDotIsAnnouncedWhole();
    void captureDateIsLocalTime();
    void aFileThatIsNotThereGivesNothing();
    void boundaryIsOfTheStandardGenerator();
    void typeHasAComma();

private:
    QString makeMedia(const QString &name) const;

    std::optional<QTemporaryDir> m_folder;
};

void tst_MultipartBody::init()
{
    TestCase::init();
    m_folder.emplace();
}

QString tst_MultipartBody::makeMedia(const QString &name) const
{
    const QString path = m_folder->filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write("twelve bytes") != 12)
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void tst_MultipartBody::bytes()
{
    CKavlorUser::Fields fields;
    fields[CKavlorUser::Username] = QStringLiteral("m1");
    fields[CKavlorUser::Password] = QStringLiteral("s e&c");
    const CKavlorUser user(nullptr, nullptr, true, fields);
    CAuctionRecord auction;
    auction.mediaPath = makeMedia(QStringLiteral("photo.jpg"));
    auction.caption = QStringLiteral("Harbour = \"red\"");
    auction.description = QStringLiteral("caf\u00e9, \u65e5");
    auction.category = -1;
    auction.captureDate = QDateTime(QDate(2011, 7, 13), QTime(13, 5, 9));
    auction.startPrice = 0;

    const auto part = [](const QByteArray &name, const QByteArray &value) {
        return "--B\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value
            + "\r\n";
    };
    const QByteArray expected = part("Username", "m1") + part("Password", "s e&c")
        + part("CategoryID", "-1") + part("LongDescription", "caf\xe9, ?")
        + part("Description", "Harbour = \"red\"") + part("CaptureLatitude", "")
        + part("CaptureLongitude", "") + part("CaptureDate", "20110713130509")
        + part("ReservePrice", "1") + part("BuyItNowPrice", "") + part("StartPrice", "0")
        + part("SUBMIT", "submit")
        + "--B\r\nContent-Disposition: form-data; name=\"MediaFile\"; filename=\"1.jpg\""
          "\r\nContent-length: 12\r\nContent-Type: application/octet-stream\r\n\r\ntwelve bytes"
          "\r\n--B--\r\n";
    QCOMPARE(multipartBody("B", user, auction).value_or(QByteArray()), expected);
}

void tst_MultipartBody::mediaNameIsTheExtension_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("announced");
    QTest::newRow("photo") << QStringLiteral("photo.jpg") << QByteArray("1.jpg");
    QTest::newRow("upper case") << QStringLiteral("IMG_1.JPG") << QByteArray("1.JPG");
    QTest::newRow("two dots") << QStringLiteral("clip.old.mp4") << QByteArray("1.mp4");
    QTest::newRow("dot at the end") << QStringLiteral("photo.") << QByteArray("1.");
    QTest::newRow("dot only in a folder")
        << QStringLiteral("100.dir/photo") << QByteArray("1.dir/photo");
    QTest::newRow("not ASCII") << QStringLiteral("a.\u00fc") << QByteArray("1.\xc3\xbc");
    QTest::newRow("per cent") << QStringLiteral("a.%1%2") << QByteArray("1.%1%2");
}

void tst_MultipartBody::mediaNameIsTheExtension()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, announced);
    CAuctionRecord auction;
    auction.mediaPath = makeMedia(path);
    const QByteArray body = multipartBody("B", nobody(), auction).value_or(QByteArray());
    QCOMPARE(mediaHead(body),
             "Content-Disposition: form-data; name=\"MediaFile\"; filename=\"" + announced
                 + "\"\r\nContent-length: 12\r\nContent-Type: application/octet-stream");
}

void tst_MultipartBody::mediaPathWithoutAnyDotIsAnnouncedWhole()
{
    makeMedia(QStringLiteral("dcim/photo"));
    const QString oldFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    CAuctionRecord auction;
    auction.mediaPath = QStringLiteral("dcim/photo");
    const QByteArray body = multipartBody("B", nobody(), auction).value_or(QByteArray());
    QVERIFY(QDir::setCurrent(oldFolder));
    QVERIFY2(mediaHead(body).contains("filename=\"1dcim/photo\""), body.constData());
}

void tst_MultipartBody::captureDateIsLocalTime()
{
    CAuctionRecord auction;
    auction.mediaPath = makeMedia(QStringLiteral("photo.jpg"));
    auction.captureDate = QDateTime(QDate(2011, 7, 13), QTime(13, 5, 9)).toOffsetFromUtc(5 * 3600);
    const QByteArray body = multipartBody("B", nobody(), auction).value_or(QByteArray());
    QVERIFY(body.contains("name=\"CaptureDate\"\r\n\r\n20110713130509\r\n"));
}

void tst_MultipartBody::aFileThatIsNotThereGivesNothing()
{
    CAuctionRecord auction;
    auction.mediaPath = m_folder->filePath(QStringLiteral("photo.jpg"));
    QVERIFY(!multipartBody("B", nobody(), auction));
}

void tst_MultipartBody::boundaryIsOfTheStandardGenerator()
{
    std::srand(7);
    QByteArray bytes;
    for (int i = 0; i < 16; ++i)
        bytes.append(static_cast<char>(std::rand() & 0xff));
    std::srand(7);
    QCOMPARE(makeBoundary(), bytes.toHex());
    QVERIFY(makeBoundary() != bytes.toHex());
}

void tst_MultipartBody::typeHasAComma()
{
    QCOMPARE(multipartType("B"), QStringLiteral("multipart/form-data, boundary=B"));
}

KAVLOR_TEST_MAIN(tst_MultipartBody)

#include "tst_multipartbody.moc"
