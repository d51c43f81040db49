// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"
#include "powercut.h"
#include "serviceload.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>

#include <algorithm>
#include <memory>

// What the service has promised is there after any kill, and after a power cut.
class tst_ServiceKills : public TestCase
{
    Q_OBJECT

private slots:
    void cleanupTestCase();

    void aKillLosesNothingPromised_data();
    void aKillLosesNothingPromised();
    void aSyncThatIsMissingWouldBeSeen_data();
    void aSyncThatIsMissingWouldBeSeen();
    void aCopyMadeWhileItRunsIsWhole();

private:
    qint64 m_kills = 0;
    qint64 m_promises = 0;
    qint64 m_lost = 0;
};

namespace {

enum Death { ProgramDies, PowerCutsTheRest, PowerCutsThisAndThat };

constexpr int killsOfAFolder = 25; // then a new one is begun

/** A service on a folder of its own that is worked, dies, and is started again. */
class Victim
{
public:
    explicit Victim(Death death)
        : m_death(death)
        , m_power(QFileInfo(service.dataDir()).path())
    {
        if (death == ProgramDies)
            return;
        const auto variables = m_power.preload();
        for (const auto &variable : variables)
            service.setEnvironment(variable.first, variable.second);
    }

    /** Dies before it has served anybody. */
    void dieDuringTheStart()
    {
        service.startWithoutWaiting();
        dieWithin(100);
    }
    /** Is worked, and dies soon after it has answered this many changes. */
    void dieAfter(qint64 changes)
    {
        const qint64 wanted = load.acknowledged() + changes;
        load.start();
        QVERIFY(waitUntil([&] { return load.acknowledged() >= wanted; }));
        dieWithin(100);
    }
    /** Dies this many milliseconds from now at the latest. */
    void dieWithin(int most)
    {
        QThread::msleep(QRandomGenerator::global()->bounded(quint32(most)));
        service.kill();
        load.join();
        if (m_death != ProgramDies)
            QVERIFY(m_power.cut(m_death == PowerCutsTheRest ? PowerCut::NothingElse
                                                            : PowerCut::ThisAndThat));
    }

    LocalServiceProcess service;
    ServiceLoad load{service};

private:
    const Death m_death;
    PowerCut m_power;
};

int wantedKills()
{
    constexpr int inEveryRun = 10;
    return std::max(inEveryRun, qEnvironmentVariableIntValue("KAVLOR_KILLS"));
}

qint64 secondsOfARow()
{
    constexpr int rows = 3;
    constexpr int secondsInAll = 600;
    const int asked = qEnvironmentVariableIntValue("KAVLOR_KILLS_SECONDS");
    return (asked > 0 ? asked : secondsInAll) / rows;
}

} // namespace

Q_DECLARE_METATYPE(Death)

void tst_ServiceKills::cleanupTestCase()
{
    qInfo("%lld kills, %lld acknowledged changes, %lld lost", m_kills, m_promises, m_lost);
}

void tst_ServiceKills::aKillLosesNothingPromised_data()
{
    QTest::addColumn<Death>("death");

    QTest::newRow("the program dies") << ProgramDies;
    QTest::newRow("a power cut leaves only what was synced") << PowerCutsTheRest;
    QTest::newRow("a power cut leaves this and that") << PowerCutsThisAndThat;
}

