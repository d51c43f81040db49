// SPDX-License-Identifier: MIT

#include "fonts.h"
#include "testcase.h"
#include "testmain.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QTest>

class tst_Fonts : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyNamedFamilyIsDrawable_data();
    void everyNamedFamilyIsDrawable();
    void aFamilyThatIsThereIsKept();
    void callingTwiceAddsNothing();
};

void tst_Fonts::initTestCase()
{
    installFontSubstitutes();
}

void tst_Fonts::everyNamedFamilyIsDrawable_data()
{
    QTest::addColumn<QString>("family");

    QTest::newRow("bars") << QStringLiteral("LargeSystemFont");
    QTest::newRow("lists") << QStringLiteral("SmallSystemFont");
    QTest::newRow("large buttons") << QStringLiteral("AlMateen");
    QTest::newRow("input") << QStringLiteral("AlArabiya");
}

void tst_Fonts::everyNamedFamilyIsDrawable()
{
    QFETCH(QString, family);

    const QStringList substitutes = QFont::substitutes(family);
    QCOMPARE(substitutes.isEmpty(), QFontDatabase::hasFamily(family));
    if (!substitutes.isEmpty()) {
        // The list of substitutes is kept in lower case.
        const QString face = QFontInfo(QFont(family)).family();
        QVERIFY2(QFontDatabase::hasFamily(face), qPrintable(face));
        QCOMPARE(face.toLower(), substitutes.first());
    }
    // Only the face is another; the size is the one that was asked for.
    const QFont font(family, 21, QFont::Bold);
    QCOMPARE(QFontInfo(font).pointSize(), 21);
    QVERIFY(QFontMetrics(font).inFont(QLatin1Char('k')));
}

void tst_Fonts::aFamilyThatIsThereIsKept()
{
    QVERIFY(QFontDatabase::hasFamily(QStringLiteral("AlArabiya")));
    QCOMPARE(QFont::substitutes(QStringLiteral("AlArabiya")), QStringList());
    QCOMPARE(QFontInfo(QFont(QStringLiteral("AlArabiya"))).family(), QStringLiteral("AlArabiya"));
}

void tst_Fonts::callingTwiceAddsNothing()
{
    const QStringList before = QFont::substitutes(QStringLiteral("LargeSystemFont"));
    installFontSubstitutes();
    QCOMPARE(QFont::substitutes(QStringLiteral("LargeSystemFont")), before);
}

KAVLOR_TEST_MAIN(tst_Fonts)
#include "tst_fonts.moc"
