// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "kavlorknownuser.h"
#include "kavlormodifyauction.h"
#include "kavlormyauctionscontroller.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPixmapCache>
#include <QPushButton>
#include <QTableView>

class tst_MyAuctionsFlow : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fromHomeToNewPricesAndBack();
    void refusedPricesAreCorrected();
    void theBarOfTheList();
    void backLeavesTheList();
    void backSavesNothing();
    void backLeavesThePriceFrame();
    void cancelOfTheBarLeavesThePriceFrameFirst();
    void backInMidFetch_data();
    void backInMidFetch();
    void aSecondBackDoesNothing();
    void aFinishedAuctionStaysInTheList();
    void anEmptyListSaysSo();
    void theListIsFetchedAfreshEveryTime();
    void theWindowClosesWithThePriceFrameOpen();

private:
    bool openList(const QString &reply);
    bool openPrices(int row);
    bool isHome() const;

    std::unique_ptr<RootWindow> m_window;
};

void tst_MyAuctionsFlow::init()
{
    TestCase::init();
    QPixmapCache::clear();
    // As if an earlier list had fetched them, so that each test scripts just what it is about.
    for (int id = 1; id <= 3; ++id) {
        QPixmap thumbnail(120, 90);
        thumbnail.fill(Qt::darkGreen);
        QPixmapCache::insert(QStringLiteral("auctionid::%1").arg(id), thumbnail);
    }
    m_window = std::make_unique<RootWindow>();
    QVERIFY(m_window->startAtHome());
}

void tst_MyAuctionsFlow::cleanup()
{
    if (m_window)
        QVERIFY2(m_window->service.isDone(), m_window->service.report());
    m_window.reset();
}

bool tst_MyAuctionsFlow::openList(const QString &reply)
{
    m_window->service.expect("GetMyAuctions", reply.toUtf8());
    return m_window->click("buttonMyKavlor")
        && waitUntil([this] { return m_window->find("myAuctionsTable") != nullptr; });
}

bool tst_MyAuctionsFlow::openPrices(int row)
{
    auto *table = m_window->find<QTableView>("myAuctionsTable");
    const QRect place = table->visualRect(table->model()->index(row, 1));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place.center());
    return m_window->shown<CKavlorModifyAuction>() != nullptr;
}

bool tst_MyAuctionsFlow::isHome() const
{
    return m_window->shown<KavlorKnownUser>()
        && !m_window->root()->findChild<CKavlorMyAuctionsController *>()
        && !m_window->root()->findChild<CKavlorModifyAuction *>();
}

void tst_MyAuctionsFlow::fromHomeToNewPricesAndBack()
{
    QVERIFY(openList(auctionReply(3)));
    QVERIFY(openPrices(1));
    QVERIFY(!m_window->find("myAuctionsTable"));
    QCOMPARE(m_window->title(), QStringLiteral("My kavlor"));

    m_window->service.expect("ModifyAuction", "1");
    QVERIFY(m_window->type("reservedPrice", QStringLiteral("45")));
    QVERIFY(m_window->type("buyItNowPrice", QStringLiteral("150")));
    QVERIFY(m_window->click("done"));
    QTRY_VERIFY(m_window->find("myAuctionsTable"));
    QCOMPARE(m_window->dialogs.boxes().size(), 1);
    QCOMPARE(m_window->dialogs.boxes().constFirst().text,
             QStringLiteral("Your auction has been updated successfully."));
    QCOMPARE(m_window->service.requests().constLast().body,
             QByteArray("Username=m1&Password=secret&AuctionID=2&ReservePrice=45"
                        "&BuyItNowPrice=150&SUBMIT=Submit"));
    QTRY_VERIFY(!m_window->root()->findChild<CKavlorModifyAuction *>());

    QVERIFY(m_window->click("backNavigationButton"));
    QTRY_VERIFY(isHome());
    QCOMPARE(m_window->title(), QStringLiteral("welcome to kavlor!"));
    QCOMPARE(m_window->text("labelWelcome"), QStringLiteral("m1"));
}

void tst_MyAuctionsFlow::refusedPricesAreCorrected()
{
    QVERIFY(openList(auctionReply(1)));
    QVERIFY(openPrices(0));
    m_window->service.expect("ModifyAuction", "ERROR: below the highest bid");
    m_window->service.expect("ModifyAuction", "1");
    QVERIFY(m_window->click("done"));
    QTRY_COMPARE(m_window->dialogs.boxes().size(), 1);
    QTRY_VERIFY(m_window->find("done") && m_window->find("done")->isEnabled());
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QVERIFY(m_window->type("reservedPrice", QStringLiteral("0")));
    QVERIFY(m_window->click("done"));
    QTRY_VERIFY(m_window->find("myAuctionsTable"));
    QCOMPARE(m_window->dialogs.boxes().size(), 2);
}

