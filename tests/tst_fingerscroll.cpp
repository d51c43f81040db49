// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "auctionrecord.h"
#include "framecreateaccount.h"
#include "framestage.h"
#include "kavlorauctioncategorize.h"
#include "kavlorauctionconfirm.h"
#include "kavlorcategorystore.h"
#include "kavlormodifyauction.h"
#include "kavlormyauctionscontroller.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadmediacontroller.h"

#include <QCheckBox>
#include <QLabel>
#include <QPixmapCache>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPointingDevice>
#include <QScrollBar>
#include <QScroller>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QTextCursor>
#include <QWheelEvent>
#include <QWindow>

#include <memory>

/** A finger, and a mouse, on everything that scrolls. */
class tst_FingerScroll : public TestCase
{
    Q_OBJECT

private slots:
    void aDragOfTheAuctionsOpensNone_data();
    void aDragOfTheAuctionsOpensNone();
    void aDragOfTheCategoriesPicksNone_data();
    void aDragOfTheCategoriesPicksNone();
    void aFlickGlidesAndATapStopsIt_data();
    void aFlickGlidesAndATapStopsIt();
    void aTouchThatTremblesIsATap();
    void aTapIsAPressAndARelease();
    void aTouchThatIsCancelledDoesNothing();
    void aSecondFingerHasNoSay();
    void aDoubleTapPicksOneCategory_data();
    void aDoubleTapPicksOneCategory();
    void aListThatFitsIsNotTappedByADragEither();
    void whoeverElseScrollsHasTheLastWord();

    void aFingerScrollsTexts_data();
    void aFingerScrollsTexts();
    void aMouseSelectsInTexts_data();
    void aMouseSelectsInTexts();
    void aFingerPlacesTheCursorAndSelectsAWord();
    void aFingerSelectsInATextThatFits();

private:
    using Text = QAbstractScrollArea *(tst_FingerScroll::*)();
    void textRows();
    QAbstractScrollArea *terms();
    QAbstractScrollArea *description();
    QAbstractScrollArea *summary();

    std::shared_ptr<void> m_screen; // keeps what the last text stands in
    CAuctionRecord m_record;
};

namespace {

enum Hand { Finger, Mouse };

QPointingDevice *touchScreen()
{
    static const std::unique_ptr<QPointingDevice> device(QTest::createTouchDevice());
    return device.get();
}

// A finger, or a mouse with its left button, on one widget.
class Pointer
{
public:
    Pointer(Hand hand, QWidget *target)
        : m_hand(hand)
        , m_target(target)
    {
    }

    void press(const QPoint &point)
    {
        m_point = point;
        if (m_hand == Finger)
            QTest::touchEvent(m_target, touchScreen()).press(0, m_point, m_target);
        else
            QTest::mousePress(window(), Qt::LeftButton, {}, onWindow());
    }
    void moveBy(const QPoint &step, int pause)
    {
        QTest::qWait(pause); // the pace of the hand, not a wait for anything
        m_point += step;
        if (m_hand == Finger)
            QTest::touchEvent(m_target, touchScreen()).move(0, m_point, m_target);
        else
            QTest::mouseMove(window(), onWindow(), pause);
    }
    void lift()
    {
        if (m_hand == Finger)
            QTest::touchEvent(m_target, touchScreen()).release(0, m_point, m_target);
        else
            QTest::mouseRelease(window(), Qt::LeftButton, {}, onWindow());
    }
    void tap(const QPoint &point)
    {
        press(point);
        lift();
    }
    void drag(const QPoint &from, const QPoint &way, int pause, int hold = 0)
    {
        constexpr int steps = 8;
        press(from);
        for (int step = 0; step < steps; ++step)
            moveBy(way * (step + 1) / steps - way * step / steps, pause);
        if (hold > 0)
            moveBy(QPoint(), hold);
        lift();
    }

private:
    QWindow *window() const
    {
        return m_target->window()->windowHandle();
    }
    QPoint onWindow() const
    {
        return m_target->mapTo(m_target->window(), m_point);
    }

    Hand m_hand;
    QWidget *m_target;
    QPoint m_point;
};

// The list of a member's auctions.
class Auctions
{
public:
    bool open(int count)
    {
        for (int id = 1; id <= count; ++id)
            QPixmapCache::insert(QStringLiteral("auctionid::%1").arg(id), QPixmap(120, 90));
        stage.service.expect("GetMyAuctions", auctionReply(count).toUtf8());
        frame = new CKavlorMyAuctionsController(&user, stage.area());
        table = frame->findChild<QTableView *>();
        return stage.show(frame) && waitUntil([this] { return table->isVisible(); });
    }
    int openCount()
    {
        return static_cast<int>(stage.area()->findChildren<CKavlorModifyAuction *>().size());
    }

