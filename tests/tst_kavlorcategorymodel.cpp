// SPDX-License-Identifier: MIT

#include "cellfont.h"
#include "kavlorcategorymodel.h"
#include "kavlorcategorystore.h"
#include "testcase.h"
#include "testmain.h"

#include <QAbstractItemModelTester>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QSignalSpy>

namespace {

using FailureMode = QAbstractItemModelTester::FailureReportingMode;

constexpr int separatorTop = 86;

void loadCategories()
{
    CKavlorCategoryStore::load(QStringLiteral("h\n4,Sports,0\n1,Public Figures,0\n8,Others,0\n"
                                              "12,Hockey,4\n10,Football,4\n11,BALL,4\n"
                                              "100,Cup,10"));
}

QList<int> identifiers(const CKavlorCategoryModel &model)
{
    QList<int> found;
    for (int row = 0; row < model.rowCount(); ++row)
        found.append(model.identifierAt(row));
    return found;
}

QColor separatorColor()
{
    return {73, 117, 166};
}

QImage cell(const QAbstractItemModel &model, int row, int column)
{
    return model.index(row, column)
        .data(Qt::DecorationRole)
        .value<QPixmap>()
        .toImage()
        .convertToFormat(QImage::Format_ARGB32);
}

// The opaque pixels above the separator that fall into @p area.
int inkIn(const QImage &image, const QRect &area)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    }
    return count;
}

QRect aboveSeparator(const QImage &image)
{
    return {0, 0, image.width(), separatorTop};
}

// The cell of a category, painted here by the figures agreed upon. The name alone may reach out of
// its area, which is narrower than the tails of its letters need.
QImage paintedCategory(bool topLevel, bool chosen, const QString &picture, const QString &name,
                       const QString &children)
{
    QPixmap pixmap(400, 87);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    if (chosen) {
        painter.drawPixmap(0, 0,
                           QPixmap(QStringLiteral(":/mainCellBG.png"))
                               .scaled(400, 87, Qt::IgnoreAspectRatio, Qt::FastTransformation));
    }
    const int left = picture.isEmpty() ? 0 : 86;
    if (!picture.isEmpty())
        painter.drawPixmap(QRect(0, 0, 86, 86), QPixmap(picture));
    painter.setFont(topLevel ? cellFont("LargeSystemFont", 21, QFont::Bold)
                             : cellFont("SmallSystemFont", 21, QFont::Normal));
    painter.setPen(topLevel ? QColor(249, 167, 31) : QColor(121, 85, 143));
    if (children.isEmpty()) {
        painter.drawText(QRect(left, 0, 400 - left, 86),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, name);
    } else {
        painter.drawText(QRect(left, 0, 400 - left, 27),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                         name);
        painter.setFont(cellFont("SmallSystemFont", 14, QFont::Normal));
        painter.setPen(chosen ? QColor(41, 41, 0) : QColor(73, 117, 166));
        painter.drawText(QRect(left, 21, 400 - left, 65),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, children);
    }
    painter.setPen(separatorColor());
    painter.drawLine(0, separatorTop, 400, separatorTop);
    painter.end();
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

// The cell of a marker, painted likewise.
QImage paintedMarker(const QString &marker)
{
    QPixmap pixmap(40, 87);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setFont(cellFont("LargeSystemFont", 31, QFont::Bold));
    painter.setPen(QColor(126, 131, 137));
    painter.drawText(QRect(0, 0, 40, 86), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     marker);
    painter.setPen(separatorColor());
    painter.drawLine(0, separatorTop, 40, separatorTop);
    painter.end();
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

// Whether a pixel has exactly @p color, as the inside of a large letter has.
bool hasColor(const QImage &image, const QColor &color)
{
    for (int y = 0; y < separatorTop; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color.rgb())
                return true;
        }
    }
    return false;
}

} // namespace

