// SPDX-License-Identifier: MIT

#include "progressivemodel.h"
#include "testcase.h"
#include "testmain.h"

#include <QAbstractItemModelTester>
#include <QImage>
#include <QSignalSpy>
#include <QTest>

class tst_ProgressiveModel : public TestCase
{
    Q_OBJECT

private slots:
    void isAProperModel();
    void aCountOfZeroBehavesAsOne();
    void percentagesAboveHundredCountAsHundred();
    void positionZeroLightsNoCell();
    void positionHundredLightsNoCell();
    void litCell_data();
    void litCell();
    void sweepsToAndFro();
    void endsByItselfOnTheFourthTick();
    void countsItsTimeAnewAtEachStart();
    void stopsWhenTold();
    void restartsFromWhereItIs();
    void picturesAreEnlarged();
    void answersOnlyPictureAndAlignment();

private:
    static int litColumn(const CProgressiveModel &model);
    static QList<int> litColumns(CProgressiveModel *model, int steps);
};

namespace {

QImage picture(const CProgressiveModel &model, int column)
{
    return model.data(model.index(0, column), Qt::DecorationRole).value<QImage>();
}

QImage unlit()
{
    const CProgressiveModel model(nullptr, 1, 0);
    return picture(model, 0);
}

} // namespace

// The lit column, -1 for none, -2 for more than one.
int tst_ProgressiveModel::litColumn(const CProgressiveModel &model)
{
    int lit = -1;
    for (int column = 0; column < model.columnCount(); ++column) {
        if (picture(model, column) != unlit())
            lit = lit == -1 ? column : -2;
    }
    return lit;
}

// The lit column after each of so many steps.
QList<int> tst_ProgressiveModel::litColumns(CProgressiveModel *model, int steps)
{
    QObject context;
    QList<int> lit;
    connect(model, &CProgressiveModel::occuredTimerEvent, &context, [&] {
        lit.append(litColumn(*model));
        if (lit.size() == steps)
            model->animate(false, 0, 0);
    });
    model->animate(true, 1, 0);
    if (!waitUntil([&] { return lit.size() == steps; }))
        model->animate(false, 0, 0);
    return lit;
}

void tst_ProgressiveModel::isAProperModel()
{
    CProgressiveModel model(nullptr, 8, 5);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.columnCount(), 8);
    QCOMPARE(model.flags(model.index(0, 0)), Qt::ItemFlags(Qt::ItemIsEnabled));
}

void tst_ProgressiveModel::aCountOfZeroBehavesAsOne()
{
    CProgressiveModel model(nullptr, 0, 50);
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(litColumn(model), 0);
}

void tst_ProgressiveModel::percentagesAboveHundredCountAsHundred()
{
    CProgressiveModel model(nullptr, 3, 100);
    QCOMPARE(litColumns(&model, 1), QList<int>{2}); // turns at the end, and goes back from here on
    model.setPercentage(250);
    QCOMPARE(litColumn(model), -1);
    // Back from 100: 67, 34, 1, then the turn at 0, 33. From 250 it would turn later.
    QCOMPARE(litColumns(&model, 5), (QList<int>{2, 1, 0, -1, 0}));
}

void tst_ProgressiveModel::positionZeroLightsNoCell()
{
    const CProgressiveModel model(nullptr, 3, 0);
    QCOMPARE(litColumn(model), -1);
}

void tst_ProgressiveModel::positionHundredLightsNoCell()
{
    CProgressiveModel model(nullptr, 3, 0);
    model.setPercentage(100);
    QCOMPARE(litColumn(model), -1);
}

void tst_ProgressiveModel::litCell_data()
{
    QTest::addColumn<uint>("count");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("column");

    QTest::newRow("first of three") << 3U << 1 << 0;
    QTest::newRow("still the first") << 3U << 33 << 0;
    QTest::newRow("second") << 3U << 34 << 1;
    QTest::newRow("still the second") << 3U << 66 << 1;
    QTest::newRow("third") << 3U << 67 << 2;
    QTest::newRow("last percent") << 3U << 99 << 2;
    QTest::newRow("first of eight") << 8U << 5 << 0;
    QTest::newRow("at the edge of eight") << 8U << 25 << 2;
    QTest::newRow("before the edge") << 8U << 24 << 1;
}

