// SPDX-License-Identifier: MIT

#include "kavlornotificationoptions.h"
#include "testcase.h"
#include "testmain.h"

#include <QSignalSpy>

class tst_KavlorNotificationOptions : public TestCase
{
    Q_OBJECT

private slots:
    void startsWithEverythingOff();
    void settingFlagsInitializes();
    void aBodyOfOneLineChangesNothing();
    void twoItemsLeaveTheOthersAndStayUninitialized();
    void itemsAreReadBitwise();
    void numbersThatAreNoneCountAsOff();
    void theFirstLineIsNotRead();
    void textFormHasAlwaysFourItems();
    void copiesTakeFlagsOnly();
};

void tst_KavlorNotificationOptions::startsWithEverythingOff()
{
    const CKavlorNotificationOptions options;
    QVERIFY(!options.isInitialized());
    QCOMPARE(options.toText(), QStringLiteral("0,0,0,0"));
}

void tst_KavlorNotificationOptions::settingFlagsInitializes()
{
    CKavlorNotificationOptions options;
    options.setFlags({true, false, false, true});
    QVERIFY(options.isInitialized());
    QCOMPARE(options.toText(), QStringLiteral("1,0,0,1"));
    QVERIFY(options.flags().onBid);
    QVERIFY(!options.flags().onAuctionEnd);
    QVERIFY(!options.flags().onView);
    QVERIFY(options.flags().onBuyerQuestion);
}

void tst_KavlorNotificationOptions::aBodyOfOneLineChangesNothing()
{
    CKavlorNotificationOptions options(nullptr, {true, true, false, false}, true);
    QSignalSpy initialized(&options, &CKavlorNotificationOptions::gotInitialized);
    for (const char *body : {"", "0,0,0,0", "header"})
        options.parse(QLatin1String(body));
    QCOMPARE(options.toText(), QStringLiteral("1,1,0,0"));
    QVERIFY(options.isInitialized());
    QCOMPARE(initialized.count(), 0);
}

void tst_KavlorNotificationOptions::twoItemsLeaveTheOthersAndStayUninitialized()
{
    CKavlorNotificationOptions options(nullptr, {false, false, true, false}, true);
    QSignalSpy initialized(&options, &CKavlorNotificationOptions::gotInitialized);
    options.parse(QStringLiteral("header\n1,1"));
    QCOMPARE(options.toText(), QStringLiteral("1,1,1,0"));
    QVERIFY(!options.isInitialized());
    QCOMPARE(initialized.count(), 0);
}

void tst_KavlorNotificationOptions::itemsAreReadBitwise()
{
    CKavlorNotificationOptions options;
    QSignalSpy initialized(&options, &CKavlorNotificationOptions::gotInitialized);
    options.parse(QStringLiteral("header\n3,2,x,1"));
    QCOMPARE(options.toText(), QStringLiteral("1,0,0,1"));
    QVERIFY(options.isInitialized());
    QCOMPARE(initialized.count(), 1);
}

void tst_KavlorNotificationOptions::numbersThatAreNoneCountAsOff()
{
    CKavlorNotificationOptions options(nullptr, {true, true, true, true}, true);
    options.parse(QStringLiteral("header\n,-,1e,99999999999\n"));
    QCOMPARE(options.toText(), QStringLiteral("0,0,0,0"));
    QVERIFY(options.isInitialized());
}

void tst_KavlorNotificationOptions::theFirstLineIsNotRead()
{
    CKavlorNotificationOptions options;
    options.parse(QStringLiteral("1,1,1,1\n0,1,0,0,somebody@example.org\n1,1,1,1"));
    QCOMPARE(options.toText(), QStringLiteral("0,1,0,0"));
}

void tst_KavlorNotificationOptions::textFormHasAlwaysFourItems()
{
    CKavlorNotificationOptions options;
    options.parse(QStringLiteral("h\n1"));
    QCOMPARE(options.toText().split(QLatin1Char(',')).size(), 4);
}

void tst_KavlorNotificationOptions::copiesTakeFlagsOnly()
{
    QObject parent;
    CKavlorNotificationOptions live(&parent, {true, false, true, false}, true);
    CKavlorNotificationOptions copy(live);
    QCOMPARE(copy.parent(), nullptr);
    QCOMPARE(copy.toText(), QStringLiteral("1,0,1,0"));
    copy.setFlags({});
    QCOMPARE(live.toText(), QStringLiteral("1,0,1,0"));
    live = copy;
    QCOMPARE(live.toText(), QStringLiteral("0,0,0,0"));
}

KAVLOR_TEST_MAIN(tst_KavlorNotificationOptions)
#include "tst_kavlornotificationoptions.moc"
