// SPDX-License-Identifier: MIT

#include "auctionrow.h"
#include "auctionstrip.h"
#include "dostep.h"
#include "fonts.h"
#include "testcase.h"
#include "testmain.h"
#include "webbrowser.h"
#include "wholesystem.h"

/**
 * From a photo to a bid and to other prices: the real client and the real service, and a visitor
 * with a real browser.
 */
class tst_AuctionsFlow : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aMemberSeesTheBidOfAVisitorAndChangesThePrices();

private:
    void bid(qint64 auction);
    static QImage strip(int views, int bids);

    WholeSystem m_system;
};

namespace {

const QColor ground(40, 160, 90);

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

QString title()
{
    return QStringLiteral("Evening at the lake");
}

} // namespace

void tst_AuctionsFlow::initTestCase()
{
    installFontSubstitutes();
    QVERIFY(m_system.startConnectivity());
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
}

// What the list must show of the auction.
QImage tst_AuctionsFlow::strip(int views, int bids)
{
    CAuctionRow row;
    row.title = title();
    row.reservePrice = 40;
    row.buyItNowPrice = 95;
    row.item10 = -1;
    row.views = views;
    row.bids = bids;
    return paintAuctionStrip(row).toImage();
}

void tst_AuctionsFlow::bid(qint64 auction)
{
    WebBrowser browser;
#define VISIT(step) QVERIFY2(browser.step, qPrintable(browser.error()))
    VISIT(start());
    VISIT(open(QStringLiteral("http://localhost:%1/auction?id=%2")
                   .arg(WholeSystem::servicePort())
                   .arg(auction)));
    QCOMPARE(browser.text(QStringLiteral("h1")), title());
    VISIT(type(QStringLiteral("#bid-name"), QStringLiteral("Vera Visitor")));
    VISIT(type(QStringLiteral("#bid-email"), QStringLiteral("vera@example.org")));
    VISIT(type(QStringLiteral("#bid-amount"), QStringLiteral("21")));
    VISIT(click(QStringLiteral("#bid-submit")));
#undef VISIT
    QTRY_COMPARE(
        m_system.service
            .value(QStringLiteral("SELECT max(amount) FROM bids WHERE auction = ?"), {auction})
            .toInt(),
        21);
}

void tst_AuctionsFlow::aMemberSeesTheBidOfAVisitorAndChangesThePrices()
{
    ClientDriver &client = *m_system.client;
    const QString table = name("myAuctionsTable");
    DO(client.start());
    DO(m_system.logIn(QStringLiteral("demo"), QStringLiteral("demo")));
    DO(m_system.prepareUpload(m_system.makePhoto(ground), title()));
    DO(client.click(name("createAuctionButton")));
    DO(client.click(name("buttonOk")));
    DO(client.click(name("pushButtonDone")));
    const qint64 auction =
        m_system.service.value(QStringLiteral("SELECT max(id) FROM auctions")).toLongLong();

    // The newest comes first, with the photo's own colour.
    DO(client.click(name("buttonMyKavlor")));
    DO(client.waitFor(table));
    const QImage thumbnail = client.paintedCell(table, 0, 0);
    QCOMPARE(thumbnail.size(), QSize(120, 90));
    const QColor corner = thumbnail.pixelColor(5, 5);
    QVERIFY2(qAbs(corner.red() - ground.red()) < 12 && qAbs(corner.green() - ground.green()) < 12
                 && qAbs(corner.blue() - ground.blue()) < 12,
             qPrintable(corner.name()));
    const QImage::Format format = QImage::Format_ARGB32;
    QCOMPARE(client.paintedCell(table, 0, 1).convertToFormat(format),
             strip(0, 0).convertToFormat(format));
    DO(client.close());

    bid(auction);
    if (QTest::currentTestFailed())
        return;
    const int views =
        m_system.service.value(QStringLiteral("SELECT views FROM auctions WHERE id = ?"), {auction})
            .toInt();
    QVERIFY(views >= 1);

    DO(client.start());
    DO(client.click(name("buttonMyKavlor")));
    DO(client.waitFor(table));
    QCOMPARE(client.paintedCell(table, 0, 1).convertToFormat(format),
             strip(views, 1).convertToFormat(format));
    QVERIFY(strip(views, 1) != strip(views, 0));

    DO(client.clickCell(table, 0, 1));
    DO(client.type(name("reservedPrice"), QStringLiteral("55")));
    DO(client.type(name("buyItNowPrice"), QStringLiteral("120")));
    DO(client.click(name("done")));
    QCOMPARE(client.closeBox(), QStringLiteral("Your auction has been updated successfully."));
    DO(client.waitFor(table));
    DO(client.close());

    const QList<QVariantList> prices = m_system.service.query(
        QStringLiteral("SELECT reserve_price, buy_price FROM auctions WHERE id = ?"), {auction});
    QCOMPARE(prices.size(), 1);
    QCOMPARE(prices.constFirst().at(0).toInt(), 55);
    QCOMPARE(prices.constFirst().at(1).toInt(), 120);
    QCOMPARE(m_system.service.terminate(), 0);
    QCOMPARE(m_system.service.complaints(), QByteArray());
}

KAVLOR_TEST_MAIN(tst_AuctionsFlow)
#include "tst_auctionsflow.moc"
