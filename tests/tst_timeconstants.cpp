// SPDX-License-Identifier: MIT

#include "timeconstants.h"

#include <QTest>

/**
 * The program's own table of times, which every other test replaces.
 */
class tst_TimeConstants : public QObject
{
    Q_OBJECT

private slots:
    void programWaitsForTheseTimes();
};

void tst_TimeConstants::programWaitsForTheseTimes()
{
    const TimeConstants &times = timeConstants();
    QCOMPARE(times.startUpMinimum, 5000);
    QCOMPARE(times.progressStep, 350);
    QCOMPARE(times.paintWait, 500);
    QCOMPARE(times.exitDelay, 20);
    QCOMPARE(times.connectionWait, 35000);
    QCOMPARE(times.reachWait, 30000);
    QCOMPARE(times.formTimeout, 10000);
    QCOMPARE(times.uploadTimeout, 1800000);
    QCOMPARE(times.proxyAnswer, 1000);
    QCOMPARE(times.nameAnswer, 60000);
    QCOMPARE(times.rotationDelay, 50);
    QCOMPARE(times.categoryDelay, 50);
    QCOMPARE(times.handOverWait, 2000);
}

QTEST_GUILESS_MAIN(tst_TimeConstants)
#include "tst_timeconstants.moc"
