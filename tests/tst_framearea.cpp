// SPDX-License-Identifier: MIT

#include "framearea.h"
#include "testcase.h"
#include "testmain.h"

#include <QDialog>
#include <QTest>

namespace {

// Nothing stands where a widget has its data.
class Helper : public QObject
{
public:
    using QObject::QObject;

private:
    [[maybe_unused]] void *m_nothing[16] = {};
};

} // namespace

/**
 * The area that keeps its frames at its own size.
 */
class tst_FrameArea : public TestCase
{
    Q_OBJECT

private slots:
    void frameFillsTheAreaFromTheStart();
    void frameGrowsWithTheArea();
    void frameStaysInsideTheBorder();
    void dialogKeepsItsPlace();
    void childThatIsNoWidgetIsLeftAlone();
};

void tst_FrameArea::frameFillsTheAreaFromTheStart()
{
    FrameArea area;
    area.resize(800, 344);
    area.show();
    auto *frame = new QFrame(&area);
    QCOMPARE(frame->geometry(), area.rect());
    frame->resize(10, 10); // as its form may
    frame->show();
    QCOMPARE(frame->geometry(), area.rect());
}

void tst_FrameArea::frameGrowsWithTheArea()
{
    FrameArea area;
    area.resize(800, 344);
    area.show();
    auto *shown = new QFrame(&area);
    shown->show();
    auto *hidden = new QFrame(&area);
    hidden->hide();
    area.resize(1200, 700);
    QCOMPARE(shown->geometry(), QRect(0, 0, 1200, 700));
    QCOMPARE(hidden->geometry(), QRect(0, 0, 1200, 700));
}

void tst_FrameArea::frameStaysInsideTheBorder()
{
    FrameArea area;
    area.setContentsMargins(10, 20, 30, 40);
    area.resize(800, 344);
    area.show();
    auto *frame = new QFrame(&area);
    frame->show();
    QCOMPARE(frame->geometry(), QRect(10, 20, 760, 284));
}

void tst_FrameArea::dialogKeepsItsPlace()
{
    FrameArea area;
    area.resize(800, 344);
    area.show();
    QDialog dialog(&area);
    dialog.resize(300, 200);
    dialog.show();
    area.resize(1200, 700);
    QCOMPARE(dialog.size(), QSize(300, 200));
}

// Such as the timer of whoever animates what is in the area.
void tst_FrameArea::childThatIsNoWidgetIsLeftAlone()
{
    FrameArea area;
    area.resize(800, 344);
    area.show();
    const Helper helper(&area);
    auto *frame = new QFrame(&area);
    frame->show();
    area.resize(1200, 700);
    QCOMPARE(frame->geometry(), QRect(0, 0, 1200, 700));
    QCOMPARE(helper.parent(), &area);
}

KAVLOR_TEST_MAIN(tst_FrameArea)
#include "tst_framearea.moc"
