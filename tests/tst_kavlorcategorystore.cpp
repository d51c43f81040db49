// SPDX-License-Identifier: MIT

#include "kavlorcategorystore.h"
#include "testcase.h"
#include "testmain.h"

namespace {

const CKavlorCategoryStore &store()
{
    return *CKavlorCategoryStore::instance();
}

void load(const char *reply)
{
    CKavlorCategoryStore::load(QString::fromLatin1(reply));
}

} // namespace

class tst_KavlorCategoryStore : public TestCase
{
    Q_OBJECT

private slots:
    void thereIsNoStoreBeforeTheFirstList();
    void aHeaderAndTwoLinesGiveOneCategoryWithOneChild();
    void parse_data();
    void parse();
    void aNewListReplacesTheOldOne();
    void aRepeatedIdentifierOverwritesTheEarlierEntry();
    void whatFollowsACommaInANameIsLost();
    void laterFieldsAreIgnored();
    void childrenComeInAscendingOrder();
    void unknownCategories();
    void pathText_data();
    void pathText();
    void aCircleOfParentsEndsThePath();
};

// Has to be the first function: the store lives until exit.
void tst_KavlorCategoryStore::thereIsNoStoreBeforeTheFirstList()
{
    QVERIFY(!CKavlorCategoryStore::instance());
    QVERIFY(CKavlorCategoryStore::isEmpty());
    QCOMPARE(CKavlorCategoryStore::pathText(0), QStringLiteral("None"));
    QCOMPARE(CKavlorCategoryStore::pathText(10), QStringLiteral("None"));
    QVERIFY(CKavlorCategoryStore::instanceOrEmpty().children(0).isEmpty());

    load("");
    QVERIFY(CKavlorCategoryStore::instance());
    QVERIFY(CKavlorCategoryStore::isEmpty());
}

void tst_KavlorCategoryStore::aHeaderAndTwoLinesGiveOneCategoryWithOneChild()
{
    load("id,name,parent\n1,Sports,0\n10,Football,1");
    QVERIFY(!CKavlorCategoryStore::isEmpty());
    QCOMPARE(store().children(0), QList<int>{1});
    QCOMPARE(store().children(1), QList<int>{10});
    QCOMPARE(store().name(1), QStringLiteral("Sports"));
    QCOMPARE(store().name(10), QStringLiteral("Football"));
    QCOMPARE(store().parentOf(10, -1), 1);
    QCOMPARE(store().parentOf(1, -1), 0);
}

void tst_KavlorCategoryStore::parse_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QList<int>>("taken");
    QTest::newRow("header only") << QByteArray("1,Sports,0") << QList<int>();
    QTest::newRow("header that looks like a category is skipped")
        << QByteArray("1,Sports,0\n2,Event,0") << QList<int>{2};
    QTest::newRow("trailing newline") << QByteArray("h\n1,Sports,0\n") << QList<int>{1};
    QTest::newRow("carriage returns") << QByteArray("h\r\n1,A,0\r\n2,B,0\r\n") << QList<int>{1, 2};
    QTest::newRow("empty line ends the list")
        << QByteArray("h\n1,Sports,0\n\n2,Event,0") << QList<int>{1};
    QTest::newRow("identifier that is no number ends the list")
        << QByteArray("h\n1,Sports,0\nx,Event,0\n3,Party,0") << QList<int>{1};
    QTest::newRow("hexadecimal identifier ends the list")
        << QByteArray("h\n1,Sports,0\n0x2,Event,0") << QList<int>{1};
    QTest::newRow("parent that is no number ends the list")
        << QByteArray("h\n1,Sports,0\n2,Event,\n3,Party,0") << QList<int>{1};
    QTest::newRow("two fields end the list")
        << QByteArray("h\n1,Sports,0\n2,0\n3,Party,0") << QList<int>{1};
    QTest::newRow("number too large ends the list")
        << QByteArray("h\n1,Sports,0\n2147483648,Event,0") << QList<int>{1};
    QTest::newRow("empty name is a name") << QByteArray("h\n1,,0\n2,Event,0") << QList<int>{1, 2};
    QTest::newRow("negative numbers are numbers")
        << QByteArray("h\n-5,Sports,0\n2,Event,0") << QList<int>{-5, 2};
    QTest::newRow("empty reply") << QByteArray() << QList<int>();
}

