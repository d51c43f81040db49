// SPDX-License-Identifier: MIT

#include "auctionrecord.h"
#include "kavlorauctionconfirm.h"
#include "kavlorcategorystore.h"
#include "languages.h"
#include "testcase.h"
#include "testmain.h"

#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QTextTable>

using Page = CKavlorAuctionConfirm;

namespace {

CAuctionRecord goodRecord()
{
    CAuctionRecord record;
    record.mediaPath = QStringLiteral("/a/b/c.jpg");
    record.caption = QStringLiteral("Sunset");
    record.description = QStringLiteral("A long story");
    record.category = 10;
    record.startPrice = 10;
    record.reservePrice = 20;
    record.buyItNowPrice = 30;
    return record;
}

QTextDocument *document(const Page &page)
{
    return page.findChild<QTextBrowser *>(QStringLiteral("auctionOverallInfo"))->document();
}

// The cells of the summary's table, row by row, as a member reads them.
QList<QStringList> summary(const CAuctionRecord &record)
{
    const Page page(&record, nullptr);
    QTextFrame *root = document(page)->rootFrame();
    auto *table = qobject_cast<QTextTable *>(root->childFrames().value(0));
    if (!table)
        return {};
    QList<QStringList> rows;
    for (int row = 0; row < table->rows(); ++row) {
        QStringList cells;
        for (int column = 0; column < table->columns(); ++column) {
            const QTextTableCell cell = table->cellAt(row, column);
            if (column > 0 && cell == table->cellAt(row, column - 1))
                continue;
            QTextCursor cursor = cell.firstCursorPosition();
            cursor.setPosition(cell.lastCursorPosition().position(), QTextCursor::KeepAnchor);
            cells.append(cursor.selectedText().trimmed());
        }
        rows.append(cells);
    }
    return rows;
}

QString value(const CAuctionRecord &record, const QString &title)
{
    const QList<QStringList> rows = summary(record);
    for (const QStringList &row : rows) {
        if (row.value(0) == title)
            return row.value(1);
    }
    return QStringLiteral("no such row");
}

QPushButton *createButton(const Page &page)
{
    return page.findChild<QPushButton *>(QStringLiteral("createAuctionButton"));
}

} // namespace

class tst_KavlorAuctionConfirm : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void withoutAStoreTheCategoryIsNone();
    void theSummaryHasItsRowsInOrder();
    void theSummaryIsLaidOutAsAgreed();
    void unsetPricesReadNotSet();
    void inGermanThePricesAreWrittenAsThere();
    void theSummaryFollowsTheLanguage();
    void aCaptionWithALessThanSignShowsAsText();
    void anAmpersandInTheCaptionIsPassedUnchanged();
    void aCategoryNameWithALessThanSignShowsAsText();
    void fileIsTheLastPartOfThePath_data();
    void fileIsTheLastPartOfThePath();
    void theFileNameIsNotEscaped();
    void categoryNoneForARecordWithout();
    void valuesAreGrey();
    void createAuctionIsToldOnceAndTheButtonStaysDisabled();
    void aSecondHalfOfADoubleClickIsNoConsent();
    void antiBotCheck_data();
    void antiBotCheck();
};

void tst_KavlorAuctionConfirm::init()
{
    TestCase::init();
}

// Has to be the first function: the store lives until exit.
void tst_KavlorAuctionConfirm::withoutAStoreTheCategoryIsNone()
{
    QVERIFY(!CKavlorCategoryStore::instance());
    QCOMPARE(value(goodRecord(), QStringLiteral("Category:")), QStringLiteral("None"));
    CKavlorCategoryStore::load(QStringLiteral("h\n1,Sports,0\n10,Football,1\n11,<b>Cup,1"));
}

void tst_KavlorAuctionConfirm::theSummaryHasItsRowsInOrder()
{
    const QList<QStringList> expected{
        {QStringLiteral("Please verify data you entered")},
        {QStringLiteral("Start price:"), QStringLiteral("USD 10")},
        {QStringLiteral("Reserved:"), QStringLiteral("USD 20")},
        {QStringLiteral("Buy it now:"), QStringLiteral("USD 30")},
        {QStringLiteral("Caption:"), QStringLiteral("Sunset")},
        {QStringLiteral("Category:"), QStringLiteral("Sports>Football")},
        {QStringLiteral("File:"), QStringLiteral("c.jpg")}};
    QCOMPARE(summary(goodRecord()), expected);
}

