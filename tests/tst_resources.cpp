// SPDX-License-Identifier: MIT

#include "contrast.h"
#include "drawings.h"
#include "testcase.h"
#include "testmain.h"

#include <QDir>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

const QColor textColour(0, 0, 127);
const QColor numberColour(25, 5, 10);

QImage picture(const char *path)
{
    return QImage(QString::fromLatin1(path)).convertToFormat(QImage::Format_ARGB32);
}

/** The picture as it looks upon @p ground. */
QImage upon(const QColor &ground, const QImage &image)
{
    QImage result(image.size(), QImage::Format_RGB32);
    result.fill(ground);
    QPainter(&result).drawImage(0, 0, image);
    return result;
}

/** How far the pixels of a part differ in their lightest and darkest channel values. */
int unevenness(const QImage &image, const QRect &part)
{
    int darkest = 255;
    int lightest = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            for (const int value : {colour.red(), colour.green(), colour.blue()}) {
                darkest = qMin(darkest, value);
                lightest = qMax(lightest, value);
            }
        }
    }
    return lightest - darkest;
}

} // namespace

class tst_Resources : public TestCase
{
    Q_OBJECT

private slots:
    void everyPictureLoads_data();
    void everyPictureLoads();
    void logosAreThereForFinerScreens_data();
    void logosAreThereForFinerScreens();
    void progressCellsDifferAndEnlargeAlike();
    void textReadsOnSurfaces_data();
    void textReadsOnSurfaces();
    void panelLetsTheBackgroundThrough();
    void lowerHalfOfTheVideoPictureIsFree();
    void numbersFindRoomInTheStateMarks_data();
    void numbersFindRoomInTheStateMarks();
    void stateMarksFitTheStrip();
    void swappedSoldMarkIsAnotherColour();
    void checkMarkTellsTheBoxesApart();
};

void tst_Resources::everyPictureLoads_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("seeThrough");

    const auto row = [](const char *path, int width, int height, bool seeThrough) {
        QTest::newRow(path) << QString::fromLatin1(path) << QSize(width, height) << seeThrough;
    };
    row(":/Background.png", 800, 480, false);
    row(":/BG-transparent.png", 64, 64, true);
    row(":/Header.png", 800, 72, false);
    row(":/KavlorMicroLogo.png", 128, 128, true);
    row(":/Kavlor Logo Small.png", 400, 124, true);
    row(":/Kavlor Logo Smallest.png", 155, 48, true);
    row(":/Progress.png", 24, 12, true);
    row(":/Progress  HL.png", 24, 12, true);
    row(":/UserIcon.png", 128, 128, true);
    row(":/UploadIcon.png", 128, 128, true);
    row(":/myKavlor.png", 128, 128, true);
    row(":/MySettingsIcon.png", 128, 128, true);
    row(":/MyAccountIcon.png", 128, 128, true);
    row(":/NotificationIcon.png", 128, 128, true);
    row(":/UploadBG.png", 360, 270, true);
    row(":/mainCellBG.png", 400, 87, false);
    row(":/checkboxMarked.png", 36, 36, true);
    row(":/checkboxUnmarked.png", 36, 36, true);
    row(":/biddingOn.png", 150, 60, true);
    row(":/reserveMet.png", 86, 60, true);
    row(":/sold.png", 98, 60, true);
    row(":/viewed.png", 150, 60, true);
    row(":/videoicon.png", 360, 270, true);
    row(":/Breaking News.png", 86, 86, true);
    row(":/Event.png", 86, 86, true);
    row(":/Funny.png", 86, 86, true);
    row(":/Party.png", 86, 86, true);
    row(":/Places.png", 86, 86, true);
    row(":/Public Figures.png", 86, 86, true);
    row(":/Sports.png", 86, 86, true);
    row(":/spinLess.png", 28, 28, true);
    row(":/spinLessOff.png", 28, 28, true);
    row(":/spinMore.png", 28, 28, true);
    row(":/spinMoreOff.png", 28, 28, true);
}

