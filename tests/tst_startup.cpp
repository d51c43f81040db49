// SPDX-License-Identifier: MIT

#include "scriptedservice.h"
#include "standingconf.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"
#include "wholesystem.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSettings>

/**
 * Starts of the real program, with its real times.
 */
class tst_Startup : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void transportErrorEndsTheProgramWithCodeZero_data();
    void transportErrorEndsTheProgramWithCodeZero();
    void withoutAServiceTheProgramSaysSoAndEnds();
    void withoutATemporaryFolderTheProgramSaysSoAndEnds();
    void withoutItsHttpLibraryTheProgramSaysSoAndEnds();
    void theLoginIsRememberedAcrossStarts();
    void aWindowClosedDuringTheStartEndsTheProgram();
    void offlineAWindowClosedDuringTheStartEndsTheProgramAtOnce();
    void aStoppedConnectivityDaemonDoesNotHoldUpTheFirstWindow();
    void aPhotoGivenToTheStartIsInTheWizardAfterTheLogin();
    void aSecondStartHandsItsPhotoToTheFirst();
    void aKilledProgramIsNoObstacleToTheNext();
    void wrongArgumentsAreToldOnTheTerminal_data();
    void wrongArgumentsAreToldOnTheTerminal();
    void aMemberIsSpokenToInGerman();
    void helpAndVersionNeedNoDisplay_data();
    void helpAndVersionNeedNoDisplay();

private:
    QString settingsFile() const;
    void remember(const QString &userName, const QString &password) const;

    StandInGConf m_gconf; // read by the programs that the other starts
    WholeSystem m_system;
};

void tst_Startup::initTestCase()
{
    QVERIFY(m_system.startConnectivity());
}

void tst_Startup::cleanup()
{
    m_system.client->kill();
    m_system.client->setArguments({});
    QFile::remove(settingsFile());
}

QString tst_Startup::settingsFile() const
{
    return m_system.client->home() + QStringLiteral("/.config/kavlor/kavlor.conf");
}

void tst_Startup::remember(const QString &userName, const QString &password) const
{
    QSettings settings(settingsFile(), QSettings::IniFormat);
    settings.setValue(QStringLiteral("last/USERID"), userName);
    settings.setValue(QStringLiteral("UserData.%1/Username").arg(userName), userName);
    settings.setValue(QStringLiteral("UserData.%1/Password").arg(userName), password);
}

void tst_Startup::transportErrorEndsTheProgramWithCodeZero_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("login validation") << 0;
    QTest::newRow("categories") << 1;
    QTest::newRow("alert options") << 2;
    QTest::newRow("terms") << 3;
    QTest::newRow("countries") << 4;
}

void tst_Startup::transportErrorEndsTheProgramWithCodeZero()
{
    QFETCH(int, which);
    ScriptedService service(nullptr, WholeSystem::servicePort());
    const QList<QByteArray> operations{"ValidateLogin", "GetCategoryList", "GetNotificationOptions",
                                       "GetServiceTerms", "GetCountryList"};
    for (int request = 0; request < which; ++request)
        service.expect(operations.at(request), "1");
    ScriptedService::Step cut;
    cut.operation = operations.at(which);
    cut.then = ScriptedService::Close;
    service.expect(cut);

    remember(QStringLiteral("m1"), QStringLiteral("secret"));
    QVERIFY2(m_system.client->start(), qPrintable(m_system.client->error()));
    const QString text = m_system.client->closeBox();
    QVERIFY2(text.startsWith(QStringLiteral("kavlor experienced an error contacting a server.\n"
                                            "Please check your network settings.\n\n")),
             qPrintable(text));
    QCOMPARE(m_system.client->waitForEnd(), 0);
    QCOMPARE(service.operations(), operations.mid(0, which + 1));
    QVERIFY2(service.isDone(), service.report());
}

void tst_Startup::withoutAServiceTheProgramSaysSoAndEnds()
{
    QVERIFY2(m_system.client->start(), qPrintable(m_system.client->error()));
    QVERIFY(m_system.client->closeBox().contains(QStringLiteral("refused")));
    QCOMPARE(m_system.client->waitForEnd(), 0);
}

void tst_Startup::withoutATemporaryFolderTheProgramSaysSoAndEnds()
{
    const QString temporary = QString::fromLocal8Bit(qgetenv("TMPDIR"));
    // Where one is named that is not there, the toolkit takes the root, in which some may write.
    m_system.client->setEnvironment(QStringLiteral("TMPDIR"), QStringLiteral("/dev/null"));
    const auto back =
        qScopeGuard([&] { m_system.client->setEnvironment(QStringLiteral("TMPDIR"), temporary); });
    QVERIFY2(m_system.client->start(), qPrintable(m_system.client->error()));
    const QString told = m_system.client->closeBox();
    QVERIFY2(told.endsWith(QStringLiteral("\n\nUnable to create a temp file")), qPrintable(told));
    QCOMPARE(m_system.client->waitForEnd(), 0);
}