    FrameStage stage;
    CKavlorUser user{&stage.settings, nullptr, true, memberFields()};
    QPointer<CKavlorMyAuctionsController> frame;
    QTableView *table = nullptr;
};

// The page of the wizard that lists the categories.
class Categories
{
public:
    Q_DISABLE_COPY_MOVE(Categories)
    Categories()
    {
        QString list = QStringLiteral("categories\n");
        for (int id = 1; id <= 30; ++id)
            list += QStringLiteral("%1,Category %1,0\n").arg(id);
        for (int id = 101; id <= 130; ++id)
            list += QStringLiteral("%1,Part %1,1\n").arg(id);
        CKavlorCategoryStore::load(list);
        page = new CKavlorAuctionCategorize(stage.area(), 0, false);
        chosen = std::make_unique<QSignalSpy>(page, &CKavlorAuctionCategorize::categoryChosen);
        table = page->findChild<QTableView *>();
    }
    bool open()
    {
        return stage.show(page);
    }
    QString marked() const
    {
        return page->findChild<QLabel *>(QStringLiteral("categorySelected"))->text();
    }
    QPoint row(int row) const
    {
        return table->visualRect(table->model()->index(row, 1)).center();
    }

    FrameStage stage;
    CKavlorAuctionCategorize *page = nullptr;
    std::unique_ptr<QSignalSpy> chosen;
    QTableView *table = nullptr;
};

// What the mouse events of a widget say is held down after each.
class HeldButtons : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress
            || event->type() == QEvent::MouseButtonRelease)
            afterEach.append(static_cast<QMouseEvent *>(event)->buttons());
        return QObject::eventFilter(watched, event);
    }

    QList<Qt::MouseButtons> afterEach;
};

int position(const QAbstractScrollArea *area)
{
    return area->verticalScrollBar()->value();
}

void stop(const QAbstractScrollArea *area)
{
    QScroller::scroller(area->viewport())->stop(); // it would glide on for seconds
}

void dragRows()
{
    QTest::addColumn<Hand>("hand");
    QTest::addColumn<int>("distance");
    QTest::addColumn<int>("pause");
    QTest::addColumn<int>("hold");
    const auto add = [](Hand hand, int distance, int pause, int hold) {
        QTest::addRow("%s, %d px, %d ms, %s", hand == Finger ? "finger" : "mouse", distance, pause,
                      hold == 0 ? "lifted at once" : "held")
            << hand << distance << pause << hold;
    };
    for (const int hold : {0, 150}) {
        for (const int pause : {8, 16, 60}) {
            add(Finger, 80, pause, hold);
            add(Finger, 200, pause, hold);
        }
        add(Mouse, 80, 8, hold);
        add(Mouse, 200, 16, hold);
    }
}

void handRows()
{
    QTest::addColumn<Hand>("hand");
    QTest::newRow("finger") << Finger;
    QTest::newRow("mouse") << Mouse;
}

QString longText()
{
    QString text;
    for (int line = 1; line <= 60; ++line)
        text += QStringLiteral("Line number %1 of a long text\n").arg(line);
    return text;
}

} // namespace

Q_DECLARE_METATYPE(Hand)

void tst_FingerScroll::aDragOfTheAuctionsOpensNone_data()
{
    dragRows();
}