void tst_Resources::everyPictureLoads()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);
    QFETCH(bool, seeThrough);

    const QImage image(path);
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), size);
    QCOMPARE(image.hasAlphaChannel(), seeThrough);
    if (seeThrough)
        QVERIFY2(image.pixelColor(0, 0).alpha() < 255, "the corner hides what is behind it");
}

void tst_Resources::logosAreThereForFinerScreens_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("start-up window") << QStringLiteral(":/Kavlor Logo Small");
    QTest::newRow("bar") << QStringLiteral(":/Kavlor Logo Smallest");
}

void tst_Resources::logosAreThereForFinerScreens()
{
    QFETCH(QString, name);

    const QImage logo(name + QStringLiteral(".png"));
    const QImage fine(largeDrawing(name + QStringLiteral(".png")));
    QCOMPARE(fine.size(), 2 * logo.size());
}

void tst_Resources::progressCellsDifferAndEnlargeAlike()
{
    const QImage normal = upon(Qt::white, picture(":/Progress.png"));
    const QImage lit = upon(Qt::white, picture(":/Progress  HL.png"));
    QCOMPARE(normal.size(), lit.size());
    // The enlargement counts in whole quarters; nothing must be lost by that.
    QCOMPARE(lit.width() % 4, 0);
    QCOMPARE(lit.height() % 4, 0);

    const QPoint middle = lit.rect().center();
    QVERIFY(contrast(normal.pixelColor(middle), lit.pixelColor(middle)) > 1.5);
}

void tst_Resources::textReadsOnSurfaces_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QRect>("part");
    QTest::addColumn<QColor>("text");
    QTest::addColumn<double>("wanted");

    const QRect all(0, 0, 800, 480);
    const QRect aboveTheMiddle(0, 0, 800, 240);
    const QRect aboveTheEdge(0, 0, 400, 82);
    const auto row = [](const char *name, const char *path, const QRect &part, const QColor &text,
                        double wanted) {
        QTest::newRow(name) << QString::fromLatin1(path) << part << text << wanted;
    };
    row("frame text", ":/Background.png", all, textColour, 4.5);
    row("fault", ":/Background.png", all, QColor(200, 29, 4), 4.5);
    row("subcategories", ":/Background.png", aboveTheMiddle, QColor(73, 117, 166), 4.5);
    row("subcategories below", ":/Background.png", all, QColor(73, 117, 166), 4.0);
    row("bar title", ":/Header.png", all, Qt::white, 4.5);
    row("category", ":/mainCellBG.png", aboveTheEdge, QColor(121, 85, 143), 4.5);
    row("chosen subcategories", ":/mainCellBG.png", aboveTheEdge, QColor(41, 41, 0), 4.5);
    row("way back, large", ":/mainCellBG.png", aboveTheEdge, QColor(126, 131, 137), 3.0);
    row("tab under the mouse", ":/mainCellBG.png", QRect(0, 47, 400, 35), QColor(54, 123, 159),
        4.0);
    row("invitation to choose", ":/UploadBG.png", QRect(8, 8, 344, 254), textColour, 4.5);
}

void tst_Resources::textReadsOnSurfaces()
{
    QFETCH(QString, path);
    QFETCH(QRect, part);
    QFETCH(QColor, text);
    QFETCH(double, wanted);

    const QImage surface = upon(Qt::white, QImage(path)).copy(part & QImage(path).rect());
    double worst = 21;
    for (int y = 0; y < surface.height(); ++y) {
        for (int x = 0; x < surface.width(); ++x)
            worst = qMin(worst, contrast(text, surface.pixelColor(x, y)));
    }
    QVERIFY2(worst >= wanted, QByteArray::number(worst).constData());
}

void tst_Resources::panelLetsTheBackgroundThrough()
{
    const QImage panel = picture(":/BG-transparent.png");
    const QColor first = panel.pixelColor(0, 0);
    QVERIFY(first.alpha() > 0);
    QVERIFY(first.alpha() < 255);
    // It is tiled: a pattern would show where the tiles meet.
    QCOMPARE(unevenness(panel, panel.rect()), 0);
    QVERIFY(contrast(textColour, upon(Qt::lightGray, panel).pixelColor(0, 0)) >= 4.5);
}

