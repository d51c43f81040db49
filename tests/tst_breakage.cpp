// SPDX-License-Identifier: MIT

#include "dostep.h"
#include "testcase.h"
#include "testmain.h"
#include "wholesystem.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

/**
 * What goes wrong around a member: a service that dies, impatient clicks, a window that is closed
 * too early. Nothing may be lost or done twice.
 */
class tst_Breakage : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void theServiceDiesDuringAnUpload();
    void impatientClicksCreateOneAuction();
    void aWindowClosedDuringAnUploadEndsTheProgram();

private:
    int auctions() const;
    QStringList files(const char *folder) const;
    /** A clip of many megabytes, so that its upload takes a while; empty = not made. */
    QString makeClip() const;
    /** How much of the uploads under way the service has put down so far, in bytes. */
    qint64 arrivedBytes() const;
    /** Lets a paused service take a part of the upload, and pauses it again. */
    bool takePartOfUpload() const;

    WholeSystem m_system;
    int m_before = 0;
    QStringList m_mediaBefore;
};

namespace {

// Below the most that the service takes, and far above what waits between two sockets.
constexpr qint64 clipSize = 60L * 1024 * 1024;

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

} // namespace

void tst_Breakage::initTestCase()
{
    QVERIFY(m_system.startConnectivity());
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
    DO(m_system.client->start());
    DO(m_system.logIn(QStringLiteral("demo"), QStringLiteral("demo")));
    DO(m_system.client->close());
}

void tst_Breakage::cleanupTestCase()
{
    QCOMPARE(m_system.service.terminate(), 0);
    QCOMPARE(m_system.service.complaints(), QByteArray());
}

void tst_Breakage::init()
{
    TestCase::init();
    m_before = auctions();
    m_mediaBefore = files("media");
    DO(m_system.client->start());
}

void tst_Breakage::cleanup()
{
    m_system.client->kill();
    m_system.service.resume();
}

int tst_Breakage::auctions() const
{
    return m_system.service.value(QStringLiteral("SELECT count(*) FROM auctions")).toInt();
}

QStringList tst_Breakage::files(const char *folder) const
{
    return QDir(m_system.service.dataDir() + QLatin1Char('/') + QLatin1String(folder))
        .entryList(QDir::Files | QDir::Hidden);
}

QString tst_Breakage::makeClip() const
{
    QFile clip(m_system.client->home() + QStringLiteral("/Pictures/long.mp4"));
    return clip.open(QIODevice::WriteOnly) && clip.resize(clipSize) ? clip.fileName() : QString();
}

// Read off the files that the process has open: one that is still arriving may have no name.
qint64 tst_Breakage::arrivedBytes() const
{
    const QString incoming =
        QDir(m_system.service.dataDir()).canonicalPath() + QStringLiteral("/incoming/");
    const QDir open(QStringLiteral("/proc/%1/fd").arg(m_system.service.processId()));
    const QFileInfoList links =
        open.entryInfoList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    qint64 bytes = 0;
    for (const QFileInfo &link : links) {
        if (QFile::symLinkTarget(link.filePath()).startsWith(incoming))
            bytes += QFile(link.filePath()).size();
    }
    return bytes;
}

bool tst_Breakage::takePartOfUpload() const
{
    QElapsedTimer timer;
    timer.start();
    while (arrivedBytes() == 0) {
        if (timer.hasExpired(patience))
            return false;
        m_system.service.resume();
        QThread::msleep(1); // a slice in which it takes far less than the whole
        m_system.service.pause();
    }
    return true;
}

void tst_Breakage::theServiceDiesDuringAnUpload()
{
    ClientDriver &client = *m_system.client;
    DO(m_system.prepareUpload(makeClip(), QStringLiteral("A clip")));
    m_system.service.pause();
    DO(client.click(name("createAuctionButton")));
    QVERIFY(!client.isThere(name("createAuctionButton"))); // disabled: the upload is under way
    QVERIFY(takePartOfUpload());
    QVERIFY(arrivedBytes() < clipSize);
    m_system.service.kill();
    const QString told = client.closeBox();
    QVERIFY2(told.startsWith(QStringLiteral("Media uploading failed. Reason: ")), qPrintable(told));
    DO(client.waitFor(name("buttonUpload")));

    QVERIFY(m_system.startService());
    QCOMPARE(auctions(), m_before);
    QCOMPARE(files("media"), m_mediaBefore);
    QCOMPARE(files("incoming"), QStringList());
    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkRed), QStringLiteral("Again")));
    DO(client.click(name("createAuctionButton")));
    DO(client.waitFor(name("buttonOk")));
    QCOMPARE(auctions(), m_before + 1);
    QCOMPARE(files("media").size(), m_mediaBefore.size() + 1);
    DO(client.close());
}

void tst_Breakage::impatientClicksCreateOneAuction()
{
    ClientDriver &client = *m_system.client;
    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkRed), QStringLiteral("A photo")));
    DO(client.clickTwice(name("createAuctionButton")));
    DO(client.waitFor(name("buttonOk")));
    QCOMPARE(auctions(), m_before + 1);
    DO(client.clickTwice(name("buttonOk")));
    DO(client.waitFor(name("pushButtonDone")));
    DO(client.clickTwice(name("pushButtonDone")));
    DO(client.waitFor(name("buttonUpload")));
    DO(client.close());
    QCOMPARE(auctions(), m_before + 1);
    QCOMPARE(files("media").size(), m_mediaBefore.size() + 1);
}

void tst_Breakage::aWindowClosedDuringAnUploadEndsTheProgram()
{
    ClientDriver &client = *m_system.client;
    DO(m_system.prepareUpload(makeClip(), QStringLiteral("A clip")));
    m_system.service.pause();
    DO(client.click(name("createAuctionButton")));
    QVERIFY(!client.isThere(name("createAuctionButton")));
    QVERIFY(takePartOfUpload());
    QVERIFY(arrivedBytes() < clipSize);
    DO(client.close()); // with code 0

    m_system.service.resume();
    QTRY_COMPARE(arrivedBytes(), 0); // what had come is dropped
    QCOMPARE(auctions(), m_before);
    QCOMPARE(files("media"), m_mediaBefore);
}

KAVLOR_TEST_MAIN(tst_Breakage)
#include "tst_breakage.moc"