void tst_ProgressiveModel::litCell()
{
    QFETCH(uint, count);
    QFETCH(int, position);
    QFETCH(int, column);
    const CProgressiveModel model(nullptr, count, position);
    QCOMPARE(litColumn(model), column);
}

void tst_ProgressiveModel::sweepsToAndFro()
{
    // With three cells from 1: 34, 67, 100, 99, 66, 33, 0, 0, 33 percent.
    CProgressiveModel model(nullptr, 3, 1);
    QCOMPARE(litColumns(&model, 9), (QList<int>{1, 2, -1, 2, 1, 0, -1, -1, 0}));
}

void tst_ProgressiveModel::endsByItselfOnTheFourthTick()
{
    // As animate(true, 350, 1000), at a seventieth of the time: 5, 10, 15 ms, the fourth finds 15.
    CProgressiveModel model(nullptr, 3, 1);
    QSignalSpy steps(&model, &CProgressiveModel::occuredTimerEvent);
    model.animate(true, 5, 14);
    QTRY_COMPARE(steps.count(), 3);
    const int light = litColumn(model);
    // A timer of another object with the same period ticks on well past the fourth.
    CProgressiveModel peer(nullptr, 3, 1);
    QSignalSpy peerSteps(&peer, &CProgressiveModel::occuredTimerEvent);
    peer.animate(true, 5, 0);
    QTRY_VERIFY(peerSteps.count() >= 6);
    QCOMPARE(steps.count(), 3);
    QCOMPARE(litColumn(model), light);
}

void tst_ProgressiveModel::countsItsTimeAnewAtEachStart()
{
    CProgressiveModel model(nullptr, 3, 1);
    QSignalSpy steps(&model, &CProgressiveModel::occuredTimerEvent);
    model.animate(true, 5, 14);
    QTRY_COMPARE(steps.count(), 3);
    model.animate(true, 5, 14);
    QTRY_COMPARE(steps.count(), 6);
}

void tst_ProgressiveModel::stopsWhenTold()
{
    CProgressiveModel model(nullptr, 3, 1);
    QSignalSpy steps(&model, &CProgressiveModel::occuredTimerEvent);
    model.animate(true, 1, 0);
    QTRY_VERIFY(steps.count() >= 2);
    model.animate(false, 1, 0);
    const auto count = steps.count();
    CProgressiveModel peer(nullptr, 3, 1);
    QSignalSpy peerSteps(&peer, &CProgressiveModel::occuredTimerEvent);
    peer.animate(true, 1, 0);
    QTRY_VERIFY(peerSteps.count() >= 3);
    QCOMPARE(steps.count(), count);
}

void tst_ProgressiveModel::restartsFromWhereItIs()
{
    CProgressiveModel model(nullptr, 3, 1);
    model.setPercentage(34);
    model.animate(true, 1, 0);
    QCOMPARE(litColumns(&model, 1), QList<int>{2});
}

void tst_ProgressiveModel::picturesAreEnlarged()
{
    const QImage file(QStringLiteral(":/Progress  HL.png"));
    QVERIFY(!file.isNull());
    const QSize box(file.width() + (3 * file.width()) / 4, file.height() + (3 * file.height()) / 4);
    const CProgressiveModel model(nullptr, 1, 50);
    QCOMPARE(picture(model, 0).size(), file.size().scaled(box, Qt::KeepAspectRatio));
}

void tst_ProgressiveModel::answersOnlyPictureAndAlignment()
{
    const CProgressiveModel model(nullptr, 3, 1);
    const QModelIndex cell = model.index(0, 0);
    QCOMPARE(model.data(cell, Qt::TextAlignmentRole).toInt(), static_cast<int>(Qt::AlignCenter));
    for (const int role : {Qt::DisplayRole, Qt::ToolTipRole, Qt::SizeHintRole, Qt::FontRole})
        QVERIFY(!model.data(cell, role).isValid());
    QVERIFY(!model.data(QModelIndex(), Qt::DecorationRole).isValid());
}

KAVLOR_TEST_MAIN(tst_ProgressiveModel)
#include "tst_progressivemodel.moc"