// Alignment, widths and all: what becomes of this document in a browser of the same font.
void tst_KavlorAuctionConfirm::theSummaryIsLaidOutAsAgreed()
{
    const CAuctionRecord record = goodRecord();
    const Page page(&record, nullptr);
    QTextDocument expected;
    expected.setDefaultFont(document(page)->defaultFont());
    expected.setDefaultStyleSheet(QStringLiteral("th,td{color: #697278;font-weight: 20px;}"));
    expected.setHtml(QStringLiteral(
        "<html><head><meta http-equiv='Content-Type' content='text/html; "
        "charset=iso-8859-1'></head>"
        "<body><table font='large' width='100%'>"
        "<tr><td colspan='2'> <h3>Please verify data you entered </h3></td></tr>"
        "<tr><th align='right'><pre>Start price:</pre></th><td valign='middle'>USD 10</td></tr>"
        "<tr><th align='right'><pre>Reserved:</pre></th><td valign='middle'>USD 20</td></tr>"
        "<tr><th align='right'><pre>Buy it now:</pre></th><td valign='middle'>USD 30</td></tr>"
        "<tr><th align='right'  valign='middle'><pre>Caption:</pre></th>"
        "<td valign='middle'>Sunset</td></tr>"
        "<tr><th align='right' valign='middle'><pre>Category:</pre></th>"
        "<td valign='middle'>Sports>Football</td></tr>"
        "<tr><th align='right'><pre>File:</pre></th><td>c.jpg</td></tr>"
        "</table></body></html>"));
    QCOMPARE(document(page)->toHtml(), expected.toHtml());
}

void tst_KavlorAuctionConfirm::unsetPricesReadNotSet()
{
    CAuctionRecord record = goodRecord();
    record.reservePrice = 0;
    record.buyItNowPrice = 0;
    record.startPrice = 4000000000U;
    QCOMPARE(value(record, QStringLiteral("Reserved:")), QStringLiteral("Not set"));
    QCOMPARE(value(record, QStringLiteral("Buy it now:")), QStringLiteral("Not set"));
    QCOMPARE(value(record, QStringLiteral("Start price:")), QStringLiteral("USD 4000000000"));
}

void tst_KavlorAuctionConfirm::inGermanThePricesAreWrittenAsThere()
{
    CAuctionRecord record = goodRecord();
    record.startPrice = 12345;
    record.reservePrice = 0;
    QCOMPARE(value(record, QStringLiteral("Start price:")), QStringLiteral("USD 12345"));

    const auto back = qScopeGuard([] { QLocale::setDefault(QLocale::c()); });
    const QLocale german(QLocale::German, QLocale::Germany);
    QLocale::setDefault(german);
    Languages languages;
    languages.use(german);
    QCOMPARE(value(record, QStringLiteral("Startpreis:")), QStringLiteral("12.345 USD"));
    QCOMPARE(value(record, QStringLiteral("Mindestpreis:")), QStringLiteral("Nicht festgelegt"));
}

void tst_KavlorAuctionConfirm::theSummaryFollowsTheLanguage()
{
    const CAuctionRecord record = goodRecord();
    const Page page(&record, nullptr);
    const QString english = document(page)->toPlainText();
    {
        Languages languages;
        languages.use(QLocale(QLocale::Finnish));
        QTRY_VERIFY(document(page)->toPlainText().contains(QStringLiteral("Pohjahinta:")));
        QVERIFY(document(page)->toPlainText().contains(record.caption));
    }
    QTRY_COMPARE(document(page)->toPlainText(), english);
}

void tst_KavlorAuctionConfirm::aCaptionWithALessThanSignShowsAsText()
{
    CAuctionRecord record = goodRecord();
    record.caption = QStringLiteral("<b>1 < 2</b> %1");
    QCOMPARE(value(record, QStringLiteral("Caption:")), QStringLiteral("<b>1 < 2</b> %1"));
}

void tst_KavlorAuctionConfirm::anAmpersandInTheCaptionIsPassedUnchanged()
{
    CAuctionRecord record = goodRecord();
    record.caption = QStringLiteral("Fish & chips &copy; &lt;");
    QCOMPARE(value(record, QStringLiteral("Caption:")), QStringLiteral("Fish & chips \u00a9 <"));
}

