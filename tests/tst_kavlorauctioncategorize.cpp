// SPDX-License-Identifier: MIT

#include "kavlorauctioncategorize.h"
#include "kavlorcategorymodel.h"
#include "kavlorcategorystore.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "uploadmediacontroller.h"

#include <QLabel>
#include <QLineEdit>
#include <QPixmapCache>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>

namespace {

using Page = CKavlorAuctionCategorize;

// Clicks and looks at a shown page as a member does.
class PageDriver
{
public:
    explicit PageDriver(Page *page)
        : m_page(page)
        , m_table(page->findChild<QTableView *>(QStringLiteral("categoriesTable")))
    {
        m_page->resize(500, 330);
        m_page->show();
    }

    QTableView *table() const
    {
        return m_table;
    }

    QString path() const
    {
        return m_page->findChild<QLabel *>(QStringLiteral("categorySelected"))->text();
    }

    QList<int> shown() const
    {
        const auto *model = static_cast<CKavlorCategoryModel *>(m_table->model());
        QList<int> identifiers;
        for (int row = 0; row < model->rowCount(); ++row)
            identifiers.append(model->identifierAt(row));
        return identifiers;
    }

    QPoint centre(int category, int column) const
    {
        const int row = static_cast<int>(shown().indexOf(category));
        return m_table->visualRect(m_table->model()->index(row, column)).center();
    }

    void click(int category, int column = CKavlorCategoryModel::CategoryColumn)
    {
        QTest::mouseClick(m_table->viewport(), Qt::LeftButton, {}, centre(category, column));
    }

    void clearSelection()
    {
        QTest::mouseClick(m_page->findChild<QPushButton *>(QStringLiteral("unselect")),
                          Qt::LeftButton);
    }

    // The picture behind a category's cells says whether it is marked.
    bool isMarked(int category) const
    {
        const QPoint corner = m_table
                                  ->visualRect(m_table->model()->index(
                                      static_cast<int>(shown().indexOf(category)), 0))
                                  .bottomRight();
        const QImage picture = m_table->viewport()->grab().toImage();
        return picture.pixelColor(corner.x() - 1, corner.y() - 3) == markedColor();
    }

private:
    static QColor markedColor()
    {
        return QPixmap(QStringLiteral(":/mainCellBG.png"))
            .scaled(CKavlorCategoryModel::cellSize(0), Qt::IgnoreAspectRatio,
                    Qt::FastTransformation)
            .toImage()
            .pixelColor(38, 83);
    }

    Page *m_page;
    QTableView *m_table;
};

QString longList()
{
    QString reply = QStringLiteral("h\n1,Sports,0\n2,Event,0");
    for (int category = 100; category < 140; ++category)
        reply += QStringLiteral("\n%1,Name,1").arg(category);
    return reply;
}

} // namespace

class tst_KavlorAuctionCategorize : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void formHasTheStatedTextsAndSettings();
    void withoutAListThePageIsEmpty();
    void clickingACategoryWithoutChildrenHandsItOnAfterTheDelay();
    void clickingTheForwardColumnCountsAsClickingTheCategory();
    void clickingACategoryWithChildrenShowsThemAndHandsNothingOn();
    void aCategoryWithChildrenStaysMarked();
    void clickingColumn0OnTheTopLevelChangesNothing();
    void clickingColumn0GoesOneLevelUp();
    void clearSelectionShowsTheTopLevelAndNone();
    void openingWithAChosenCategoryShowsItAmongItsSiblings();
    void openingWithAnUnknownCategoryShowsTheTopLevel();
    void clearOnRenewUnmarksAtEveryStart();
    void aSecondClickInTheDelayHandsOnTheSecondCategoryOnly();
    void clearSelectionInTheDelayHandsNothingOn();
    void openingChildrenInTheDelayHandsNothingOn();
    void goingUpInTheDelayHandsNothingOn();
    void column0OnTheTopLevelLeavesTheDelayAlone();
    void doubleClickHandsOnOnce();
    void deletionInTheDelayIsSafe();
    void everyClickTellsTheChoice();
    void aNewLevelStartsAtTheTop();
    void choosingOnTheSameLevelDoesNotScroll();
    void rowsAreOfOneHeightAndCostNoPainting();
    void layoutCostsTheSameForALongList();
    void theRootsNewCategoriesStartThePageAgain();
    void theCategoriesHaveTheFocusFirst();
    void keysReachTheControlsInReadingOrder();
    void keysAloneWillDo();
};

