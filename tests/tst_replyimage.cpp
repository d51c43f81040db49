// SPDX-License-Identifier: MIT

#include "replyimage.h"
#include "testcase.h"
#include "testmain.h"

#include <QFile>
#include <QImage>
#include <QLoggingCategory>
#include <QScopeGuard>
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
    void aJpegWithABrokenHeaderIsNull();

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

// The toolkit tells a format of it that there is none of.
void tst_ReplyImage::aJpegWithABrokenHeaderIsNull()
{
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false"));
    const auto back = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    QFile file(m_folder.filePath(QStringLiteral("reply")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromHex("ffd8ffdb004300" + QByteArray("10").repeated(64)
                                   + "ffc0000b080008000801011100ffc4001400010000000000000000000000"
                                     "0000000000ffc4100100000000000000000000000000000000ffda000801"
                                     "0100003f003fffd9"));
    file.close();
    QVERIFY(readReplyImage(file.fileName()).isNull());
}

KAVLOR_TEST_MAIN(tst_ReplyImage)

#include "tst_replyimage.moc"
