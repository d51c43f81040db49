// SPDX-License-Identifier: MIT

#include "dialoganswers.h"
#include "kavlorauctioncreate.h"
#include "languages.h"
#include "testcase.h"
#include "testmain.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QSpinBox>

using Page = CKavlorAuctionCreate;

namespace {

QSpinBox *box(const Page *page, const char *name)
{
    return page->findChild<QSpinBox *>(QLatin1String(name));
}

QString labelText(const Page *page, const char *name)
{
    return page->findChild<QLabel *>(QLatin1String(name))->text();
}

void type(const Page *page, const char *name, const QString &digits)
{
    QSpinBox *field = box(page, name);
    QTest::mouseClick(field->findChild<QLineEdit *>(), Qt::LeftButton);
    field->selectAll();
    QTest::keyClicks(field, digits);
}

QPushButton *finalizeButton(const Page *page)
{
    return page->findChild<QPushButton *>(QStringLiteral("finalizeButton"));
}

} // namespace

class tst_KavlorAuctionCreate : public TestCase
{
    Q_OBJECT

private slots:
    void formHasTheStatedTextsAndLimits();
    void showsThePricesItIsGiven();
    void inGermanThePricesAreWrittenAsThere();
    void aChangeOfLanguageLeavesThePrices();
    void rule_data();
    void rule();
    void refusedPricesStayToBeCorrected();
    void pricesOutsideTheLimitsCannotBeEntered();
    void doubleClickFinalizesOnce();
    void anAcceptedPageDeletesItself();
    void keysAloneWillDo();
};

void tst_KavlorAuctionCreate::formHasTheStatedTextsAndLimits()
{
    Page page(0, 0, 1, nullptr);
    QCOMPARE(page.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(labelText(&page, "label_4"),
             QStringLiteral("Please enter auction prices below in US$"));
    QCOMPARE(labelText(&page, "startPriceLabel"), QStringLiteral("Start Price:"));
    QCOMPARE(labelText(&page, "reservePriceLabel"), QStringLiteral("Reserve Price:"));
    QCOMPARE(labelText(&page, "buyItNowLabel"), QStringLiteral("Buy It Now Price:"));
    QCOMPARE(finalizeButton(&page)->text(), QStringLiteral("Finalize"));

    QCOMPARE(box(&page, "startPrice")->minimum(), 1);
    QCOMPARE(box(&page, "startPrice")->maximum(), 10000000);
    QCOMPARE(box(&page, "startPrice")->text(), QStringLiteral("1"));
    for (const char *name : {"reservePrice", "buyItNowPrice"}) {
        QCOMPARE(box(&page, name)->minimum(), 0);
        QCOMPARE(box(&page, name)->maximum(), 10000000);
        QCOMPARE(box(&page, name)->text(), QStringLiteral("Not Set"));
        QCOMPARE(box(&page, name)->toolTip(), QString());
    }
    const QList<QSpinBox *> boxes = page.findChildren<QSpinBox *>();
    for (const QSpinBox *field : boxes) {
        QVERIFY(!field->accessibleName().isEmpty());
        QVERIFY(field->minimumSizeHint().height() >= 45);
    }
}

void tst_KavlorAuctionCreate::showsThePricesItIsGiven()
{
    const Page page(20, 30, 10, nullptr);
    QCOMPARE(box(&page, "reservePrice")->value(), 20);
    QCOMPARE(box(&page, "buyItNowPrice")->value(), 30);
    QCOMPARE(box(&page, "startPrice")->value(), 10);
}

void tst_KavlorAuctionCreate::inGermanThePricesAreWrittenAsThere()
{
    {
        const Page page(0, 0, 12345, nullptr);
        QCOMPARE(box(&page, "startPrice")->text(), QStringLiteral("12345"));
    }
    const auto back = qScopeGuard([] { QLocale::setDefault(QLocale::c()); });
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    Page page(0, 0, 12345, nullptr);
    page.show();
    QCOMPARE(box(&page, "startPrice")->text(), QStringLiteral("12.345"));
    type(&page, "startPrice", QStringLiteral("1.000.000"));
    QCOMPARE(box(&page, "startPrice")->value(), 1000000);
    type(&page, "startPrice", QStringLiteral("2000"));
    QCOMPARE(box(&page, "startPrice")->value(), 2000);
}

void tst_KavlorAuctionCreate::aChangeOfLanguageLeavesThePrices()
{
    Page page(0, 0, 1, nullptr);
    page.show();
    type(&page, "startPrice", QStringLiteral("47"));
    Languages languages;
    languages.use(QLocale(QLocale::German));
    QTRY_COMPARE(labelText(&page, "startPriceLabel"), QStringLiteral("Startpreis:"));
    QCOMPARE(box(&page, "reservePrice")->text(), QStringLiteral("Nicht festgelegt"));
    QCOMPARE(box(&page, "startPrice")->text(), QStringLiteral("47"));
}

void tst_KavlorAuctionCreate::rule_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("reserve");
    QTest::addColumn<QString>("buyItNow");
    QTest::addColumn<bool>("accepted");
    const QString unset = QStringLiteral("0");
    const QString ten = QStringLiteral("10");
    QTest::newRow("start 10, reserve 10") << ten << ten << unset << false;
    QTest::newRow("start 10, reserve 9") << ten << QStringLiteral("9") << unset << false;
    QTest::newRow("start 10, reserve 11") << ten << QStringLiteral("11") << unset << true;
    QTest::newRow("start 10, reserve not set") << ten << unset << unset << true;
    QTest::newRow("start 10, buy it now 5") << ten << unset << QStringLiteral("5") << true;
    QTest::newRow("buy it now below reserve")
        << ten << QStringLiteral("20") << QStringLiteral("15") << true;
    QTest::newRow("largest start") << QStringLiteral("10000000") << unset << unset << true;
    QTest::newRow("largest both") << QStringLiteral("10000000") << QStringLiteral("10000000")
                                  << unset << false;
}