void tst_KavlorAuctionCategorize::init()
{
    TestCase::init();
    QPixmapCache::clear();
    CKavlorCategoryStore::load(QStringLiteral(
        "h\n1,Sports,0\n2,Event,0\n10,Football,1\n11,Tennis,1\n12,Winter,1\n100,Ski,12"));
}

void tst_KavlorAuctionCategorize::formHasTheStatedTextsAndSettings()
{
    Page page(nullptr, 0, false);
    const PageDriver driver(&page);
    QCOMPARE(page.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(page.findChild<QPushButton *>(QStringLiteral("unselect"))->text(),
             QStringLiteral("Clear Selection"));
    QCOMPARE(driver.table()->property("FingerScrollable"), QVariant(true));
    QCOMPARE(driver.path(), QStringLiteral("None"));
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
}

void tst_KavlorAuctionCategorize::withoutAListThePageIsEmpty()
{
    CKavlorCategoryStore::load(QString());
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QCOMPARE(driver.shown(), QList<int>());
    QCOMPARE(driver.path(), QStringLiteral("None"));
    QTest::mouseClick(driver.table()->viewport(), Qt::LeftButton);
    driver.clearSelection();
    QCOMPARE(driver.path(), QStringLiteral("None"));
}

void tst_KavlorAuctionCategorize::clickingACategoryWithoutChildrenHandsItOnAfterTheDelay()
{
    Page page(nullptr, 0, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(1);
    QElapsedTimer clock;
    clock.start();
    driver.click(10);
    QCOMPARE(chosen.count(), 0);
    QCOMPARE(driver.path(), QStringLiteral("Sports>Football"));
    QTRY_COMPARE(chosen.count(), 1);
    QVERIFY2(clock.elapsed() >= 45, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(chosen.at(0).at(0).toInt(), 10);
}

void tst_KavlorAuctionCategorize::clickingTheForwardColumnCountsAsClickingTheCategory()
{
    Page page(nullptr, 0, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(1, CKavlorCategoryModel::ForwardColumn);
    QCOMPARE(driver.shown(), (QList<int>{10, 11, 12}));
    driver.click(11, CKavlorCategoryModel::ForwardColumn);
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 11);
}

void tst_KavlorAuctionCategorize::clickingACategoryWithChildrenShowsThemAndHandsNothingOn()
{
    testTimeConstants().categoryDelay = 0;
    Page page(nullptr, 0, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(1);
    QCOMPARE(driver.shown(), (QList<int>{10, 11, 12}));
    QCOMPARE(driver.path(), QStringLiteral("Sports"));
    driver.click(12);
    QCOMPARE(driver.shown(), QList<int>{100});
    QCOMPARE(driver.path(), QStringLiteral("Sports>Winter"));
    driver.click(100); // the first to be handed on
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 100);
}

void tst_KavlorAuctionCategorize::aCategoryWithChildrenStaysMarked()
{
    Page page(nullptr, 0, false);
    PageDriver driver(&page);
    QVERIFY(!driver.isMarked(1));
    driver.click(1);
    driver.click(12);
    driver.click(100, CKavlorCategoryModel::BackColumn);
    QCOMPARE(driver.path(), QStringLiteral("Sports>Winter"));
    QVERIFY(driver.isMarked(12));
    QVERIFY(!driver.isMarked(10));
}

void tst_KavlorAuctionCategorize::clickingColumn0OnTheTopLevelChangesNothing()
{
    Page page(nullptr, 0, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(2, CKavlorCategoryModel::BackColumn);
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
    QCOMPARE(driver.path(), QStringLiteral("None"));
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::clickingColumn0GoesOneLevelUp()
{
    Page page(nullptr, 100, false);
    PageDriver driver(&page);
    QCOMPARE(driver.shown(), QList<int>{100});
    driver.click(100, CKavlorCategoryModel::BackColumn);
    QCOMPARE(driver.shown(), (QList<int>{10, 11, 12}));
    driver.click(11, CKavlorCategoryModel::BackColumn);
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
    QCOMPARE(driver.path(), QStringLiteral("Sports>Winter>Ski"));
}

void tst_KavlorAuctionCategorize::clearSelectionShowsTheTopLevelAndNone()
{
    Page page(nullptr, 100, false);
    PageDriver driver(&page);
    QCOMPARE(driver.path(), QStringLiteral("Sports>Winter>Ski"));
    driver.clearSelection();
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
    QCOMPARE(driver.path(), QStringLiteral("None"));
}

void tst_KavlorAuctionCategorize::openingWithAChosenCategoryShowsItAmongItsSiblings()
{
    Page page(nullptr, 10, false);
    const PageDriver driver(&page);
    QCOMPARE(driver.shown(), (QList<int>{10, 11, 12}));
    QVERIFY(driver.isMarked(10));
    QVERIFY(!driver.isMarked(11));
    QCOMPARE(driver.path(), QStringLiteral("Sports>Football"));
}

void tst_KavlorAuctionCategorize::openingWithAnUnknownCategoryShowsTheTopLevel()
{
    Page page(nullptr, 77, false);
    const PageDriver driver(&page);
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
    QCOMPARE(driver.path(), QStringLiteral("None"));
}

void tst_KavlorAuctionCategorize::clearOnRenewUnmarksAtEveryStart()
{
    Page page(nullptr, 10, true);
    const PageDriver driver(&page);
    QCOMPARE(driver.shown(), (QList<int>{10, 11, 12}));
    QVERIFY(!driver.isMarked(10));
    QCOMPARE(driver.path(), QStringLiteral("None"));
}

void tst_KavlorAuctionCategorize::aSecondClickInTheDelayHandsOnTheSecondCategoryOnly()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(10);
    driver.click(11);
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 11);
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::clearSelectionInTheDelayHandsNothingOn()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(10);
    driver.clearSelection();
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::openingChildrenInTheDelayHandsNothingOn()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(10);
    driver.click(12);
    QCOMPARE(driver.shown(), QList<int>{100});
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::goingUpInTheDelayHandsNothingOn()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(10);
    driver.click(11, CKavlorCategoryModel::BackColumn);
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::column0OnTheTopLevelLeavesTheDelayAlone()
{
    Page page(nullptr, 0, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(2);
    driver.click(1, CKavlorCategoryModel::BackColumn);
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 2);
}

void tst_KavlorAuctionCategorize::doubleClickHandsOnOnce()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QSignalSpy chosen(&page, &Page::categoryChosen);
    driver.click(10);
    QTest::mouseDClick(driver.table()->viewport(), Qt::LeftButton, {},
                       driver.centre(10, CKavlorCategoryModel::CategoryColumn));
    QTRY_COMPARE(chosen.count(), 1);
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::deletionInTheDelayIsSafe()
{
    auto page = std::make_unique<Page>(nullptr, 10, false);
    PageDriver driver(page.get());
    QSignalSpy chosen(page.get(), &Page::categoryChosen);
    driver.click(10);
    page.reset();
    QVERIFY(!chosen.wait(100));
}

void tst_KavlorAuctionCategorize::everyClickTellsTheChoice()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QSignalSpy changed(&page, &Page::categoryChanged);
    driver.click(11);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), 11);
    QCOMPARE(changed.at(0).at(1).toModelIndex(), driver.table()->model()->index(1, 1));
    driver.click(12);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(1).at(0).toInt(), 12);
    driver.click(100, CKavlorCategoryModel::BackColumn);
    QCOMPARE(changed.count(), 3);
    driver.clearSelection();
    QCOMPARE(changed.count(), 4);
    QCOMPARE(changed.at(3).at(0).toInt(), 0);
    QVERIFY(!changed.at(3).at(1).toModelIndex().isValid());
}

