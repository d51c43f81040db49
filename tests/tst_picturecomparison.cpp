// SPDX-License-Identifier: MIT

#include "picturecomparison.h"
#include "testcase.h"
#include "testmain.h"

/** What the tests of painted pictures rely on. */
class tst_PictureComparison : public TestCase
{
    Q_OBJECT

private slots:
    void roundingIsNoDifference();
    void aVisibleDifferenceIsTold();
    void anotherSizeIsTold();
    void coloursThatCannotBeSeenAreNoDifference();
};

namespace {

QImage plainPicture(const QColor &colour, const QSize &size = QSize(4, 3))
{
    QImage picture(size, QImage::Format_ARGB32);
    picture.fill(colour);
    return picture;
}

} // namespace

void tst_PictureComparison::roundingIsNoDifference()
{
    QCOMPARE(
        pictureDifference(plainPicture(QColor(100, 100, 100)), plainPicture(QColor(102, 98, 101))),
        QString());
}

void tst_PictureComparison::aVisibleDifferenceIsTold()
{
    const QImage expected = plainPicture(QColor(100, 100, 100));
    QImage picture = expected;
    picture.setPixelColor(1, 2, QColor(100, 97, 100));
    picture.setPixelColor(3, 0, QColor(100, 100, 90));
    QCOMPARE(pictureDifference(picture, expected),
             QStringLiteral("2 pixels differ by more than 2 of 255, the most by 10 at (3, 0)"));
    QCOMPARE(pictureDifference(picture, expected, 10), QString());
}

void tst_PictureComparison::anotherSizeIsTold()
{
    QCOMPARE(pictureDifference(plainPicture(Qt::red), plainPicture(Qt::red, QSize(5, 3))),
             QStringLiteral("the picture is 4x3, expected is 5x3"));
}

void tst_PictureComparison::coloursThatCannotBeSeenAreNoDifference()
{
    QCOMPARE(
        pictureDifference(plainPicture(QColor(255, 0, 0, 1)), plainPicture(QColor(0, 255, 255, 1))),
        QString());
    QVERIFY(!pictureDifference(plainPicture(QColor(255, 0, 0, 40)),
                               plainPicture(QColor(0, 255, 255, 40)))
                 .isEmpty());
}

KAVLOR_TEST_MAIN(tst_PictureComparison)
#include "tst_picturecomparison.moc"