void tst_KavlorAuctionCreate::rule()
{
    QFETCH(QString, start);
    QFETCH(QString, reserve);
    QFETCH(QString, buyItNow);
    QFETCH(bool, accepted);
    DialogAnswers dialogs;
    QPointer<Page> page = new Page(0, 0, 1, nullptr);
    page->show();
    QSignalSpy finalized(page, &Page::finalized);
    type(page, "startPrice", start);
    type(page, "reservePrice", reserve);
    type(page, "buyItNowPrice", buyItNow);
    QTest::mouseClick(finalizeButton(page), Qt::LeftButton);

    QCOMPARE(finalized.count(), accepted ? 1 : 0);
    QCOMPARE(dialogs.boxes().size(), accepted ? 0 : 1);
    if (accepted) {
        QCOMPARE(finalized.at(0),
                 (QList<QVariant>{reserve.toInt(), buyItNow.toInt(), start.toInt()}));
        QTRY_VERIFY(!page);
    } else {
        QCOMPARE(dialogs.boxes().at(0).text,
                 QStringLiteral(
                     "Start price must be lower than reserve price, if reserve price is set."));
        QVERIFY(page->isVisible());
        delete page;
    }
}

void tst_KavlorAuctionCreate::refusedPricesStayToBeCorrected()
{
    DialogAnswers dialogs;
    QPointer<Page> page = new Page(10, 5, 10, nullptr);
    page->show();
    QSignalSpy finalized(page, &Page::finalized);
    QTest::mouseClick(finalizeButton(page), Qt::LeftButton);
    QTest::mouseClick(finalizeButton(page), Qt::LeftButton);
    QCOMPARE(dialogs.boxes().size(), 2);
    QCOMPARE(box(page, "reservePrice")->value(), 10);
    type(page, "reservePrice", QStringLiteral("11"));
    QTest::mouseClick(finalizeButton(page), Qt::LeftButton);
    QCOMPARE(dialogs.boxes().size(), 2);
    QCOMPARE(finalized.value(0), (QList<QVariant>{11, 5, 10}));
    QTRY_VERIFY(!page);
}

void tst_KavlorAuctionCreate::pricesOutsideTheLimitsCannotBeEntered()
{
    const DialogAnswers dialogs;
    QPointer<Page> page = new Page(0, 0, 1, nullptr);
    page->show();
    QSignalSpy finalized(page, &Page::finalized);
    type(page, "startPrice", QStringLiteral("0"));
    type(page, "reservePrice", QStringLiteral("-7"));
    type(page, "buyItNowPrice", QStringLiteral("10000001"));
    QTest::mouseClick(finalizeButton(page), Qt::LeftButton);
    QCOMPARE(finalized.count(), 1);
    const QList<QVariant> &prices = finalized.at(0);
    QVERIFY(prices.at(0).toInt() >= 0);
    QVERIFY(prices.at(1).toInt() <= 10000000);
    QCOMPARE(prices.at(2).toInt(), 1);
    QTRY_VERIFY(!page);
}

void tst_KavlorAuctionCreate::doubleClickFinalizesOnce()
{
    QPointer<Page> page = new Page(0, 0, 1, nullptr);
    page->show();
    QSignalSpy finalized(page, &Page::finalized);
    QPushButton *button = finalizeButton(page);
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseDClick(button, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(finalized.count(), 1);
    QTRY_VERIFY(!page);
}

void tst_KavlorAuctionCreate::anAcceptedPageDeletesItself()
{
    QPointer<Page> page = new Page(0, 0, 1, nullptr);
    page->show();
    QTest::mouseClick(finalizeButton(page), Qt::LeftButton);
    QVERIFY(page);
    QVERIFY(!page->isVisible());
    QTRY_VERIFY(!page);
}

void tst_KavlorAuctionCreate::keysAloneWillDo()
{
    QPointer<Page> page = new Page(0, 0, 1, nullptr);
    page->show();
    QVERIFY(QTest::qWaitForWindowActive(page));
    QSignalSpy finalized(page, &Page::finalized);
    const DialogAnswers dialogs;
    box(page, "startPrice")->setFocus();
    QTest::keyClick(page->focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(page->focusWidget(), QStringLiteral("8"));
    QTest::keyClick(page->focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(page->focusWidget(), QStringLiteral("9"));
    QTest::keyClick(page->focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(page->focusWidget(), QStringLiteral("12"));
    QTest::keyClick(page->focusWidget(), Qt::Key_Tab);
    QTest::keyClick(page->focusWidget(), Qt::Key_Space);
    QCOMPARE(finalized.value(0), (QList<QVariant>{9, 12, 8}));
    QTRY_VERIFY(!page);
}

KAVLOR_TEST_MAIN(tst_KavlorAuctionCreate)
#include "tst_kavlorauctioncreate.moc"