void tst_KavlorAuctionConfirm::aCategoryNameWithALessThanSignShowsAsText()
{
    CAuctionRecord record = goodRecord();
    record.category = 11;
    QCOMPARE(value(record, QStringLiteral("Category:")), QStringLiteral("Sports><b>Cup"));
}

void tst_KavlorAuctionConfirm::fileIsTheLastPartOfThePath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("file");
    QTest::newRow("folders") << QStringLiteral("/home/user/c.jpg") << QStringLiteral("c.jpg");
    QTest::newRow("without a slash") << QStringLiteral("c.jpg") << QStringLiteral("c.jpg");
    QTest::newRow("in the root") << QStringLiteral("/c.jpg") << QStringLiteral("c.jpg");
    QTest::newRow("ends with a slash") << QStringLiteral("/home/") << QString();
}

void tst_KavlorAuctionConfirm::fileIsTheLastPartOfThePath()
{
    QFETCH(QString, path);
    CAuctionRecord record = goodRecord();
    record.mediaPath = path;
    QTEST(value(record, QStringLiteral("File:")), "file");
}

void tst_KavlorAuctionConfirm::theFileNameIsNotEscaped()
{
    CAuctionRecord record = goodRecord();
    record.mediaPath = QStringLiteral("/a/<i>c<i>.jpg");
    QCOMPARE(value(record, QStringLiteral("File:")), QStringLiteral("c.jpg"));
}

void tst_KavlorAuctionConfirm::categoryNoneForARecordWithout()
{
    CAuctionRecord record = goodRecord();
    record.category = 0;
    QCOMPARE(value(record, QStringLiteral("Category:")), QStringLiteral("None"));
}

void tst_KavlorAuctionConfirm::valuesAreGrey()
{
    const CAuctionRecord record = goodRecord();
    const Page page(&record, nullptr);
    QCOMPARE(document(page)->defaultStyleSheet(),
             QStringLiteral("th,td{color: #697278;font-weight: 20px;}"));
    const QTextCursor found = document(page)->find(QStringLiteral("USD 10"));
    QCOMPARE(found.charFormat().foreground().color(), QColor(0x69, 0x72, 0x78));
}

void tst_KavlorAuctionConfirm::createAuctionIsToldOnceAndTheButtonStaysDisabled()
{
    const CAuctionRecord record = goodRecord();
    Page page(&record, nullptr);
    page.show();
    QCOMPARE(page.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(createButton(page)->text(), QStringLiteral("Create Auction"));
    QCOMPARE(createButton(page)->property("green"), QVariant(true));
    QSignalSpy create(&page, &Page::CreateAuction);
    QTest::mouseClick(createButton(page), Qt::LeftButton);
    QVERIFY(!createButton(page)->isEnabled());
    QTest::mouseDClick(createButton(page), Qt::LeftButton);
    QTest::mouseClick(createButton(page), Qt::LeftButton);
    QTest::keyClick(createButton(page), Qt::Key_Space);
    QCOMPARE(create.count(), 1);
}

void tst_KavlorAuctionConfirm::aSecondHalfOfADoubleClickIsNoConsent()
{
    const CAuctionRecord record = goodRecord();
    Page page(&record, nullptr);
    page.show();
    QSignalSpy create(&page, &Page::CreateAuction);
    QTest::mouseDClick(createButton(page), Qt::LeftButton);
    QTest::mouseRelease(createButton(page), Qt::LeftButton);
    QCOMPARE(create.count(), 0);
    QVERIFY(createButton(page)->isEnabled());
}

void tst_KavlorAuctionConfirm::antiBotCheck_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("the number") << QStringLiteral("0") << true;
    QTest::newRow("another number") << QStringLiteral("1") << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("no number") << QStringLiteral("zero") << false;
    QTest::newRow("hexadecimal") << QStringLiteral("0x0") << false;
}

void tst_KavlorAuctionConfirm::antiBotCheck()
{
    QFETCH(QString, text);
    QFETCH(bool, enabled);
    const CAuctionRecord record = goodRecord();
    Page page(&record, nullptr);
    page.antiBotCheck(QStringLiteral("no number"));
    page.antiBotCheck(text);
    QCOMPARE(createButton(page)->isEnabled(), enabled);
    page.antiBotCheck(QStringLiteral("no number"));
    QVERIFY(!createButton(page)->isEnabled());
}

KAVLOR_TEST_MAIN(tst_KavlorAuctionConfirm)
#include "tst_kavlorauctionconfirm.moc"