class tst_KavlorCategoryModel : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void withoutAStoreNothingIsShown();
    void anEmptyModelHasThreeColumnsAndNoRow();
    void topLevelComesInAscendingOrder();
    void aLevelIsTheChildrenOfItsParent();
    void changingLevelsKeepsTheModelConsistent();
    void rowCountChangedOnlyWhenTheCountChanges();
    void rowsOutsideHaveNoIdentifier();
    void onlyAlignmentAndDecorationAreAnswered();
    void cellSizes_data();
    void cellSizes();
    void everyCellEndsWithTheSeparator();
    void backMarkerOnlyBelowTheTopLevel();
    void forwardMarkerOnlyWithChildren();
    void topLevelNamesAreOrangeLowerOnesPurple();
    void aTopLevelCategoryOfAFixedNumberHasItsPicture_data();
    void aTopLevelCategoryOfAFixedNumberHasItsPicture();
    void namesStartLeftWithoutAPicture();
    void childrenLineIsLowerCaseAndInAscendingOrder();
    void childrenLineChangesItsColourWhenChosen();
    void categoryCellIsPaintedByItsFigures_data();
    void categoryCellIsPaintedByItsFigures();
    void chosenRowHasTheBackgroundPicture();
    void choosingPaintsTwoRowsAndReusesTheOthers();
    void choosingTellsTheTwoRows();
    void backgroundsAreKeptByColumn();
};

void tst_KavlorCategoryModel::init()
{
    TestCase::init();
    QPixmapCache::clear();
}

// Has to be the first function: the store lives until exit.
void tst_KavlorCategoryModel::withoutAStoreNothingIsShown()
{
    QVERIFY(!CKavlorCategoryStore::instance());
    CKavlorCategoryModel model;
    const QAbstractItemModelTester tester(&model, FailureMode::QtTest);
    QSignalSpy counts(&model, &CKavlorCategoryModel::rowCountChanged);
    model.showLevel(0);
    model.showLevel(4);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(counts.count(), 0);

    loadCategories();
}

void tst_KavlorCategoryModel::anEmptyModelHasThreeColumnsAndNoRow()
{
    CKavlorCategoryModel model;
    const QAbstractItemModelTester tester(&model, FailureMode::QtTest);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 3);
    QCOMPARE(model.levelParent(), 0);
}

void tst_KavlorCategoryModel::topLevelComesInAscendingOrder()
{
    CKavlorCategoryModel model;
    const QAbstractItemModelTester tester(&model, FailureMode::QtTest);
    model.showLevel(0);
    QCOMPARE(identifiers(model), (QList<int>{1, 4, 8}));
}

void tst_KavlorCategoryModel::aLevelIsTheChildrenOfItsParent()
{
    CKavlorCategoryModel model;
    model.showLevel(4);
    QCOMPARE(identifiers(model), (QList<int>{10, 11, 12}));
    QCOMPARE(model.levelParent(), 4);
    model.showLevel(8);
    QCOMPARE(identifiers(model), QList<int>());
    QCOMPARE(model.levelParent(), 8);
}

void tst_KavlorCategoryModel::changingLevelsKeepsTheModelConsistent()
{
    CKavlorCategoryModel model;
    const QAbstractItemModelTester tester(&model, FailureMode::QtTest);
    const QList<int> levels{0, 4, 10, 8, 0, 0, 77, 4};
    for (int level : levels) {
        model.showLevel(level);
        model.setChosen(model.identifierAt(0));
        for (int row = 0; row < model.rowCount(); ++row)
            QVERIFY(!cell(model, row, CKavlorCategoryModel::CategoryColumn).isNull());
    }
}

void tst_KavlorCategoryModel::rowCountChangedOnlyWhenTheCountChanges()
{
    CKavlorCategoryModel model;
    QSignalSpy counts(&model, &CKavlorCategoryModel::rowCountChanged);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    model.showLevel(0);
    QCOMPARE(counts.takeFirst(), (QList<QVariant>{0, 3}));
    model.showLevel(4); // three again
    QCOMPARE(counts.count(), 0);
    QCOMPARE(removed.takeFirst().mid(1), (QList<QVariant>{0, 2}));
    QCOMPARE(inserted.takeLast().mid(1), (QList<QVariant>{0, 2}));
    model.showLevel(10);
    QCOMPARE(counts.takeFirst(), (QList<QVariant>{3, 1}));
    model.showLevel(8);
    QCOMPARE(counts.takeFirst(), (QList<QVariant>{1, 0}));
}

void tst_KavlorCategoryModel::rowsOutsideHaveNoIdentifier()
{
    CKavlorCategoryModel model;
    QCOMPARE(model.identifierAt(0), -1);
    model.showLevel(0);
    QCOMPARE(model.identifierAt(-1), -1);
    QCOMPARE(model.identifierAt(0), 1);
    QCOMPARE(model.identifierAt(2), 8);
    QCOMPARE(model.identifierAt(3), -1);
}

