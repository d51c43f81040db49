// SPDX-License-Identifier: MIT

#include "replyimage.h"
#include "testcase.h"
#include "testmain.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

class tst_ReplyImage : public TestCase
{
    Q_OBJECT

private slots:
    void fitsItsBounds_data();
    void fitsItsBounds();
    void whatIsNoPictureIsNull_data();
    void whatIsNoPictureIsNull();

private:
    QTemporaryDir m_folder;
};

void tst_ReplyImage::fitsItsBounds_data()
{
    QTest::addColumn<QSize>("sent");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("wide") << QSize(440, 110) << QSize(220, 55);
    QTest::newRow("high") << QSize(110, 440) << QSize(55, 220);
    QTest::newRow("small") << QSize(11, 11) << QSize(220, 220);
    QTest::newRow("as it is") << QSize(220, 220) << QSize(220, 220);
}

void tst_ReplyImage::fitsItsBounds()
{
    QFETCH(QSize, sent);
    // Without an ending: the format is told by the bytes.
    const QString path = m_folder.filePath(QStringLiteral("reply"));
    QImage image(sent, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(path, "PNG"));
    const QImage read = readReplyImage(path);
    QTEST(read.size(), "shown");
    QCOMPARE(read.pixelColor(0, 0), QColor(Qt::red));
}

void tst_ReplyImage::whatIsNoPictureIsNull_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a text") << QByteArray("ERROR:no such auction");
    QTest::newRow("half a head") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIH", 14);
}

void tst_ReplyImage::whatIsNoPictureIsNull()
{
    QFETCH(QByteArray, bytes);
    const QString path = m_folder.filePath(QStringLiteral("reply"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    QVERIFY(readReplyImage(path).isNull());
    QVERIFY(file.remove());
    QVERIFY(readReplyImage(path).isNull());
}

KAVLOR_TEST_MAIN(tst_ReplyImage)

#include "tst_replyimage.moc"
