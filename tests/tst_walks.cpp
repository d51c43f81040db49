// SPDX-License-Identifier: MIT

#include "processmemory.h"
#include "quietplatform.h"
#include "randomwalk.h"
#include "testcase.h"
#include "testmain.h"

#include <QDeadlineTimer>
#include <QDesktopServices>
#include <QDir>
#include <QPixmapCache>
#include <QStandardPaths>
#include <QTest>
#include <QUrl>

#include <memory>
#include <random>

/**
 * Random ways of a member through all screens. Whatever he does, the program lives, nothing is sent
 * that he has not confirmed, no file is left, and he finds home, where the next request works.
 *
 * The walks are the same ones every time. With KAVLOR_WALKS it is that many others, with
 * KAVLOR_WALKS_SECONDS as many as there is time for; KAVLOR_WALK_SEED is the one walk that failed.
 * The last line of the output says how many there were.
 */
class tst_Walks : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void goesWell_data();
    void goesWell();
    void everyOperationWasSent();
    void memoryStays();

public slots:
    void openNothing(const QUrl &) { } // in the place of a web browser

private:
    void take(quint32 seed);
    void measure();
    QList<QByteArray> missing() const;

    std::unique_ptr<QuietPlatform> m_quiet;
    QTemporaryDir m_folder;
    QHash<QByteArray, int> m_requests;
    QDeadlineTimer m_deadline = QDeadlineTimer(QDeadlineTimer::Forever);
    qsizetype m_walks = 0;
    qsizetype m_actions = 0;
    qint64 m_memoryEarly = 0; // KiB
    qint64 m_memoryLate = 0;
};

namespace {

constexpr int usualWalks = 40;
constexpr int mostWalks = 20000; // in however many seconds
constexpr int earlyWalks = 200;
constexpr int lateWalks = 2000;
constexpr int measuredWalks = 20; // before each of the two

// As a long list of auctions leaves it. The cache takes no more than its limit, and its filling up
// is not to pass for growth.
void fillPixmapCache()
{
    QPixmap thumbnail(120, 90);
    thumbnail.fill(Qt::darkGreen);
    constexpr int kibibyte = 1024;
    const int size = thumbnail.width() * thumbnail.height() * thumbnail.depth() / 8;
    for (int i = 0; i <= QPixmapCache::cacheLimit() * kibibyte / size; ++i)
        QPixmapCache::insert(QString::number(i), thumbnail.copy());
}

} // namespace

void tst_Walks::initTestCase()
{
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
    QVERIFY(RandomWalk::makeFiles(m_folder.path()));
    QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "openNothing");
    m_quiet = std::make_unique<QuietPlatform>();
    fillPixmapCache();
    constexpr qint64 second = 1000; // ms
    if (qEnvironmentVariableIsSet("KAVLOR_WALKS_SECONDS"))
        m_deadline.setRemainingTime(qEnvironmentVariableIntValue("KAVLOR_WALKS_SECONDS") * second);
}

void tst_Walks::cleanupTestCase()
{
    m_quiet.reset();
    QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
    int requests = 0;
    for (const int count : std::as_const(m_requests))
        requests += count;
    if (m_memoryLate > 0) {
        qInfo("%lld KiB of memory after %d walks, %lld KiB after %d", m_memoryEarly, earlyWalks,
              m_memoryLate, lateWalks);
    }
    qInfo("%d walks, %d actions, %d requests", static_cast<int>(m_walks),
          static_cast<int>(m_actions), requests);
}

void tst_Walks::goesWell_data()
{
    QTest::addColumn<quint32>("seed");
    const auto row = [](quint32 seed) { QTest::addRow("seed %u", seed) << seed; };
    if (qEnvironmentVariableIsSet("KAVLOR_WALK_SEED")) {
        row(qEnvironmentVariable("KAVLOR_WALK_SEED").toUInt());
        return;
    }
    const bool isTimed = qEnvironmentVariableIsSet("KAVLOR_WALKS_SECONDS");
    const bool isUsual = !isTimed && !qEnvironmentVariableIsSet("KAVLOR_WALKS");
    const int others = isTimed ? mostWalks : qEnvironmentVariableIntValue("KAVLOR_WALKS");
    // The same ones on every machine, but others every time where many have a turn.
    std::mt19937 seeds(isUsual ? std::mt19937::default_seed : std::random_device()());
    for (int i = 0; i < (isUsual ? usualWalks : others); ++i)
        row(static_cast<quint32>(seeds()));
}

void tst_Walks::goesWell()
{
    QFETCH(quint32, seed);
    if (m_deadline.hasExpired())
        return;
    take(seed);
}

void tst_Walks::take(quint32 seed)
{
    RandomWalk walk(seed, m_folder.path());
    const QString complaint = walk.run();
    ++m_walks;
    m_actions += walk.actionCount();
    for (const QByteArray &operation : MoodyService::operations())
        m_requests[operation] += walk.requestCount(operation);
    measure();
    if (!complaint.isEmpty())
        qInfo().noquote() << walk.way().join(QLatin1Char('\n'));
    QVERIFY2(complaint.isEmpty(), qPrintable(complaint));
}

void tst_Walks::measure()
{
    if (m_walks == earlyWalks - measuredWalks || m_walks == lateWalks - measuredWalks)
        QVERIFY(resetPeakMemory());
    if (m_walks == earlyWalks)
        m_memoryEarly = ownMemory();
    if (m_walks == lateWalks)
        m_memoryLate = ownMemory();
}

QList<QByteArray> tst_Walks::missing() const
{
    QList<QByteArray> operations = MoodyService::operations();
    operations.removeIf([this](const QByteArray &name) { return m_requests.value(name) > 0; });
    return operations;
}

// Together they miss nothing that the client can ask for. The same seeds lead elsewhere with
// another release of the toolkit, so that it may take a few more.
void tst_Walks::everyOperationWasSent()
{
    if (m_walks < usualWalks)
        return;
    for (quint32 seed = 1; seed <= usualWalks && !missing().isEmpty(); ++seed)
        take(seed);
    QCOMPARE(missing(), QList<QByteArray>());
}

void tst_Walks::memoryStays()
{
    if (m_memoryLate > 0)
        QVERIFY(m_memoryLate <= m_memoryEarly + m_memoryEarly / 10);
}

KAVLOR_TEST_MAIN(tst_Walks)
#include "tst_walks.moc"