void tst_KavlorCategoryModel::onlyAlignmentAndDecorationAreAnswered()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    for (int column = 0; column < model.columnCount(); ++column) {
        const QModelIndex index = model.index(0, column);
        for (int role = 0; role <= Qt::UserRole; ++role) {
            if (role == Qt::TextAlignmentRole)
                QCOMPARE(index.data(role).toInt(),
                         static_cast<int>(Qt::AlignRight | Qt::AlignVCenter));
            else
                QCOMPARE(index.data(role).isValid(), role == Qt::DecorationRole);
        }
    }
    QVERIFY(!model.data(QModelIndex(), Qt::DecorationRole).isValid());
}

void tst_KavlorCategoryModel::cellSizes_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QSize>("size");
    QTest::newRow("back") << 0 << QSize(40, 87);
    QTest::newRow("category") << 1 << QSize(400, 87);
    QTest::newRow("forward") << 2 << QSize(40, 87);
}

void tst_KavlorCategoryModel::cellSizes()
{
    QFETCH(int, column);
    QFETCH(QSize, size);
    CKavlorCategoryModel model;
    model.showLevel(0);
    model.setChosen(4);
    QCOMPARE(CKavlorCategoryModel::cellSize(column), size);
    QCOMPARE(cell(model, 0, column).size(), size);
    QCOMPARE(cell(model, 1, column).size(), size); // the chosen one
}

void tst_KavlorCategoryModel::everyCellEndsWithTheSeparator()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    model.setChosen(4);
    for (int row = 0; row < model.rowCount(); ++row) {
        for (int column = 0; column < model.columnCount(); ++column) {
            const QImage image = cell(model, row, column);
            QCOMPARE(QColor(image.pixel(0, separatorTop)), separatorColor());
            QCOMPARE(QColor(image.pixel(image.width() - 1, separatorTop)), separatorColor());
        }
    }
}

void tst_KavlorCategoryModel::backMarkerOnlyBelowTheTopLevel()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    const QImage top = cell(model, 0, CKavlorCategoryModel::BackColumn);
    QCOMPARE(inkIn(top, aboveSeparator(top)), 0);
    model.showLevel(4);
    const QImage lower = cell(model, 0, CKavlorCategoryModel::BackColumn);
    QVERIFY(inkIn(lower, aboveSeparator(lower)) > 0);
    QVERIFY(hasColor(lower, QColor(126, 131, 137)));
    QCOMPARE(lower, paintedMarker(QStringLiteral("<")));
}

void tst_KavlorCategoryModel::forwardMarkerOnlyWithChildren()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    const QImage without = cell(model, 2, CKavlorCategoryModel::ForwardColumn);
    QCOMPARE(inkIn(without, aboveSeparator(without)), 0);
    const QImage with = cell(model, 1, CKavlorCategoryModel::ForwardColumn);
    QCOMPARE(with, paintedMarker(QStringLiteral(">")));
    QVERIFY(hasColor(with, QColor(126, 131, 137)));
}

void tst_KavlorCategoryModel::topLevelNamesAreOrangeLowerOnesPurple()
{
    const QColor orange(249, 167, 31);
    const QColor purple(121, 85, 143);
    CKavlorCategoryModel model;
    model.showLevel(0);
    const QImage top = cell(model, 2, CKavlorCategoryModel::CategoryColumn);
    QVERIFY(hasColor(top, orange));
    QVERIFY(!hasColor(top, purple));
    model.showLevel(4);
    const QImage lower = cell(model, 2, CKavlorCategoryModel::CategoryColumn);
    QVERIFY(hasColor(lower, purple));
    QVERIFY(!hasColor(lower, orange));
}

void tst_KavlorCategoryModel::aTopLevelCategoryOfAFixedNumberHasItsPicture_data()
{
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("picture");
    QTest::newRow("1") << 1 << QStringLiteral(":/Public Figures.png");
    QTest::newRow("2") << 2 << QStringLiteral(":/Breaking News.png");
    QTest::newRow("3") << 3 << QStringLiteral(":/Event.png");
    QTest::newRow("4") << 4 << QStringLiteral(":/Sports.png");
    QTest::newRow("5") << 5 << QStringLiteral(":/Funny.png");
    QTest::newRow("6") << 6 << QStringLiteral(":/Places.png");
    QTest::newRow("7") << 7 << QStringLiteral(":/Party.png");
}

