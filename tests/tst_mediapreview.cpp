// SPDX-License-Identifier: MIT

#include "languages.h"
#include "mediapreview.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QImage>
#include <QPixmapCache>
#include <QTemporaryDir>
#include <QtTest>

class tst_MediaPreview : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void photoFitsTheHeight_data();
    void photoFitsTheHeight();
    void promptGrowsWithThePreviewAPhotoDoesNot();
    void whatIsNoPhotoLeavesWhatWasShown();
    void clipHasASizeOfItsOwn();
    void clipSpeaksTheLanguageOfNow();
    void promptCallsOffTheTurn();

private:
    QString makePhoto(const QSize &size) const;

    QTemporaryDir m_folder;
};

void tst_MediaPreview::init()
{
    TestCase::init();
    testTimeConstants().rotationDelay = 1;
    QPixmapCache::clear();
}

QString tst_MediaPreview::makePhoto(const QSize &size) const
{
    const QString path = m_folder.filePath(QStringLiteral("photo.png"));
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    if (!image.save(path))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void tst_MediaPreview::photoFitsTheHeight_data()
{
    QTest::addColumn<QSize>("photo");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("lying") << QSize(400, 200) << QSize(180, 90);
    QTest::newRow("standing, turned") << QSize(200, 400) << QSize(180, 90);
    QTest::newRow("square") << QSize(10, 10) << QSize(180, 180);
    QTest::newRow("a line") << QSize(400, 1) << QSize(180, 1);
}

void tst_MediaPreview::photoFitsTheHeight()
{
    QFETCH(QSize, photo);
    QFETCH(QSize, shown);
    MediaPreview preview;
    preview.resize(240, 180);
    preview.keepSize();
    QVERIFY(preview.showPhoto(makePhoto(photo)));
    QTRY_COMPARE(preview.pixmap().size(), shown);
}

void tst_MediaPreview::promptGrowsWithThePreviewAPhotoDoesNot()
{
    MediaPreview preview;
    preview.resize(240, 180);
    preview.show();
    const QSize small = preview.pixmap().size();
    QVERIFY(!small.isEmpty());
    preview.resize(480, 360);
    QTRY_VERIFY(preview.pixmap().width() > small.width());

    preview.keepSize();
    QVERIFY(preview.showPhoto(makePhoto(QSize(40, 20))));
    preview.resize(960, 720);
    preview.keepSize();
    QCOMPARE(preview.pixmap().size(), QSize(360, 180));
    QVERIFY(preview.showPhoto(makePhoto(QSize(40, 20))));
    QCOMPARE(preview.pixmap().size(), QSize(360, 180));
}

void tst_MediaPreview::whatIsNoPhotoLeavesWhatWasShown()
{
    MediaPreview preview;
    preview.resize(240, 180);
    preview.keepSize();
    QVERIFY(preview.showPhoto(makePhoto(QSize(400, 200))));
    QVERIFY(!preview.showPhoto(m_folder.filePath(QStringLiteral("missing.png"))));
    QCOMPARE(preview.pixmap().size(), QSize(180, 90));
}

void tst_MediaPreview::clipHasASizeOfItsOwn()
{
    MediaPreview preview;
    preview.resize(240, 180);
    preview.keepSize();
    preview.showClip();
    QCOMPARE(preview.pixmap().size(), QSize(240, 180));
}

void tst_MediaPreview::clipSpeaksTheLanguageOfNow()
{
    MediaPreview preview;
    preview.resize(240, 180);
    preview.keepSize();
    preview.showClip();
    const QImage english = preview.pixmap().toImage();
    {
        Languages languages;
        languages.use(QLocale(QLocale::German));
        QTRY_VERIFY(preview.pixmap().toImage() != english);
    }
    QTRY_COMPARE(preview.pixmap().toImage(), english);
}

void tst_MediaPreview::promptCallsOffTheTurn()
{
    testTimeConstants().rotationDelay = 50;
    MediaPreview preview;
    preview.resize(240, 180);
    preview.keepSize();
    QVERIFY(preview.showPhoto(makePhoto(QSize(200, 400))));
    preview.showPrompt();
    const QSize prompt = preview.pixmap().size();
    QVERIFY(prompt.width() > prompt.height());
    // Another preview's turn, begun later, comes surely after it.
    MediaPreview other;
    other.resize(240, 180);
    other.keepSize();
    QVERIFY(other.showPhoto(makePhoto(QSize(200, 400))));
    QTRY_COMPARE(other.pixmap().size(), QSize(180, 90));
    QCOMPARE(preview.pixmap().size(), prompt);
}

KAVLOR_TEST_MAIN(tst_MediaPreview)

#include "tst_mediapreview.moc"
