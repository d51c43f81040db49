// SPDX-License-Identifier: MIT

#include "oneinstance.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>

/** Starts of the program that meet, or do not. */
class tst_OneInstance : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void aLaterStartHandsOverWhatItWasToOpen();
    void whatCameBeforeTheFirstListensIsNotLost();
    void aStartForNothingIsTold();
    void whoIsToldMayTakeTheirTime();
    void theTokenOfTheDesktopIsHandedOver();
    void theNextStartAfterTheFirstHasEndedIsAFirst();
    void anotherSettingsFileIsAnotherProgram();
    void aSocketThatNobodyListensToIsNoObstacle();
    void noOtherUserReachesTheSocket();
    void withoutAFolderOfItsOwnEveryStartIsForItself_data();
    void withoutAFolderOfItsOwnEveryStartIsForItself();
    void withoutASessionFolderTheStartsMeetInTheTemporaryOne();
    void aFirstThatDoesNotListenIsNotWaitedForLong();

private:
    QStringList sockets() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    const QString m_settings = QStringLiteral("/home/m1/.config/kavlor/kavlor.conf");
};

void tst_OneInstance::init()
{
    TestCase::init();
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_RUNTIME_DIR", m_folder->path().toUtf8());
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

QStringList tst_OneInstance::sockets() const
{
    return QDir(m_folder->path()).entryList(QDir::System | QDir::NoDotAndDotDot);
}

void tst_OneInstance::aLaterStartHandsOverWhatItWasToOpen()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QStringLiteral("/of/the/first.jpg")));
    first.hear();
    QSignalSpy again(&first, &OneInstance::startedAgain);
    const QStringList paths{QStringLiteral("/a/Jyväskylä\n.jpg"), QStringLiteral("/b.mp4")};
    for (const QString &path : paths) {
        OneInstance later(m_settings);
        QVERIFY(later.handOver(path));
    }
    QTRY_COMPARE(again.size(), 2);
    QCOMPARE(again.at(0).at(0).toString(), paths.at(0));
    QCOMPARE(again.at(1).at(0).toString(), paths.at(1));
}

void tst_OneInstance::whatCameBeforeTheFirstListensIsNotLost()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    OneInstance later(m_settings);
    QVERIFY(later.handOver(QStringLiteral("/a.jpg")));
    QSignalSpy again(&first, &OneInstance::startedAgain);
    // The loop that runs while the start waits for a connection.
    QTRY_VERIFY(first.findChild<QLocalServer *>()->hasPendingConnections());
    first.hear();
    QTRY_COMPARE(again.size(), 1);
    QCOMPARE(again.at(0).at(0).toString(), QStringLiteral("/a.jpg"));
}

void tst_OneInstance::aStartForNothingIsTold()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    first.hear();
    QSignalSpy again(&first, &OneInstance::startedAgain);
    OneInstance later(m_settings);
    QVERIFY(later.handOver(QString()));
    QTRY_COMPARE(again.size(), 1);
    QCOMPARE(again.at(0).at(0).toString(), QString());
}

void tst_OneInstance::whoIsToldMayTakeTheirTime()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    first.hear();
    // A box that is open meanwhile, in whose event loop the later start goes away for good.
    bool isTold = false;
    connect(&first, &OneInstance::startedAgain, this, [&] {
        QTRY_VERIFY(first.findChildren<QLocalSocket *>().isEmpty());
        isTold = true;
    });
    QLocalSocket later;
    later.connectToServer(first.findChild<QLocalServer *>()->fullServerName());
    QVERIFY(later.waitForConnected());
    QTRY_VERIFY(!first.findChildren<QLocalSocket *>().isEmpty());
    later.write(QByteArray("\n/a.jpg", 7) + '\0');
    later.disconnectFromServer();
    QTRY_VERIFY(isTold);
}