void tst_Resources::lowerHalfOfTheVideoPictureIsFree()
{
    const QImage image = picture(":/videoicon.png");
    const QRect text(20, image.height() / 2, image.width() - 40, image.height() / 2 - 20);
    QVERIFY(unevenness(image, text) < 16);
    QVERIFY(contrast(QColor(41, 53, 95), image.pixelColor(text.center())) >= 4.5);
}

void tst_Resources::numbersFindRoomInTheStateMarks_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QRect>("room"); // within the mark

    // The strip places both numbers by the size of the first mark, and the marks 1 and W + 2 from
    // its left edge, 28 from its upper one.
    const QSize viewed = picture(":/viewed.png").size();
    const int width = viewed.width();
    const int height = viewed.height();
    const int quarter = height / 4;
    const int twelfth = height / 12;
    const int top = static_cast<int>(quarter + 28.3 - twelfth) - 28;
    QTest::newRow("views") << QStringLiteral(":/viewed.png")
                           << QRect(width / 2 + 1 - width / 10 - 1, top, width / 2, 2 * height / 4);

    const int bids = picture(":/biddingOn.png").width();
    QTest::newRow("bids") << QStringLiteral(":/biddingOn.png")
                          << QRect(width + 1 + bids / 3 - (width + 2), top, bids / 2,
                                   2 * height / 4);
}

void tst_Resources::numbersFindRoomInTheStateMarks()
{
    QFETCH(QString, path);
    QFETCH(QRect, room);

    const QImage mark = QImage(path).convertToFormat(QImage::Format_ARGB32);
    QVERIFY(mark.rect().contains(room));
    QVERIFY2(unevenness(mark, room) < 8, "the mark's own drawing is in the way");
    QCOMPARE(mark.pixelColor(room.center()).alpha(), 255);
    QVERIFY(contrast(numberColour, mark.pixelColor(room.center())) >= 4.5);

    const QFontMetrics metrics(QFont(QStringLiteral("DejaVu Sans"), 14, QFont::DemiBold));
    QVERIFY(metrics.horizontalAdvance(QStringLiteral("88888")) <= room.width());
    QVERIFY(metrics.height() <= room.height());
}

void tst_Resources::stateMarksFitTheStrip()
{
    int right = 4;
    for (const char *path : {":/viewed.png", ":/biddingOn.png", ":/reserveMet.png", ":/sold.png"}) {
        right += picture(path).width();
        QVERIFY2(28 + picture(path).height() <= 90, path);
    }
    QVERIFY(right <= 680);
}

void tst_Resources::swappedSoldMarkIsAnotherColour()
{
    const QImage onSale = picture(":/sold.png");
    const QImage sold = onSale.rgbSwapped();
    const QPoint ground(onSale.width() - 15, 16);
    const QColor before = onSale.pixelColor(ground);
    const QColor after = sold.pixelColor(ground);
    QVERIFY(before.blue() > before.red() + 80);
    QVERIFY(after.red() > after.blue() + 80);
    QVERIFY(qAbs(before.hslHue() - after.hslHue()) > 120);
}

void tst_Resources::checkMarkTellsTheBoxesApart()
{
    const QImage marked = upon(Qt::white, picture(":/checkboxMarked.png"));
    const QImage unmarked = upon(Qt::white, picture(":/checkboxUnmarked.png"));
    int markPixels = 0;
    for (int y = 0; y < marked.height(); ++y) {
        for (int x = 0; x < marked.width(); ++x) {
            if (contrast(marked.pixelColor(x, y), unmarked.pixelColor(x, y)) >= 3)
                ++markPixels;
        }
    }
    QVERIFY(markPixels > 60);
    QVERIFY(contrast(unmarked.pixelColor(marked.width() / 2, 3), Qt::white) >= 4.5);
}

KAVLOR_TEST_MAIN(tst_Resources)
#include "tst_resources.moc"