void tst_MyAuctionsFlow::theBarOfTheList()
{
    QVERIFY(openList(auctionReply(1)));
    QCOMPARE(m_window->title(), QStringLiteral("My kavlor"));
    QVERIFY(!m_window->find<QLabel>("labelNavigationIcon")->pixmap().isNull());
    QCOMPARE(m_window->text("backNavigationButton"), QStringLiteral("Back"));
    QVERIFY(!m_window->find("cancelNavigationButton"));
    QVERIFY(!m_window->shown<KavlorKnownUser>());
    QCOMPARE(m_window->shown<CKavlorMyAuctionsController>()->parentWidget(),
             m_window->find("mainView"));
}

void tst_MyAuctionsFlow::backLeavesTheList()
{
    QVERIFY(openList(auctionReply(3)));
    QVERIFY(m_window->click("backNavigationButton"));
    QTRY_VERIFY(isHome());
}

// Who was let in before comes home with the record that is saved already.
void tst_MyAuctionsFlow::backSavesNothing()
{
    m_window->settings.sync();
    QFile file(m_window->settings.fileName());
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1000000000);
    QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    file.close();
    QVERIFY(openList(auctionReply(1)));
    QVERIFY(m_window->click("backNavigationButton"));
    QTRY_VERIFY(isHome());
    m_window->settings.sync();
    QCOMPARE(QFileInfo(file.fileName()).lastModified(), longAgo);
}

void tst_MyAuctionsFlow::backLeavesThePriceFrame()
{
    QVERIFY(openList(auctionReply(3)));
    QVERIFY(openPrices(0));
    QVERIFY(m_window->click("backNavigationButton"));
    QTRY_VERIFY(isHome());
}

// The bar hides the button, yet it works.
void tst_MyAuctionsFlow::cancelOfTheBarLeavesThePriceFrameFirst()
{
    QVERIFY(openList(auctionReply(3)));
    QVERIFY(openPrices(2));
    auto *bar = m_window->find("backNavigationButton")->parentWidget();
    auto *cancel = bar->findChild<QPushButton *>(QStringLiteral("cancelNavigationButton"));
    QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
    cancel->click();
    QVERIFY(m_window->find("myAuctionsTable"));
    QTRY_VERIFY(!m_window->root()->findChild<CKavlorModifyAuction *>());
    cancel->click();
    QTRY_VERIFY(isHome());
}

void tst_MyAuctionsFlow::backInMidFetch_data()
{
    QTest::addColumn<bool>("listArrived");
    QTest::newRow("of the list") << false;
    QTest::newRow("of a thumbnail") << true;
}

void tst_MyAuctionsFlow::backInMidFetch()
{
    QFETCH(bool, listArrived);
    if (listArrived) {
        AuctionLine line;
        line.id = 4;
        m_window->service.expect("GetMyAuctions", auctionReply(line).toUtf8());
        m_window->service.expectHeld("GetThumbnail", "late");
    } else {
        m_window->service.expectHeld("GetMyAuctions", "late");
    }
    QVERIFY(m_window->click("buttonMyKavlor"));
    QTRY_VERIFY(m_window->service.isHolding());
    QVERIFY(m_window->click("backNavigationButton"));
    m_window->service.release();
    QTRY_VERIFY(isHome());
}

void tst_MyAuctionsFlow::aSecondBackDoesNothing()
{
    QVERIFY(openList(auctionReply(1)));
    QWidget *back = m_window->find("backNavigationButton");
    QTest::mouseClick(back, Qt::LeftButton);
    QTest::mouseDClick(back, Qt::LeftButton);
    QTRY_VERIFY(isHome());
    QCOMPARE(m_window->root()->findChildren<KavlorKnownUser *>().size(), 1);
}

void tst_MyAuctionsFlow::aFinishedAuctionStaysInTheList()
{
    AuctionLine line;
    line.finished = true;
    QVERIFY(openList(auctionReply(line)));
    QVERIFY(!openPrices(0));
    QCOMPARE(m_window->dialogs.boxes().size(), 1);
    QVERIFY(m_window->find("myAuctionsTable"));
}

void tst_MyAuctionsFlow::anEmptyListSaysSo()
{
    m_window->service.expect("GetMyAuctions", "header\n");
    QVERIFY(m_window->click("buttonMyKavlor"));
    QTRY_COMPARE(m_window->text("labelPleaseWait"), QStringLiteral("There is no data to display."));
    QVERIFY(m_window->click("backNavigationButton"));
    QTRY_VERIFY(isHome());
}

void tst_MyAuctionsFlow::theListIsFetchedAfreshEveryTime()
{
    for (const int auctions : {1, 3, 2}) {
        QVERIFY(openList(auctionReply(auctions)));
        QCOMPARE(m_window->find<QTableView>("myAuctionsTable")->model()->rowCount(), auctions);
        QVERIFY(m_window->click("backNavigationButton"));
        QTRY_VERIFY(isHome());
    }
}

void tst_MyAuctionsFlow::theWindowClosesWithThePriceFrameOpen()
{
    QVERIFY(openList(auctionReply(2)));
    QVERIFY(openPrices(1));
    m_window->end();
    QCOMPARE(m_window->settings.value(QStringLiteral("last/USERID")).toString(),
             QStringLiteral("m1"));
}

KAVLOR_TEST_MAIN(tst_MyAuctionsFlow)
#include "tst_myauctionsflow.moc"