void tst_OneInstance::theTokenOfTheDesktopIsHandedOver()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    first.hear();
    QSignalSpy again(&first, &OneInstance::startedAgain);
    qputenv("XDG_ACTIVATION_TOKEN", "token-of-the-later");
    OneInstance later(m_settings);
    QVERIFY(later.handOver(QString()));
    qputenv("XDG_ACTIVATION_TOKEN", "token-of-the-first");
    QTRY_COMPARE(again.size(), 1);
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), QByteArray("token-of-the-later"));
}

void tst_OneInstance::theNextStartAfterTheFirstHasEndedIsAFirst()
{
    for (int start = 0; start < 2; ++start) {
        OneInstance first(m_settings);
        QVERIFY(!first.handOver(QString()));
    }
    QCOMPARE(sockets(), QStringList());
}

void tst_OneInstance::anotherSettingsFileIsAnotherProgram()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    OneInstance other(QStringLiteral("/home/m1/other/kavlor.conf"));
    QVERIFY(!other.handOver(QString()));
    QCOMPARE(sockets().size(), 2);
}

void tst_OneInstance::aSocketThatNobodyListensToIsNoObstacle()
{
    QString socket;
    {
        OneInstance killed(m_settings);
        QVERIFY(!killed.handOver(QString()));
        socket = m_folder->filePath(sockets().value(0));
    }
    // As a program leaves it that is killed.
    QFile left(socket);
    QVERIFY(left.open(QIODevice::WriteOnly));
    left.close();

    OneInstance next(m_settings);
    QVERIFY(!next.handOver(QString()));
    next.hear();
    QSignalSpy again(&next, &OneInstance::startedAgain);
    OneInstance later(m_settings);
    QVERIFY(later.handOver(QStringLiteral("/a.jpg")));
    QTRY_COMPARE(again.size(), 1);
}

void tst_OneInstance::noOtherUserReachesTheSocket()
{
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    QCOMPARE(sockets().size(), 1);
    const QFile::Permissions rights = QFileInfo(m_folder->filePath(sockets().at(0))).permissions();
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QVERIFY(!(rights & others));
}

void tst_OneInstance::withoutAFolderOfItsOwnEveryStartIsForItself_data()
{
    QTest::addColumn<bool>("isLink");
    QTest::newRow("others can enter it") << false;
    QTest::newRow("it is a link") << true;
}

void tst_OneInstance::withoutAFolderOfItsOwnEveryStartIsForItself()
{
    QFETCH(bool, isLink);
    const QByteArray temporary = qgetenv("TMPDIR");
    const auto back = qScopeGuard([&] { qputenv("TMPDIR", temporary); });
    qunsetenv("XDG_RUNTIME_DIR");
    qputenv("TMPDIR", m_folder->path().toUtf8());
    {
        const OneInstance made(m_settings); // it makes its folder
    }
    const QString folder = m_folder->filePath(
        QDir(m_folder->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0));
    if (isLink) {
        const QString target = m_folder->filePath(QStringLiteral("target"));
        QVERIFY(QDir().rename(folder, target));
        QVERIFY(QFile::link(target, folder));
    } else {
        QVERIFY(QFile::setPermissions(folder, QFile::permissions(folder) | QFile::ExeOther));
    }
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    OneInstance second(m_settings);
    QVERIFY(!second.handOver(QString()));
}

void tst_OneInstance::withoutASessionFolderTheStartsMeetInTheTemporaryOne()
{
    qunsetenv("XDG_RUNTIME_DIR");
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    OneInstance second(m_settings);
    QVERIFY(second.handOver(QString()));
}

void tst_OneInstance::aFirstThatDoesNotListenIsNotWaitedForLong()
{
    testTimeConstants().handOverWait = 50;
    OneInstance first(m_settings);
    QVERIFY(!first.handOver(QString()));
    first.findChild<QLocalServer *>()->close();
    OneInstance second(m_settings);
    QVERIFY(!second.handOver(QString()));
}

KAVLOR_TEST_MAIN(tst_OneInstance)
#include "tst_oneinstance.moc"