void tst_KavlorCategoryModel::aTopLevelCategoryOfAFixedNumberHasItsPicture()
{
    QFETCH(int, category);
    QFETCH(QString, picture);
    CKavlorCategoryStore::load(QStringLiteral("h\n%1,I,0").arg(category));
    CKavlorCategoryModel model;
    model.showLevel(0);
    const QRect place(0, 0, separatorTop, separatorTop);
    QImage expected(place.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter(&expected).drawPixmap(place, QPixmap(picture));
    QCOMPARE(cell(model, 0, CKavlorCategoryModel::CategoryColumn).copy(place),
             expected.convertToFormat(QImage::Format_ARGB32));
    loadCategories();
}

void tst_KavlorCategoryModel::namesStartLeftWithoutAPicture()
{
    const QRect pictureSquare(0, 0, separatorTop, separatorTop);
    CKavlorCategoryModel model;
    model.showLevel(0);
    const QImage others = cell(model, 2, CKavlorCategoryModel::CategoryColumn);
    QVERIFY(inkIn(others, pictureSquare) > 0);
    QVERIFY(hasColor(others.copy(pictureSquare), QColor(249, 167, 31)));
}

void tst_KavlorCategoryModel::childrenLineIsLowerCaseAndInAscendingOrder()
{
    const auto parentCell = [](const char *children) {
        QPixmapCache::clear();
        CKavlorCategoryStore::load(QStringLiteral("h\n8,Others,0\n") + QLatin1String(children));
        CKavlorCategoryModel model;
        model.showLevel(0);
        return cell(model, 0, CKavlorCategoryModel::CategoryColumn);
    };
    const QImage image = parentCell("20,ball,8\n21,cup,8");
    QVERIFY(hasColor(image, QColor(73, 117, 166)));
    QCOMPARE(parentCell("20,BALL,8\n21,Cup,8"), image);
    QCOMPARE(parentCell("21,Cup,8\n20,Ball,8"), image);
    QVERIFY(parentCell("20,cup,8\n21,ball,8") != image);
    loadCategories();
}

void tst_KavlorCategoryModel::childrenLineChangesItsColourWhenChosen()
{
    const QColor plain(73, 117, 166);
    const QColor marked(41, 41, 0);
    CKavlorCategoryModel model;
    model.showLevel(0);
    const QImage before = cell(model, 1, CKavlorCategoryModel::CategoryColumn);
    QVERIFY(hasColor(before, plain));
    QVERIFY(!hasColor(before, marked));
    model.setChosen(4);
    const QImage after = cell(model, 1, CKavlorCategoryModel::CategoryColumn);
    QVERIFY(hasColor(after, marked));
    QVERIFY(!hasColor(after, plain));
}

void tst_KavlorCategoryModel::categoryCellIsPaintedByItsFigures_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("chosen");
    QTest::addColumn<int>("identifier");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("children");
    const QString sports = QStringLiteral("Sporting Jugglery");
    const QString longName = QStringLiteral("Everything else that a member may have seen");
    const QString manyNames = QStringLiteral("pigeons, doves, parrots, quails, gulls and jays, "
                                             "pelicans, grouse, yellow hammers, kingfishers");
    for (const bool chosen : {false, true}) {
        const auto row = [chosen](const char *about, int level, int identifier, const QString &name,
                                  const QString &children) {
            QTest::addRow("%s%s", about, chosen ? ", chosen" : "")
                << level << chosen << identifier << name << children;
        };
        row("picture and children", 0, 4, sports, QStringLiteral("football, tennis"));
        row("picture and many children", 0, 4, sports, manyNames);
        row("picture", 0, 4, sports, QString());
        row("picture, long name", 0, 4, longName, QString());
        row("children", 0, 8, sports, QStringLiteral("football, tennis"));
        row("children, long name", 0, 8, longName, QStringLiteral("football, tennis"));
        row("neither", 0, 8, sports, QString());
        row("lower level with children", 9, 10, sports, QStringLiteral("football, tennis"));
        row("lower level", 9, 10, sports, QString());
        row("lower level, long name", 9, 10, longName, QString());
    }
}

void tst_KavlorCategoryModel::categoryCellIsPaintedByItsFigures()
{
    QFETCH(int, level);
    QFETCH(bool, chosen);
    QFETCH(int, identifier);
    QFETCH(QString, name);
    QFETCH(QString, children);
    QString list = QStringLiteral("h\n%1,%2,%3").arg(identifier).arg(name).arg(level);
    int child = 100;
    const QStringList names = children.split(QStringLiteral(", "), Qt::SkipEmptyParts);
    for (const QString &childName : names)
        list += QStringLiteral("\n%1,%2,%3").arg(child++).arg(childName).arg(identifier);
    CKavlorCategoryStore::load(list);

    CKavlorCategoryModel model;
    model.showLevel(level);
    model.setChosen(chosen ? identifier : 0);
    const QString picture = identifier == 4 ? QStringLiteral(":/Sports.png") : QString();
    QCOMPARE(cell(model, 0, CKavlorCategoryModel::CategoryColumn),
             paintedCategory(level == 0, chosen, picture, name, children));
    loadCategories();
}

