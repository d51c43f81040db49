// SPDX-License-Identifier: MIT

#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"

#include <QAccessible>
#include <QDir>
#include <QImage>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

/**
 * What a screen reader finds in the tables whose cells are painted.
 */
class tst_PaintedTableAccess : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void auctionsAreRead();
    void categoriesAreRead();
    void cellsOfALevelThatIsLeftAreReplaced();
    void cellsAreLeavesOfTheirTable();
    void stateOfACell();
    void headersLeadToNothing();
    void otherTablesKeepTheirOwnAccess();

private:
    static QAccessibleInterface *access(QTableView *table);
    /** The name of a cell as a screen reader gets it. */
    static QString nameOf(QTableView *table, int row, int column);
    static QTableView *openCategories(RootWindow *window);
};

void tst_PaintedTableAccess::initTestCase()
{
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
}

QAccessibleInterface *tst_PaintedTableAccess::access(QTableView *table)
{
    return QAccessible::queryAccessibleInterface(table);
}

QString tst_PaintedTableAccess::nameOf(QTableView *table, int row, int column)
{
    const int columns = table->model()->columnCount() + 1; // a header before each row
    QAccessibleInterface *cell = access(table)->child((row + 1) * columns + column + 1);
    return cell ? cell->text(QAccessible::Name) : QString();
}

QTableView *tst_PaintedTableAccess::openCategories(RootWindow *window)
{
    QTemporaryDir folder;
    const QString photo = folder.filePath(QStringLiteral("photo.png"));
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.save(photo);
    window->dialogs.chooseFile(photo);
    if (!window->startAtHome() || !window->click("buttonUpload") || !window->click("photoClicker")
        || !waitUntil([&] { return window->find("doneButton")->isEnabled(); })
        || !window->type("lineCaption", QStringLiteral("Caption")) || !window->click("doneButton"))
        return nullptr;
    return window->find<QTableView>("categoriesTable");
}

void tst_PaintedTableAccess::auctionsAreRead()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.service.expect("GetMyAuctions",
                          "header\n17,Evening at the lake,1,40,95,0,11/30/2026 12:00,0,12,3,40\n"
                          "18,Fog,1,40,95,0,11/30/2026 12:00,1,5,0,-1\n");
    window.service.expectHeld("GetThumbnail", QByteArray());
    QVERIFY(window.click("buttonMyKavlor"));
    QTRY_VERIFY(window.find<QTableView>("myAuctionsTable"));
    auto *table = window.find<QTableView>("myAuctionsTable");
    QTRY_VERIFY(window.service.isHolding());

    QCOMPARE(access(table)->role(), QAccessible::Table);
    QCOMPARE(nameOf(table, 0, 0), QStringLiteral("Picture of Evening at the lake"));
    QCOMPARE(nameOf(table, 0, 1),
             QStringLiteral("Evening at the lake. 12 views, 3 bids. On sale."
                            " The reserve price is met."));
    QCOMPARE(nameOf(table, 1, 1), QStringLiteral("Fog. 5 views, 0 bids. The auction is over."));

    table->setCurrentIndex(table->model()->index(1, 1));
    QAccessibleInterface *current = access(table)->focusChild();
    QVERIFY(current);
    QCOMPARE(current->text(QAccessible::Name),
             QStringLiteral("Fog. 5 views, 0 bids. The auction is over."));
    QCOMPARE(current->role(), QAccessible::Cell);
    QCOMPARE(access(table)->child(access(table)->indexOfChild(current)), current);
    const QPoint middle = current->rect().center();
    QCOMPARE(access(table)->childAt(middle.x(), middle.y()), current);
}

void tst_PaintedTableAccess::categoriesAreRead()
{
    RootWindow window;
    QTableView *table = openCategories(&window);
    QVERIFY(table);
    QCOMPARE(nameOf(table, 0, 1), QStringLiteral("Public Figures"));
    QCOMPARE(nameOf(table, 1, 0), QString());
    QCOMPARE(nameOf(table, 1, 1), QStringLiteral("Sports: football"));
    QCOMPARE(nameOf(table, 1, 2), QStringLiteral("What is in Sports"));
    QCOMPARE(nameOf(table, 0, 2), QString());
}