void tst_KavlorAuctionCategorize::aNewLevelStartsAtTheTop()
{
    CKavlorCategoryStore::load(longList() + QStringLiteral("\n1000,Deep,139\n"));
    Page page(nullptr, 1000, false);
    PageDriver driver(&page);
    driver.click(1000, CKavlorCategoryModel::BackColumn);
    QCOMPARE(driver.shown().size(), 40);
    QScrollBar *bar = driver.table()->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    bar->setValue(bar->maximum());
    driver.click(139, CKavlorCategoryModel::BackColumn);
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
    driver.click(1);
    QCOMPARE(bar->value(), 0);
}

void tst_KavlorAuctionCategorize::choosingOnTheSameLevelDoesNotScroll()
{
    CKavlorCategoryStore::load(longList());
    Page page(nullptr, 100, false);
    PageDriver driver(&page);
    QScrollBar *bar = driver.table()->verticalScrollBar();
    bar->setValue(bar->maximum());
    const int place = bar->value();
    driver.click(138);
    QCOMPARE(bar->value(), place);
    QVERIFY(driver.isMarked(138));
}

void tst_KavlorAuctionCategorize::rowsAreOfOneHeightAndCostNoPainting()
{
    Page page(nullptr, 10, false);
    auto *table = page.findChild<QTableView *>(QStringLiteral("categoriesTable"));
    QCOMPARE(table->columnWidth(0), 40);
    QCOMPARE(table->columnWidth(1), 400);
    QCOMPARE(table->columnWidth(2), 40);
    for (int row = 0; row < table->model()->rowCount(); ++row)
        QCOMPARE(table->rowHeight(row), 87);
    QPixmap cell;
    QVERIFY(!QPixmapCache::find(QStringLiteral("::category10,1,1"), &cell));

    page.resize(500, 330);
    page.grab();
    QVERIFY(QPixmapCache::find(QStringLiteral("::category10,1,1"), &cell));
}