void tst_FingerScroll::aDragOfTheAuctionsOpensNone()
{
    QFETCH(const Hand, hand);
    QFETCH(const int, distance);
    QFETCH(const int, pause);
    QFETCH(const int, hold);

    Auctions auctions;
    QVERIFY(auctions.open(50));
    Pointer pointer(hand, auctions.table->viewport());
    pointer.drag(QPoint(400, 300), QPoint(0, -distance), pause, hold);
    QTRY_VERIFY(position(auctions.table) > 0);
    QCOMPARE(auctions.openCount(), 0);
    stop(auctions.table);
    pointer.drag(QPoint(400, 60), QPoint(5, distance), pause, hold);
    stop(auctions.table);

    // Whatever the drags had still set going would be there before this.
    pointer.tap(QPoint(400, 160));
    QTRY_COMPARE(auctions.openCount(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(auctions.openCount(), 1);
    QVERIFY2(auctions.stage.service.isDone(), auctions.stage.service.report());
}

void tst_FingerScroll::aDragOfTheCategoriesPicksNone_data()
{
    dragRows();
}

void tst_FingerScroll::aDragOfTheCategoriesPicksNone()
{
    QFETCH(const Hand, hand);
    QFETCH(const int, distance);
    QFETCH(const int, pause);
    QFETCH(const int, hold);

    Categories categories;
    QVERIFY(categories.open());
    Pointer pointer(hand, categories.table->viewport());
    pointer.drag(QPoint(200, 220), QPoint(0, -distance), pause, hold);
    QTRY_VERIFY(position(categories.table) > 0);
    QCOMPARE(categories.marked(), QStringLiteral("None"));
    stop(categories.table);
    const QPoint point(200, 150);
    const int category = categories.table->rowAt(point.y()) + 1;
    pointer.tap(point);
    QTRY_COMPARE(categories.chosen->size(), 1);
    QCOMPARE(categories.chosen->constFirst().constFirst().toInt(), category);
}

void tst_FingerScroll::aFlickGlidesAndATapStopsIt_data()
{
    handRows();
}

void tst_FingerScroll::aFlickGlidesAndATapStopsIt()
{
    QFETCH(const Hand, hand);

    Auctions auctions;
    QVERIFY(auctions.open(200));
    QWidget *viewport = auctions.table->viewport();
    const QScroller *scroller = QScroller::scroller(viewport);
    Pointer pointer(hand, viewport);
    pointer.drag(QPoint(400, 320), QPoint(0, -240), 16);
    QCOMPARE(scroller->state(), QScroller::Scrolling);
    const int lifted = position(auctions.table);
    QTRY_VERIFY(position(auctions.table) > lifted + 90);

    pointer.tap(QPoint(400, 160));
    QCOMPARE(scroller->state(), QScroller::Inactive);
    QCOMPARE(auctions.openCount(), 0);
    const int stopped = position(auctions.table);
    pointer.tap(QPoint(400, 300));
    QTRY_COMPARE(auctions.openCount(), 1);
    QCOMPARE(position(auctions.table), stopped);
}

void tst_FingerScroll::aTouchThatTremblesIsATap()
{
    Auctions auctions;
    QVERIFY(auctions.open(50));
    Pointer finger(Finger, auctions.table->viewport());
    finger.press(QPoint(400, 160));
    for (const QPoint step : {QPoint(3, -2), QPoint(-4, 5), QPoint(2, 2), QPoint(-5, -5)})
        finger.moveBy(step, 8);
    finger.lift();
    QCOMPARE(auctions.openCount(), 1);
    QCOMPARE(position(auctions.table), 0);
}

void tst_FingerScroll::aTapIsAPressAndARelease()
{
    Categories categories;
    QVERIFY(categories.open());
    HeldButtons held;
    categories.table->viewport()->installEventFilter(&held);
    Pointer(Finger, categories.table->viewport()).tap(categories.row(1));
    QCOMPARE(held.afterEach, (QList<Qt::MouseButtons>{Qt::LeftButton, Qt::NoButton}));
}

void tst_FingerScroll::aTouchThatIsCancelledDoesNothing()
{
    Auctions auctions;
    QVERIFY(auctions.open(50));
    QWidget *viewport = auctions.table->viewport();
    Pointer finger(Finger, viewport);
    finger.press(QPoint(400, 160));
    QTouchEvent cancel(QEvent::TouchCancel, touchScreen());
    QCoreApplication::sendEvent(viewport, &cancel);
    finger.lift();
    QCOMPARE(auctions.openCount(), 0);
    finger.tap(QPoint(400, 300));
    QCOMPARE(auctions.openCount(), 1);
}

void tst_FingerScroll::aSecondFingerHasNoSay()
{
    Auctions auctions;
    QVERIFY(auctions.open(50));
    QWidget *viewport = auctions.table->viewport();
    const auto touch = [viewport] { return QTest::touchEvent(viewport, touchScreen()); };
    touch().press(0, QPoint(400, 300), viewport);
    touch().stationary(0).press(1, QPoint(200, 100), viewport);
    touch().stationary(0).release(1, QPoint(200, 100), viewport);
    QCOMPARE(auctions.openCount(), 0);
    touch().move(0, QPoint(400, 200), viewport);
    QTRY_VERIFY(position(auctions.table) > 0);
    touch().release(0, QPoint(400, 200), viewport);
    QCOMPARE(auctions.openCount(), 0);
}

void tst_FingerScroll::aDoubleTapPicksOneCategory_data()
{
    handRows();
}

void tst_FingerScroll::aDoubleTapPicksOneCategory()
{
    QFETCH(const Hand, hand);

    Categories categories;
    QVERIFY(categories.open());
    QWidget *viewport = categories.table->viewport();
    Pointer pointer(hand, viewport);
    const QPoint first = categories.row(0);
    pointer.tap(first);
    QCOMPARE(categories.table->model()->rowCount(), 30); // the parts of the first
    if (hand == Finger) {
        pointer.tap(first);
    } else {
        // What the toolkit makes of a second press soon after the first.
        const QPointF global = viewport->mapToGlobal(QPointF(first));
        QMouseEvent second(QEvent::MouseButtonDblClick, first, global, Qt::LeftButton,
                           Qt::LeftButton, {});
        second.setTimestamp(static_cast<quint64>(QTest::lastMouseTimestamp)
                            - static_cast<quint64>(QTest::mouseDoubleClickInterval) + 1);
        QCoreApplication::sendEvent(viewport, &second);
        QMouseEvent release(QEvent::MouseButtonRelease, first, global, Qt::LeftButton, {}, {});
        QCoreApplication::sendEvent(viewport, &release);
    }
    QCOMPARE(categories.marked(), QStringLiteral("Category 1"));
    pointer.tap(categories.row(1));
    QTRY_COMPARE(categories.chosen->size(), 1);
    QCOMPARE(categories.chosen->constFirst().constFirst().toInt(), 102);
}

void tst_FingerScroll::aListThatFitsIsNotTappedByADragEither()
{
    Auctions auctions;
    QVERIFY(auctions.open(2));
    Pointer finger(Finger, auctions.table->viewport());
    finger.drag(QPoint(400, 80), QPoint(0, -60), 8);
    QCOMPARE(auctions.openCount(), 0);
    finger.tap(QPoint(400, 40));
    QCOMPARE(auctions.openCount(), 1);
}

void tst_FingerScroll::whoeverElseScrollsHasTheLastWord()
{
    Auctions auctions;
    QVERIFY(auctions.open(200));
    const QScroller *scroller = QScroller::scroller(auctions.table->viewport());
    Pointer finger(Finger, auctions.table->viewport());
    finger.drag(QPoint(400, 320), QPoint(0, -240), 16);
    QCOMPARE(scroller->state(), QScroller::Scrolling);
    auctions.table->scrollToTop();
    QCOMPARE(scroller->state(), QScroller::Inactive);
    QCOMPARE(position(auctions.table), 0);
}

QAbstractScrollArea *tst_FingerScroll::terms()
{
    struct Screen
    {
        FrameStage stage;
        CKavlorUser user{&stage.settings, nullptr, false, CKavlorUser::defaultFields()};
        FrameCreateAccount frame{&stage.settings, &user, stage.area()};
    };
    auto screen = std::make_shared<Screen>();
    m_screen = screen;
    screen->stage.service.expect(
        "GetServiceTerms",
        QStringLiteral("<p>%1</p>")
            .arg(longText().replace(QLatin1Char('\n'), QLatin1String("<br>")))
            .toUtf8());
    if (!screen->stage.show(&screen->frame))
        return nullptr;
    screen->frame.findChild<QTabWidget *>()->setCurrentIndex(1);
    const auto *accepted = screen->frame.findChild<QCheckBox *>();
    return waitUntil([accepted] { return accepted->isEnabled(); })
        ? screen->frame.findChild<QPlainTextEdit *>()
        : nullptr;
}

QAbstractScrollArea *tst_FingerScroll::description()
{
    auto window = std::make_shared<RootWindow>();
    m_screen = window;
    if (!window->startAtHome())
        return nullptr;
    window->root()->resize(800, 424);
    if (!window->click("buttonUpload"))
        return nullptr;
    window->shown<CUploadMediaController>()->changeMedia(QStringLiteral("/clip.mp4"), true);
    auto *text = window->find<QPlainTextEdit>("textDescription");
    QTest::mouseClick(text->viewport(), Qt::LeftButton);
    text->insertPlainText(longText());
    text->moveCursor(QTextCursor::Start);
    QCoreApplication::processEvents();
    return text;
}

QAbstractScrollArea *tst_FingerScroll::summary()
{
    auto stage = std::make_shared<FrameStage>();
    m_screen = stage;
    m_record.caption = longText();
    auto *page = new CKavlorAuctionConfirm(&m_record, stage->area());
    return stage->show(page) ? page->findChild<QTextBrowser *>() : nullptr;
}

void tst_FingerScroll::textRows()
{
    QTest::addColumn<Text>("text");
    QTest::newRow("terms") << &tst_FingerScroll::terms;
    QTest::newRow("description") << &tst_FingerScroll::description;
    QTest::newRow("summary") << &tst_FingerScroll::summary;
}

namespace {

QTextCursor cursorOf(const QAbstractScrollArea *area)
{
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(area))
        return plain->textCursor();
    return qobject_cast<const QTextEdit *>(area)->textCursor();
}

// What a drag over @p distance pixels moves the bar by.
int stepsOf(const QAbstractScrollArea *area, int distance)
{
    return qobject_cast<const QPlainTextEdit *>(area) ? distance / area->fontMetrics().lineSpacing()
                                                      : distance;
}

} // namespace

void tst_FingerScroll::aFingerScrollsTexts_data()
{
    textRows();
}

void tst_FingerScroll::aFingerScrollsTexts()
{
    QFETCH(const Text, text);

    QAbstractScrollArea *area = (this->*text)();
    QVERIFY(area);
    QVERIFY(area->verticalScrollBar()->maximum() > 0);
    QCOMPARE(position(area), 0);
    const QTextCursor before = cursorOf(area);
    Pointer finger(Finger, area->viewport());
    const int height = area->viewport()->height();
    const int distance = height * 2 / 3;
    finger.drag(QPoint(60, height - 5), QPoint(0, -distance), 16, 150);
    QVERIFY(qAbs(position(area) - stepsOf(area, distance)) <= stepsOf(area, distance) / 2 + 1);
    QVERIFY(position(area) > 0);
    QVERIFY(!cursorOf(area).hasSelection());
    QCOMPARE(cursorOf(area).position(), before.position());
    const int scrolled = position(area);
    finger.drag(QPoint(60, 5), QPoint(0, distance), 16, 150);
    QVERIFY(position(area) < scrolled);
}

void tst_FingerScroll::aMouseSelectsInTexts_data()
{
    textRows();
}

void tst_FingerScroll::aMouseSelectsInTexts()
{
    QFETCH(const Text, text);

    QAbstractScrollArea *area = (this->*text)();
    QVERIFY(area);
    Pointer mouse(Mouse, area->viewport());
    mouse.drag(QPoint(60, 15), QPoint(120, 60), 8);
    QVERIFY(cursorOf(area).hasSelection());
    QCOMPARE(position(area), 0);

    QWidget *viewport = area->viewport();
    const QPointF middle = QRectF(viewport->rect()).center();
    QWheelEvent wheel(middle, viewport->mapToGlobal(middle), QPoint(), QPoint(0, -240),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(viewport, &wheel);
    QVERIFY(position(area) > 0);

    QScrollBar *bar = area->verticalScrollBar();
    QVERIFY(bar->isVisible());
    const int before = position(area);
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() / 2, bar->height() * 3 / 4));
    QVERIFY(position(area) > before);
}