void tst_Startup::withoutItsHttpLibraryTheProgramSaysSoAndEnds()
{
    const QString searched = QStringLiteral("LD_LIBRARY_PATH");
    const QString before = qEnvironmentVariable("LD_LIBRARY_PATH");
    ClientDriver &client = *m_system.client;
    client.setEnvironment(searched, QStringLiteral(KAVLOR_EMPTY_CURL ":") + before);
    const auto restore = qScopeGuard([&] { client.setEnvironment(searched, before); });
    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY(client.closeBox().contains(QStringLiteral("not completely installed")));
    QCOMPARE(client.waitForEnd(), 0);
}

void tst_Startup::theLoginIsRememberedAcrossStarts()
{
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
    ClientDriver &client = *m_system.client;
    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY2(m_system.logIn(QStringLiteral("demo"), QStringLiteral("demo")),
             qPrintable(client.error()));
    QVERIFY(client.close());

    const QFileInfo file(settingsFile());
    QVERIFY(!(file.permissions() & (QFile::ReadGroup | QFile::ReadOther)));

    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY2(client.waitFor(QStringLiteral("buttonUpload")), qPrintable(client.error()));
    QCOMPARE(client.text(QStringLiteral("labelWelcome")), QStringLiteral("demo"));
    QVERIFY(client.close());
    QCOMPARE(m_system.service.terminate(), 0);
}

void tst_Startup::aWindowClosedDuringTheStartEndsTheProgram()
{
    ScriptedService service(nullptr, WholeSystem::servicePort());
    service.expectHeld("GetServiceTerms", "terms");
    QVERIFY2(m_system.client->start(), qPrintable(m_system.client->error()));
    QTRY_VERIFY(service.isHolding());
    QVERIFY(m_system.client->close());
    // Online, nobody was asked how to connect.
    const QByteArray output = m_system.client->output();
    QVERIFY2(!output.contains("CGConfBackend"), output.constData());
}

void tst_Startup::offlineAWindowClosedDuringTheStartEndsTheProgramAtOnce()
{
    QVERIFY(m_system.setNetworkState(0));
    const auto online = qScopeGuard([this] { QVERIFY(m_system.setNetworkState(2)); });
    QVERIFY2(m_system.client->start(), qPrintable(m_system.client->error()));
    QVERIFY(m_system.client->waitFor(QStringLiteral("progressMessage")));
    // Asked how to connect, GConf knew nothing. The line is written as it is.
    const QByteArray line = "Warning: CGConfBackend::value got a NULL value for key: "
                            "\"/system/osso/connectivity/network_type/auto_connect\"";
    QTRY_VERIFY(m_system.client->output().contains("auto_connect\"\n"));
    QVERIFY2(m_system.client->output().split('\n').contains(line),
             m_system.client->output().constData());
    // It would wait for a connection for longer than this has patience.
    QVERIFY2(m_system.client->close(), qPrintable(m_system.client->error()));
}

void tst_Startup::aStoppedConnectivityDaemonDoesNotHoldUpTheFirstWindow()
{
    const auto timeToTheFirstWindow = [this] {
        QElapsedTimer timer;
        timer.start();
        const bool shown =
            m_system.client->start() && m_system.client->waitFor(QStringLiteral("progressMessage"));
        const qint64 time = timer.elapsed();
        m_system.client->kill();
        return shown ? time : -1;
    };
    ScriptedService service(nullptr, WholeSystem::servicePort());
    for (int start = 0; start < 2; ++start)
        service.expectHeld("GetServiceTerms", "terms");
    timeToTheFirstWindow(); // only loads what is loaded from disk
    const qint64 usual = timeToTheFirstWindow();
    QVERIFY(usual >= 0);
    m_system.stopDaemon();
    const qint64 withStoppedDaemon = timeToTheFirstWindow();
    m_system.resumeDaemon();
    QVERIFY(withStoppedDaemon >= 0);
    const QByteArray times = "usually " + QByteArray::number(usual) + " ms, with a stopped daemon "
        + QByteArray::number(withStoppedDaemon) + " ms";
    qInfo("%s", times.constData());
    // Far below the time of one answer that is waited for, far above what load adds to a start.
    QVERIFY2(withStoppedDaemon < usual + 1500, times.constData());
}