void tst_KavlorCategoryModel::chosenRowHasTheBackgroundPicture()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    model.setChosen(8); // no children, so its last cell is bare background
    const QImage chosen = cell(model, 2, CKavlorCategoryModel::ForwardColumn);
    const QImage background =
        QPixmap(QStringLiteral(":/mainCellBG.png"))
            .scaled(chosen.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation)
            .toImage()
            .convertToFormat(QImage::Format_ARGB32);
    const QRect bare = aboveSeparator(chosen);
    QCOMPARE(chosen.copy(bare), background.copy(bare));
    model.setChosen(0);
    QCOMPARE(inkIn(cell(model, 2, CKavlorCategoryModel::ForwardColumn), bare), 0);
}

void tst_KavlorCategoryModel::choosingPaintsTwoRowsAndReusesTheOthers()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    model.setChosen(1);
    for (int row = 0; row < model.rowCount(); ++row) {
        for (int column = 0; column < model.columnCount(); ++column)
            cell(model, row, column);
    }
    QPixmap pixmap;
    QVERIFY(QPixmapCache::find(QStringLiteral("::category1,1,1"), &pixmap));
    QVERIFY(!QPixmapCache::find(QStringLiteral("::category1,1,0"), &pixmap));
    QVERIFY(QPixmapCache::find(QStringLiteral("::category4,2,0"), &pixmap));
    QVERIFY(QPixmapCache::find(QStringLiteral("::category8,0,0"), &pixmap));
    const qint64 reused = pixmap.cacheKey();

    model.setChosen(4);
    QVERIFY(!QPixmapCache::find(QStringLiteral("::category1,1,0"), &pixmap));
    QVERIFY(!QPixmapCache::find(QStringLiteral("::category4,1,1"), &pixmap));
    cell(model, 0, CKavlorCategoryModel::CategoryColumn);
    cell(model, 1, CKavlorCategoryModel::CategoryColumn);
    QVERIFY(QPixmapCache::find(QStringLiteral("::category1,1,0"), &pixmap));
    QVERIFY(QPixmapCache::find(QStringLiteral("::category4,1,1"), &pixmap));
    QCOMPARE(model.index(2, 0).data(Qt::DecorationRole).value<QPixmap>().cacheKey(), reused);
}

void tst_KavlorCategoryModel::choosingTellsTheTwoRows()
{
    CKavlorCategoryModel model;
    const QAbstractItemModelTester tester(&model, FailureMode::QtTest);
    model.showLevel(0);
    model.setChosen(1);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.setChosen(8);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(0).at(0).toModelIndex(), model.index(0, 0));
    QCOMPARE(changed.at(0).at(1).toModelIndex(), model.index(0, 2));
    QCOMPARE(changed.at(1).at(0).toModelIndex(), model.index(2, 0));
    model.setChosen(8);
    model.setChosen(10); // on another level
    QCOMPARE(changed.count(), 3);
}

void tst_KavlorCategoryModel::backgroundsAreKeptByColumn()
{
    CKavlorCategoryModel model;
    model.showLevel(0);
    model.setChosen(4);
    for (int column = 0; column < model.columnCount(); ++column) {
        cell(model, 0, column);
        cell(model, 1, column);
        QPixmap background;
        QVERIFY(QPixmapCache::find(QStringLiteral("::BG%1").arg(column), &background));
        QCOMPARE(background.size(), CKavlorCategoryModel::cellSize(column));
        QVERIFY(QPixmapCache::find(QStringLiteral("::BGchosen%1").arg(column), &background));
        QCOMPARE(background.size(), CKavlorCategoryModel::cellSize(column));
    }
    // Painting on a cell left the kept background as it was.
    QPixmap background;
    QVERIFY(QPixmapCache::find(QStringLiteral("::BG1"), &background));
    QCOMPARE(inkIn(background.toImage(), QRect(0, 0, 400, 87)), 0);
}

KAVLOR_TEST_MAIN(tst_KavlorCategoryModel)
#include "tst_kavlorcategorymodel.moc"