void tst_PaintedTableAccess::cellsOfALevelThatIsLeftAreReplaced()
{
    RootWindow window;
    QTableView *table = openCategories(&window);
    QVERIFY(table);
    QCOMPARE(nameOf(table, 0, 1), QStringLiteral("Public Figures"));
    const QAccessible::Id left = QAccessible::uniqueId(access(table)->child(6));
    const QModelIndex sports = table->model()->index(1, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(sports).center());
    QCOMPARE(nameOf(table, 0, 1), QStringLiteral("Football"));
    QVERIFY(!QAccessible::accessibleInterface(left)); // none is kept for every level that was seen
    QCOMPARE(nameOf(table, 0, 0), QStringLiteral("One level up"));
}

void tst_PaintedTableAccess::cellsAreLeavesOfTheirTable()
{
    RootWindow window;
    QTableView *table = openCategories(&window);
    QVERIFY(table);
    QAccessibleInterface *cell = access(table)->child(6); // the name of the first
    QVERIFY(cell);
    QVERIFY(cell->isValid());
    QCOMPARE(cell->parent(), access(table));
    QCOMPARE(cell->window(), window.root()->windowHandle());
    QCOMPARE(cell->object(), nullptr);
    QCOMPARE(cell->childCount(), 0);
    QCOMPARE(cell->child(0), nullptr);
    QCOMPARE(cell->childAt(cell->rect().center().x(), cell->rect().center().y()), nullptr);
    QCOMPARE(cell->indexOfChild(access(table)), -1);
    QCOMPARE(access(table)->indexOfChild(access(table)), -1);

    // It is read, not written.
    const QString name = cell->text(QAccessible::Name);
    QVERIFY(!name.isEmpty());
    cell->setText(QAccessible::Name, QStringLiteral("else"));
    QCOMPARE(cell->text(QAccessible::Name), name);
    QCOMPARE(cell->text(QAccessible::Description), QString());
}

void tst_PaintedTableAccess::stateOfACell()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QByteArray list = "header\n";
    for (int auction = 1; auction <= 30; ++auction)
        list += QByteArray::number(auction) + ",Fog,1,40,95,0,11/30/2026 12:00,0,12,3,40\n";
    window.service.expect("GetMyAuctions", list);
    window.service.expectHeld("GetThumbnail", QByteArray());
    QVERIFY(window.click("buttonMyKavlor"));
    QTRY_VERIFY(window.find<QTableView>("myAuctionsTable"));
    auto *table = window.find<QTableView>("myAuctionsTable");
    QTRY_VERIFY(window.service.isHolding());
    const auto state = [table](int row) {
        return access(table)->child((row + 1) * 3 + 2)->state();
    };

    window.root()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.root()));
    table->setFocus();
    table->setCurrentIndex(table->model()->index(1, 1));
    QVERIFY(state(1).focusable);
    QVERIFY(state(1).selectable);
    QVERIFY(state(1).focused);
    QVERIFY(state(1).selected);
    QVERIFY(!state(1).offscreen);
    QVERIFY(!state(0).focused);
    QVERIFY(!state(0).selected);
    QVERIFY(state(29).offscreen);

    table->scrollToBottom();
    QVERIFY(!state(29).offscreen);
    QVERIFY(state(1).offscreen);
    table->clearFocus();
    QVERIFY(!state(1).focused);
}

void tst_PaintedTableAccess::headersLeadToNothing()
{
    RootWindow window;
    QTableView *table = openCategories(&window);
    QVERIFY(table);
    QCOMPARE(access(table)->childCount(), 3 * 4);
    QVERIFY(!access(table)->child(0));
    QVERIFY(!access(table)->child(4));
    QVERIFY(!access(table)->child(-1));
    QVERIFY(!access(table)->child(1000));
}

void tst_PaintedTableAccess::otherTablesKeepTheirOwnAccess()
{
    QTableView table;
    QVERIFY(access(&table)->tableInterface()); // which ours has not
}

KAVLOR_TEST_MAIN(tst_PaintedTableAccess)
#include "tst_paintedtableaccess.moc"
