#include "testcase.h"
#include "testmain.h"

#include <QImage>
#include <QTest>

class tst_Resources : public TestCase
{
    Q_OBJECT

private slots:
    void everyPictureLoads_data();
    void everyPictureLoads();
};

void tst_Resources::everyPictureLoads_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("seeThrough");

    const auto picture = [](const char *path, int width, int height, bool seeThrough) {
        QTest::newRow(path) << QString::fromLatin1(path) << QSize(width, height) << seeThrough;
    };
    picture(":/Background.png", 800, 480, false);
    picture(":/BG-transparent.png", 64, 64, true);
    picture(":/Header.png", 800, 72, false);
    picture(":/KavlorMicroLogo.png", 128, 128, true);
    picture(":/Kavlor Logo Small.png", 400, 124, true);
    picture(":/Kavlor Logo Smallest.png", 155, 48, true);
    picture(":/Progress.png", 24, 12, true);
    picture(":/Progress  HL.png", 24, 12, true);
    picture(":/UserIcon.png", 128, 128, true);
    picture(":/UploadIcon.png", 128, 128, true);
    picture(":/myKavlor.png", 128, 128, true);
    picture(":/MySettingsIcon.png", 128, 128, true);
    picture(":/MyAccountIcon.png", 128, 128, true);
    picture(":/NotificationIcon.png", 128, 128, true);
    picture(":/UploadBG.png", 360, 270, true);
    picture(":/mainCellBG.png", 400, 87, false);
    picture(":/checkboxMarked.png", 36, 36, true);
    picture(":/checkboxUnmarked.png", 36, 36, true);
    picture(":/biddingOn.png", 136, 56, true);
    picture(":/reserveMet.png", 76, 56, true);
    picture(":/sold.png", 96, 56, true);
    picture(":/viewed.png", 136, 56, true);
    picture(":/videoicon.png", 360, 270, true);
    picture(":/Breaking News.png", 86, 86, true);
    picture(":/Event.png", 86, 86, true);
    picture(":/Funny.png", 86, 86, true);
    picture(":/Party.png", 86, 86, true);
    picture(":/Places.png", 86, 86, true);
    picture(":/Public Figures.png", 86, 86, true);
    picture(":/Sports.png", 86, 86, true);
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
}

KAVLOR_TEST_MAIN(tst_Resources)
#include "tst_resources.moc"
