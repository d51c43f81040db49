#include "testcase.h"
#include "testmain.h"
#include "wholesystem.h"

#include <csignal>

/**
 * What goes wrong around a member: a service that dies, impatient clicks, a window that is closed
 * too early. Nothing may be lost or done twice.
 */
class tst_Breakage : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theServiceDiesDuringAnUpload();
    void impatientClicksCreateOneAuction();
    void aWindowClosedDuringAnUploadEndsTheProgram();

private:
    int auctions() const;
    /** Stops the service's process without ending it, so that requests hang. */
    void pauseService() const;
    void resumeService() const;

    WholeSystem m_system;
    int m_before = 0;
};

#define DO(step) QVERIFY2(step, qPrintable(m_system.client->error()))

namespace {

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

// At the confirmation page, everything entered.
void tst_Breakage::init()
{
    TestCase::init();
    m_before = auctions();
    DO(m_system.client->start());
    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkRed), QStringLiteral("A photo")));
}

void tst_Breakage::cleanup()
{
    m_system.client->kill();
}

int tst_Breakage::auctions() const
{
    return m_system.service.value(QStringLiteral("SELECT count(*) FROM auctions")).toInt();
}

void tst_Breakage::pauseService() const
{
    ::kill(static_cast<pid_t>(m_system.service.processId()), SIGSTOP);
}

void tst_Breakage::resumeService() const
{
    ::kill(static_cast<pid_t>(m_system.service.processId()), SIGCONT);
}

void tst_Breakage::theServiceDiesDuringAnUpload()
{
    ClientDriver &client = *m_system.client;
    pauseService();
    DO(client.click(name("createAuctionButton")));
    QVERIFY(!client.isThere(name("createAuctionButton"))); // disabled: the upload is under way
    m_system.service.kill();
    const QString told = client.closeBox();
    QVERIFY2(told.startsWith(QStringLiteral("Media uploading failed. Reason: ")), qPrintable(told));
    DO(client.waitFor(name("buttonUpload")));

    QVERIFY(m_system.startService());
    QCOMPARE(auctions(), m_before);
    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkRed), QStringLiteral("Again")));
    DO(client.click(name("createAuctionButton")));
    DO(client.waitFor(name("buttonOk")));
    QCOMPARE(auctions(), m_before + 1);
    DO(client.close());
}

void tst_Breakage::impatientClicksCreateOneAuction()
{
    ClientDriver &client = *m_system.client;
    DO(client.clickTwice(name("createAuctionButton")));
    DO(client.waitFor(name("buttonOk")));
    QCOMPARE(auctions(), m_before + 1);
    DO(client.clickTwice(name("buttonOk")));
    DO(client.waitFor(name("pushButtonDone")));
    DO(client.clickTwice(name("pushButtonDone")));
    DO(client.waitFor(name("buttonUpload")));
    DO(client.close());
}

void tst_Breakage::aWindowClosedDuringAnUploadEndsTheProgram()
{
    ClientDriver &client = *m_system.client;
    pauseService();
    DO(client.click(name("createAuctionButton")));
    QVERIFY(!client.isThere(name("createAuctionButton")));
    DO(client.close());
    resumeService();
    QVERIFY(auctions() <= m_before + 1);
}

KAVLOR_TEST_MAIN(tst_Breakage)
#include "tst_breakage.moc"