void tst_KavlorCategoryStore::parse()
{
    QFETCH(QByteArray, reply);
    QFETCH(QList<int>, taken);
    load(reply.constData());
    QCOMPARE(store().children(0), taken);
    QCOMPARE(CKavlorCategoryStore::isEmpty(), taken.isEmpty());
}

void tst_KavlorCategoryStore::aNewListReplacesTheOldOne()
{
    load("h\n1,Sports,0\n10,Football,1");
    load("h\n2,Event,0");
    QCOMPARE(store().children(0), QList<int>{2});
    QVERIFY(!store().contains(1));
    QVERIFY(!store().contains(10));
    QCOMPARE(store().name(10), QString());
}

void tst_KavlorCategoryStore::aRepeatedIdentifierOverwritesTheEarlierEntry()
{
    load("h\n1,Sports,0\n2,Event,0\n10,Football,1\n10,Concert,2");
    QCOMPARE(store().name(10), QStringLiteral("Concert"));
    QVERIFY(store().children(1).isEmpty());
    QCOMPARE(store().children(2), QList<int>{10});
}

void tst_KavlorCategoryStore::whatFollowsACommaInANameIsLost()
{
    load("h\n1,Track, field and more,0\n2,Event,0");
    QVERIFY(CKavlorCategoryStore::isEmpty()); // the third field is no number

    load("h\n1,Rooms,4 walls,0\n2,Event,0");
    QVERIFY(CKavlorCategoryStore::isEmpty());

    load("h\n1,Area,51,0\n2,Event,0");
    QCOMPARE(store().name(1), QStringLiteral("Area"));
    QCOMPARE(store().parentOf(1, -1), 51);
}

void tst_KavlorCategoryStore::laterFieldsAreIgnored()
{
    load("h\n1,Sports,0,rest,of,line\n2,Event,0");
    QCOMPARE(store().children(0), (QList<int>{1, 2}));
}

void tst_KavlorCategoryStore::childrenComeInAscendingOrder()
{
    load("h\n30,C,0\n4,A,0\n12,B,0\n7,D,4");
    QCOMPARE(store().children(0), (QList<int>{4, 12, 30}));
}

void tst_KavlorCategoryStore::unknownCategories()
{
    load("h\n1,Sports,0");
    QVERIFY(!store().contains(9));
    QCOMPARE(store().name(9), QString());
    QCOMPARE(store().parentOf(9, -1), -1);
    QVERIFY(store().children(9).isEmpty());
}

void tst_KavlorCategoryStore::pathText_data()
{
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << QStringLiteral("None");
    QTest::newRow("top level") << 1 << QStringLiteral("Sports");
    QTest::newRow("second level") << 10 << QStringLiteral("Sports>Football");
    QTest::newRow("third level") << 100 << QStringLiteral("Sports>Football>Cup");
    QTest::newRow("unknown") << 77 << QString();
    QTest::newRow("below an unknown parent") << 11 << QStringLiteral(">Stray");
}

void tst_KavlorCategoryStore::pathText()
{
    QFETCH(int, category);
    load("h\n1,Sports,0\n10,Football,1\n100,Cup,10\n11,Stray,99");
    QTEST(CKavlorCategoryStore::pathText(category), "text");
}

void tst_KavlorCategoryStore::aCircleOfParentsEndsThePath()
{
    load("h\n1,One,2\n2,Two,1\n3,Self,3");
    QCOMPARE(CKavlorCategoryStore::pathText(1), QStringLiteral("Two>One"));
    QCOMPARE(CKavlorCategoryStore::pathText(3), QStringLiteral("Self"));
}

KAVLOR_TEST_MAIN(tst_KavlorCategoryStore)
#include "tst_kavlorcategorystore.moc"
