#include "scriptedservice.h"
#include "testcase.h"
#include "testmain.h"
#include "wholesystem.h"

#include <QFileInfo>
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
    void theLoginIsRememberedAcrossStarts();
    void aWindowClosedDuringTheStartEndsTheProgram();

private:
    QString settingsFile() const;
    void remember(const QString &userName, const QString &password) const;

    WholeSystem m_system;
};

void tst_Startup::initTestCase()
{
    QVERIFY(m_system.startConnectivity());
}

void tst_Startup::cleanup()
{
    m_system.client->kill();
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
}

KAVLOR_TEST_MAIN(tst_Startup)
#include "tst_startup.moc"