void tst_KavlorAuctionCategorize::layoutCostsTheSameForALongList()
{
    CKavlorCategoryStore::load(longList());
    Page page(nullptr, 100, false);
    PageDriver driver(&page);
    page.grab();
    QCOMPARE(driver.table()->rowHeight(39), 87);
    QPixmap cell;
    QVERIFY(QPixmapCache::find(QStringLiteral("::category100,1,1"), &cell));
    QVERIFY(!QPixmapCache::find(QStringLiteral("::category139,1,0"), &cell)); // out of sight
}

void tst_KavlorAuctionCategorize::theRootsNewCategoriesStartThePageAgain()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.root()->ShowUploadOptions();
    auto *wizard = window.root()->findChild<CUploadMediaController *>();
    auto *page = new Page(wizard->findChild<QWidget *>(QStringLiteral("pageArea")), 10, false);
    const PageDriver driver(page);
    QCOMPARE(driver.path(), QStringLiteral("Sports>Football"));

    CKavlorCategoryStore::load(QStringLiteral("h\n3,Event,0\n30,Fair,3"));
    emit window.root()->CategoriesDone();
    QCOMPARE(driver.shown(), QList<int>{3});
    QCOMPARE(driver.path(), QStringLiteral("None"));
}

void tst_KavlorAuctionCategorize::theCategoriesHaveTheFocusFirst()
{
    QWidget window;
    QLineEdit before(&window);
    Page page(nullptr, 10, false);
    page.setParent(&window);
    page.hide();
    window.show();
    before.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    page.show();
    QCOMPARE(window.focusWidget(), page.findChild<QTableView *>(QStringLiteral("categoriesTable")));
}

void tst_KavlorAuctionCategorize::keysReachTheControlsInReadingOrder()
{
    Page page(nullptr, 10, false);
    PageDriver driver(&page);
    QVERIFY(QTest::qWaitForWindowActive(&page));
    driver.table()->setFocus();
    QTest::keyClick(driver.table(), Qt::Key_Tab);
    auto *unselect = page.findChild<QPushButton *>(QStringLiteral("unselect"));
    QCOMPARE(page.focusWidget(), unselect);
    QTest::keyClick(unselect, Qt::Key_Space);
    QCOMPARE(driver.path(), QStringLiteral("None"));
    QVERIFY(!driver.table()->accessibleName().isEmpty());
}

void tst_KavlorAuctionCategorize::keysAloneWillDo()
{
    Page page(nullptr, 0, false);
    const PageDriver driver(&page);
    QVERIFY(QTest::qWaitForWindowActive(&page));
    QSignalSpy chosen(&page, &Page::categoryChosen);
    QTableView *table = driver.table();
    auto *unselect = page.findChild<QPushButton *>(QStringLiteral("unselect"));
    unselect->setFocus();
    QTest::keyClick(unselect, Qt::Key_Backtab);
    QCOMPARE(page.focusWidget(), table);
    const QRect cell = table->visualRect(table->currentIndex());
    QVERIFY(cell.width() == 400);
    // The current cell is framed.
    const QImage framed = table->viewport()->grab(cell).toImage();
    table->clearFocus();
    QVERIFY(table->viewport()->grab(cell).toImage() != framed);
    table->setFocus();

    QTest::keyClick(table, Qt::Key_Return);
    QCOMPARE(driver.path(), QStringLiteral("Sports"));
    QTest::keyClick(table, Qt::Key_Left);
    QTest::keyClick(table, Qt::Key_Return); // up again
    QCOMPARE(driver.shown(), (QList<int>{1, 2}));
    QTest::keyClick(table, Qt::Key_Return);
    QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, Qt::Key_Enter);
    QCOMPARE(driver.path(), QStringLiteral("Sports>Tennis"));
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 11);
}

KAVLOR_TEST_MAIN(tst_KavlorAuctionCategorize)
#include "tst_kavlorauctioncategorize.moc"