void tst_FingerScroll::aFingerPlacesTheCursorAndSelectsAWord()
{
    auto *text = qobject_cast<QPlainTextEdit *>(description());
    QVERIFY(text);
    const QPoint inFirstWord(20, 20);
    text->clearFocus();
    QVERIFY(!text->hasFocus());
    Pointer finger(Finger, text->viewport());
    finger.tap(inFirstWord);
    QVERIFY(text->hasFocus());
    QCOMPARE(text->textCursor().position(), text->cursorForPosition(inFirstWord).position());
    QVERIFY(text->textCursor().position() > 0);
    QVERIFY(!text->textCursor().hasSelection());
    finger.tap(inFirstWord);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("Line"));
}

void tst_FingerScroll::aFingerSelectsInATextThatFits()
{
    auto *text = qobject_cast<QPlainTextEdit *>(description());
    QVERIFY(text);
    text->setPlainText(QStringLiteral("One line only"));
    QCOMPARE(text->verticalScrollBar()->maximum(), 0);
    Pointer finger(Finger, text->viewport());
    finger.drag(QPoint(5, 20), QPoint(200, 0), 8);
    QTRY_VERIFY(text->textCursor().hasSelection());
}

KAVLOR_TEST_MAIN(tst_FingerScroll)
#include "tst_fingerscroll.moc"
