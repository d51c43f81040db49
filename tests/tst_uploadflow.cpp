// SPDX-License-Identifier: MIT

#include "dostep.h"
#include "testcase.h"
#include "testmain.h"
#include "wholesystem.h"

#include <QDir>

/**
 * A member's whole way to an auction: the real client, worked by clicks and keys, against the real
 * service.
 */
class tst_UploadFlow : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aPhotoGoesFromDiskOntoAuction();

private:
    WholeSystem m_system;
};

namespace {

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

} // namespace

void tst_UploadFlow::initTestCase()
{
    QVERIFY(m_system.startConnectivity());
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
}

void tst_UploadFlow::aPhotoGoesFromDiskOntoAuction()
{
    ClientDriver &client = *m_system.client;
    const QString photo = m_system.makePhoto(QColor(120, 180, 220));
    QVERIFY(!photo.isEmpty());
    const QString demo = QStringLiteral("demo");
    DO(client.start());
    DO(m_system.logIn(demo, demo));

    DO(client.click(name("buttonUpload")));
    DO(client.click(name("photoClicker")));
    DO(client.chooseFile(photo));
    DO(client.type(name("lineCaption"), QStringLiteral("evening at the \"lake\" <b>")));
    DO(client.waitForText(name("lineCaption"), QStringLiteral("Evening at the \"lake\" <b>")));
    DO(client.type(name("textDescription"), QStringLiteral("a")));
    DO(client.click(name("doneButton")));

    // Places has Nature below it, and that has Seaside.
    DO(client.clickCell(name("categoriesTable"), 5, 1));
    DO(client.waitForText(name("categorySelected"), QStringLiteral("Places")));
    DO(client.clickCell(name("categoriesTable"), 1, 1));
    DO(client.waitForText(name("categorySelected"), QStringLiteral("Nature")));
    DO(client.clickCell(name("categoriesTable"), 1, 1));

    DO(client.type(name("startPrice"), QStringLiteral("12")));
    DO(client.type(name("reservePrice"), QStringLiteral("40")));
    DO(client.type(name("buyItNowPrice"), QStringLiteral("95")));
    DO(client.click(name("finalizeButton")));
    DO(client.waitForText(name("auctionOverallInfo"), QStringLiteral("Places>Nature>Seaside")));
    DO(client.waitForText(name("auctionOverallInfo"),
                          QStringLiteral("Evening at the \"lake\" <b>")));
    DO(client.click(name("createAuctionButton")));
    DO(client.waitForText(
        name("alertLabel"),
        QStringLiteral("Your media has been successfully placed in the kavlor auction")));
    DO(client.click(name("buttonOk")));
    DO(client.waitFor(name("checkBoxOnBid"))); // on to the alert options
    DO(client.close());

    const QList<QVariantList> rows = m_system.service.query(QStringLiteral(
        "SELECT m.username, a.title, a.description, a.category, a.start_price, a.reserve_price,"
        " a.buy_price, a.captured, a.media, a.state FROM auctions a JOIN members m ON m.id=a.member"
        " ORDER BY a.id DESC LIMIT 1"));
    QCOMPARE(rows.size(), 1);
    const QVariantList &row = rows.constFirst();
    QCOMPARE(row.at(0).toString(), demo);
    QCOMPARE(row.at(1).toString(), QStringLiteral("Evening at the \"lake\" <b>"));
    QCOMPARE(row.at(2).toString(), QStringLiteral("A"));
    QCOMPARE(row.at(3).toInt(), 611);
    QCOMPARE(row.at(4).toInt(), 12);
    QCOMPARE(row.at(5).toInt(), 40);
    QCOMPARE(row.at(6).toInt(), 95);
    QVERIFY(!row.at(7).toString().isEmpty());
    QCOMPARE(row.at(9).toString(), QStringLiteral("running"));

    QFile sent(photo);
    QVERIFY(sent.open(QIODevice::ReadOnly));
    QFile stored(
        QDir(m_system.service.dataDir() + QStringLiteral("/media")).filePath(row.at(8).toString()));
    QVERIFY2(stored.open(QIODevice::ReadOnly), qPrintable(stored.fileName()));
    QVERIFY(stored.readAll() == sent.readAll());
}

KAVLOR_TEST_MAIN(tst_UploadFlow)
#include "tst_uploadflow.moc"