// KAVLOR_KILLS asks for more kills in each row, in KAVLOR_KILLS_SECONDS at most for all rows.
void tst_ServiceKills::aKillLosesNothingPromised()
{
    QFETCH(Death, death);

    constexpr int startsThatFail = 3;
    constexpr int mostChanges = 60;
    const QDeadlineTimer limit(secondsOfARow() * 1000);
    std::unique_ptr<Victim> victim;
    for (int kill = 0; kill < wantedKills() && !limit.hasExpired(); ++kill) {
        if (kill % killsOfAFolder == 0) {
            m_promises += victim ? victim->load.acknowledged() : 0;
            victim = std::make_unique<Victim>(death);
            for (int start = 0; start < startsThatFail; ++start)
                victim->dieDuringTheStart();
        }
        QVERIFY2(victim->service.start(), victim->service.complaints());
        if (kill % killsOfAFolder == 0)
            QVERIFY(victim->load.prepare());
        victim->dieAfter(QRandomGenerator::global()->bounded(mostChanges));
        ++m_kills;
        QVERIFY2(victim->service.start(), victim->service.complaints());
        const QStringList faults = victim->load.faults();
        m_lost += faults.size();
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
        victim->service.kill();
    }
    m_promises += victim->load.acknowledged();
}

void tst_ServiceKills::aSyncThatIsMissingWouldBeSeen_data()
{
    QTest::addColumn<QString>("forgotten");

    QTest::newRow("of a photo") << "files";
    QTest::newRow("of a folder") << "folders";
}

void tst_ServiceKills::aSyncThatIsMissingWouldBeSeen()
{
    QFETCH(QString, forgotten);

    Victim victim(PowerCutsTheRest);
    QVERIFY(victim.service.start());
    QVERIFY(victim.load.prepare());
    victim.dieWithin(1);
    QVERIFY(victim.service.start());
    QCOMPARE(victim.load.faults(), QStringList());
    victim.service.kill();

    victim.service.setEnvironment(QStringLiteral("KAVLOR_SYNC_FORGETS"), forgotten);
    QVERIFY(victim.service.start());
    const qint64 before = victim.load.auctions();
    victim.load.start();
    QTRY_VERIFY(victim.load.auctions() > before);
    victim.dieWithin(1);
    QVERIFY(victim.service.start());
    QVERIFY(
        victim.load.faults().join(QLatin1Char(' ')).contains(QLatin1String("has another photo")));
}

void tst_ServiceKills::aCopyMadeWhileItRunsIsWhole()
{
    Victim victim(ProgramDies);
    QVERIFY(victim.service.start());
    QVERIFY(victim.load.prepare());
    victim.load.start();
    QTRY_VERIFY(victim.load.acknowledged() > 50);
    const qint64 auctions = victim.load.auctions();

    // As docs/localservice.md says.
    const QTemporaryDir backup;
    victim.service.execute(QStringLiteral("VACUUM INTO ?"),
                           {backup.filePath(QStringLiteral("service.sqlite"))});
    const qint64 copied = victim.load.auctions();
    QTRY_VERIFY(victim.load.auctions() > copied); // photos that the copy does not know
    QProcess copy;
    copy.start(
        QStringLiteral("cp"),
        {QStringLiteral("-a"), victim.service.dataDir() + QStringLiteral("/media"), backup.path()});
    QVERIFY(copy.waitForFinished(patience) && copy.exitCode() == 0);
    victim.service.kill();
    victim.load.join();

    LocalServiceProcess restored;
    QVERIFY(QDir().rename(backup.path(), restored.dataDir()));
    QVERIFY2(restored.start(), restored.complaints());
    QCOMPARE(restored.value(QStringLiteral("PRAGMA integrity_check")).toString(),
             QStringLiteral("ok"));
    const QList<QVariantList> rows =
        restored.query(QStringLiteral("SELECT id, media FROM auctions"));
    QVERIFY(rows.size() >= auctions);
    for (const QVariantList &row : rows) {
        const QString media = QStringLiteral("/media/") + row.at(1).toString();
        QFile original(victim.service.dataDir() + media);
        QVERIFY(original.open(QIODevice::ReadOnly));
        const QByteArray given =
            restored
                .post("GetRawMedia",
                      "Username=seller&Password=secret&AuctionID=" + row.at(0).toByteArray())
                .body;
        QVERIFY(given == original.readAll());
    }
}

KAVLOR_TEST_MAIN(tst_ServiceKills)
#include "tst_servicekills.moc"