void tst_Startup::aPhotoGivenToTheStartIsInTheWizardAfterTheLogin()
{
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
    ClientDriver &client = *m_system.client;
    const QString photo = m_system.makePhoto(Qt::blue);
    client.setArguments({photo});
    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY2(client.click(QStringLiteral("loginButton"))
                 && client.type(QStringLiteral("lineUsername"), QStringLiteral("demo"))
                 && client.type(QStringLiteral("linePassword"), QStringLiteral("demo"))
                 && client.click(QStringLiteral("loginButton")),
             qPrintable(client.error()));
    QVERIFY2(client.waitFor(QStringLiteral("lineCaption")), qPrintable(client.error()));
    QVERIFY(client.close());

    QVERIFY2(client.start(), qPrintable(client.error())); // the login is remembered now
    QVERIFY2(client.waitFor(QStringLiteral("lineCaption")), qPrintable(client.error()));
    QVERIFY(client.close());
    QCOMPARE(m_system.service.terminate(), 0);
}

void tst_Startup::aSecondStartHandsItsPhotoToTheFirst()
{
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
    ClientDriver &client = *m_system.client;
    remember(QStringLiteral("demo"), QStringLiteral("demo"));
    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY2(client.waitFor(QStringLiteral("buttonUpload")), qPrintable(client.error()));

    QCOMPARE(client.startAgain({}), 0);
    QVERIFY2(client.waitFor(QStringLiteral("buttonUpload")), qPrintable(client.error()));
    QCOMPARE(client.startAgain({m_system.makePhoto(Qt::red)}), 0);
    QVERIFY2(client.waitFor(QStringLiteral("lineCaption")), qPrintable(client.error()));
    QCOMPARE(client.startAgain({QStringLiteral("/nowhere/photo.jpg")}), 0);
    QCOMPARE(client.closeBox(), QStringLiteral("Cannot load /nowhere/photo.jpg."));
    // The box is gone.
    QVERIFY2(client.waitFor(QStringLiteral("photoClicker")), qPrintable(client.error()));
    QVERIFY2(client.close(), qPrintable(client.error()));
    QCOMPARE(m_system.service.terminate(), 0);
}

void tst_Startup::aKilledProgramIsNoObstacleToTheNext()
{
    ScriptedService service(nullptr, WholeSystem::servicePort());
    for (int start = 0; start < 2; ++start)
        service.expectHeld("GetServiceTerms", "terms");
    for (int start = 0; start < 2; ++start) {
        QVERIFY2(m_system.client->start(), qPrintable(m_system.client->error()));
        QVERIFY2(m_system.client->waitForText(QStringLiteral("progressMessage"),
                                              QStringLiteral("requesting")),
                 qPrintable(m_system.client->error()));
        QTRY_COMPARE(service.operations().size(), start + 1);
        m_system.client->kill();
    }
}

void tst_Startup::wrongArgumentsAreToldOnTheTerminal_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("unknown option")
        << QStringList{QStringLiteral("--frob")} << QByteArray("kavlor: Unknown option 'frob'.\n");
    QTest::newRow("unknown option before a file")
        << QStringList{QStringLiteral("--frob"), QStringLiteral("a.jpg")}
        << QByteArray("kavlor: Unknown option 'frob'.\n");
    QTest::newRow("two files") << QStringList{QStringLiteral("a.jpg"), QStringLiteral("b.jpg")}
                               << QByteArray("kavlor: Only one file can be opened.\n");
}

void tst_Startup::wrongArgumentsAreToldOnTheTerminal()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, line);
    const qsizetype before = m_system.client->output().size();
    QCOMPARE(m_system.client->startAgain(arguments), 2);
    QCOMPARE(m_system.client->output().mid(before), line);
}

void tst_Startup::helpAndVersionNeedNoDisplay_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QByteArray>("start");
    QTest::newRow("--help") << QStringLiteral("--help")
                            << QByteArray("Usage: " KAVLOR_CLIENT " [options] [file]\n");
    QTest::newRow("--version") << QStringLiteral("--version")
                               << QByteArray("kavlor " KAVLOR_VERSION "\n");
}

void tst_Startup::helpAndVersionNeedNoDisplay()
{
    QFETCH(QString, argument);
    QFETCH(QByteArray, start);
    ClientDriver client;
    client.setEnvironment(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nowhere"));
    QCOMPARE(client.startAgain({argument}), 0);
    QVERIFY2(client.output().startsWith(start), client.output().constData());
}

void tst_Startup::aMemberIsSpokenToInGerman()
{
    ClientDriver &client = *m_system.client;
    const QString variable = QStringLiteral("LC_ALL");
    client.setEnvironment(variable, QStringLiteral("de_DE.UTF-8"));
    const auto back =
        qScopeGuard([&] { client.setEnvironment(variable, QStringLiteral("C.UTF-8")); });
    ScriptedService service(nullptr, WholeSystem::servicePort());
    service.expect("GetServiceTerms", "terms");
    service.expect("GetCountryList", "countries");
    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY2(client.waitFor(QStringLiteral("loginButton")), qPrintable(client.error()));
    QCOMPARE(client.text(QStringLiteral("loginButton")), QStringLiteral("Anmelden"));
}

KAVLOR_TEST_MAIN(tst_Startup)
#include "tst_startup.moc"
