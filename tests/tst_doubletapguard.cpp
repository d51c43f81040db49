// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "framewelcomekavlor.h"
#include "kavlorcategorystore.h"
#include "kavlorknownuser.h"
#include "kavlormodifyauction.h"
#include "kavlormyauctionscontroller.h"
#include "kavlorsettings.h"
#include "messagebox.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadmediacontroller.h"

#include <QLineEdit>
#include <QPixmapCache>
#include <QPointingDevice>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QWindow>

#include <memory>

/** Taps in quick succession on the real window, in every way in which they arrive. */
class tst_DoubleTapGuard : public TestCase
{
    Q_OBJECT

private slots:
    void cancelInTheWizardDoesNotSignOut_data();
    void cancelInTheWizardDoesNotSignOut();
    void backGoesBackOnePage_data();
    void backGoesBackOnePage();
    void aTripleTapIsOneTap();
    void aSecondTapAnywhereElseCounts_data();
    void aSecondTapAnywhereElseCounts();
    void slowTapsAllCount();
    void whatComesUpUnderTheFingerIsNotTapped();
    void aBoxUnderTheFingerIsNotAnswered();
    void aSpinBoxTakesEveryTap();
    void neighboursTakeQuickTaps();
};

namespace {

/** How a second tap arrives, a moment after the first. */
enum Way { DoubleClick, TwoPresses, Touch };

constexpr int moment = 120; // ms
constexpr int oneTap = 1;

// When the last tap ended, by the clock of QTest's mouse.
int releasedAt = 0;

// Not all releases of the toolkit let that clock go on after a tap, so that nothing is a double
// click.
void pause()
{
    QTest::lastMouseTimestamp = releasedAt + QTest::mouseDoubleClickInterval;
}

void goOnAtOnce()
{
    QTest::lastMouseTimestamp = releasedAt;
}

QPointingDevice *touchScreen()
{
    static const std::unique_ptr<QPointingDevice> device(QTest::createTouchDevice());
    return device.get();
}

// Taps a place of the window, a second time and more after a moment each.
void tap(QWidget *window, const QPoint &point, Way way, int count = 2)
{
    for (int number = 0; number < count; ++number) {
        if (way == Touch) {
            QTest::touchEvent(window, touchScreen()).press(0, point, window);
            QTest::touchEvent(window, touchScreen()).release(0, point, window);
            continue;
        }
        // A finger never comes down on quite the same spot.
        const QPoint aside = way == TwoPresses ? QPoint(9 * (number % 2), 0) : QPoint();
        if (number > 0)
            goOnAtOnce();
        QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, point + aside, moment);
        releasedAt = QTest::lastMouseTimestamp + moment / 2;
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, point + aside, moment / 2);
    }
    if (way != Touch)
        pause();
}

QPoint placeOf(QWidget *widget)
{
    return widget->mapTo(widget->window(), widget->rect().center());
}

void ways()
{
    QTest::addColumn<Way>("way");
    QTest::newRow("double click") << DoubleClick;
    QTest::newRow("two presses") << TwoPresses;
    QTest::newRow("touch") << Touch;
}

bool openWizard(RootWindow &window)
{
    if (!window.startAtHome() || !QTest::qWaitForWindowExposed(window.root()))
        return false;
    window.root()->resize(800, 424);
    return window.click("buttonUpload") && window.find("photoClicker");
}

bool openDescription(RootWindow &window)
{
    if (!openWizard(window))
        return false;
    window.shown<CUploadMediaController>()->changeMedia(QStringLiteral("/clip.mp4"), true);
    return window.find("doneButton");
}

} // namespace

Q_DECLARE_METATYPE(Way)

void tst_DoubleTapGuard::cancelInTheWizardDoesNotSignOut_data()
{
    ways();
}

void tst_DoubleTapGuard::cancelInTheWizardDoesNotSignOut()
{
    QFETCH(const Way, way);

    RootWindow window;
    QVERIFY(openWizard(window));
    const QPoint place = placeOf(window.find("cancelNavigationButton"));
    tap(window.root(), place, way);
    QVERIFY(window.shown<KavlorKnownUser>());
    QVERIFY(!window.shown<FrameWelcomeKavlor>());
    QCOMPARE(window.text("cancelNavigationButton"), QStringLiteral("Sign out"));

    // A tap that is meant so does sign out.
    QVERIFY(window.click("cancelNavigationButton"));
    QVERIFY(window.shown<FrameWelcomeKavlor>());
}

void tst_DoubleTapGuard::backGoesBackOnePage_data()
{
    ways();
}

void tst_DoubleTapGuard::backGoesBackOnePage()
{
    QFETCH(const Way, way);

    RootWindow window;
    QVERIFY(openDescription(window));
    QVERIFY(window.type("lineCaption", QStringLiteral("A caption")));
    QVERIFY(window.click("doneButton"));
    QVERIFY(window.find("categoriesTable"));
    tap(window.root(), placeOf(window.find("backNavigationButton")), way);
    QVERIFY(window.find("doneButton"));
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<KavlorKnownUser>());
}

void tst_DoubleTapGuard::aTripleTapIsOneTap()
{
    RootWindow window;
    QVERIFY(openWizard(window));
    tap(window.root(), placeOf(window.find("cancelNavigationButton")), TwoPresses, 3);
    QVERIFY(window.shown<KavlorKnownUser>());
}

void tst_DoubleTapGuard::aSecondTapAnywhereElseCounts_data()
{
    QTest::addColumn<int>("way");
    QTest::addColumn<bool>("signsOut");
    QTest::newRow("on the same spot") << 40 << false;
    QTest::newRow("beside it") << 41 << true;
}

void tst_DoubleTapGuard::aSecondTapAnywhereElseCounts()
{
    QFETCH(const int, way); // pixels
    QFETCH(const bool, signsOut);

    RootWindow window;
    QVERIFY(openWizard(window));
    const QPoint place = placeOf(window.find("cancelNavigationButton")) - QPoint(way / 2, 0);
    tap(window.root(), place, TwoPresses, oneTap);
    goOnAtOnce();
    tap(window.root(), place + QPoint(way, 0), TwoPresses, oneTap);
    QCOMPARE(window.shown<FrameWelcomeKavlor>() != nullptr, signsOut);
}

void tst_DoubleTapGuard::slowTapsAllCount()
{
    RootWindow window;
    QVERIFY(openWizard(window));
    const QPoint place = placeOf(window.find("cancelNavigationButton"));
    tap(window.root(), place, DoubleClick, oneTap);
    QVERIFY(window.shown<KavlorKnownUser>());
    tap(window.root(), place, DoubleClick, oneTap);
    QVERIFY(window.shown<FrameWelcomeKavlor>());
}

void tst_DoubleTapGuard::whatComesUpUnderTheFingerIsNotTapped()
{
    for (int id = 1; id <= 10; ++id)
        QPixmapCache::insert(QStringLiteral("auctionid::%1").arg(id), QPixmap(120, 90));
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.root()->resize(800, 424);

    // Where the button of the price frame will be.
    window.service.expect("GetMyAuctions", auctionReply(10).toUtf8());
    QVERIFY(window.click("buttonMyKavlor"));
    QTRY_VERIFY(window.find("myAuctionsTable"));
    auto *list = window.shown<CKavlorMyAuctionsController>();
    auto *table = window.find<QTableView>("myAuctionsTable");
    list->auctionClicked(table->model()->index(0, 1));
    QTRY_VERIFY(window.find("done"));
    const QPoint place = placeOf(window.find("done"));
    list->cancelClicked();
    QTRY_VERIFY(window.find("myAuctionsTable"));
    QTRY_VERIFY(!window.root()->findChild<CKavlorModifyAuction *>());

    tap(window.root(), place, DoubleClick);
    QTRY_VERIFY(window.find("done"));
    QVERIFY(window.find("done")->isEnabled()); // nothing was sent
    window.service.expect("ModifyAuction", "1");
    QVERIFY(window.click("done"));
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_DoubleTapGuard::aBoxUnderTheFingerIsNotAnswered()
{
    RootWindow window;
    QVERIFY(openDescription(window));
    bool stillThere = false;
    window.dialogs.beforeNextAnswer([&] {
        QWidget *box = QApplication::activeModalWidget();
        auto *ok = box->findChild<QPushButton *>();
        // As it would be with the box lying over the button.
        const QPoint onScreen = window.root()->mapToGlobal(placeOf(window.find("doneButton")));
        box->move(box->pos() + onScreen - ok->mapToGlobal(ok->rect().center()));
        tap(box, placeOf(ok), DoubleClick, oneTap);
        stillThere = box->isVisible();
    });
    tap(window.root(), placeOf(window.find("doneButton")), DoubleClick, oneTap);
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(stillThere);
}

void tst_DoubleTapGuard::aSpinBoxTakesEveryTap()
{
    RootWindow window;
    QVERIFY(openDescription(window));
    QVERIFY(window.type("lineCaption", QStringLiteral("A caption")));
    QVERIFY(window.click("doneButton"));
    window.shown<CUploadMediaController>()->categorized(10);
    auto *price = window.find<QSpinBox>("startPrice");
    QVERIFY(price);
    QCOMPARE(price->value(), 1);
    const QPoint more =
        price->mapTo(window.root(), QPoint(price->width() - 20, price->height() / 2));
    for (int tapped = 0; tapped < 3; ++tapped) {
        if (tapped > 0)
            goOnAtOnce();
        tap(window.root(), more, TwoPresses, oneTap);
    }
    QCOMPARE(price->value(), 4);
}

void tst_DoubleTapGuard::neighboursTakeQuickTaps()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.root()->resize(800, 424);
    QVERIFY(window.click("buttonSettings"));
    window.shown<CKavlorSettings>()->notificationsClicked();
    auto *one = window.find<QAbstractButton>("checkBoxOnBid");
    auto *other = window.find<QAbstractButton>("checkBoxOnAuctionEnd");
    QVERIFY(one && other);
    const bool oneBefore = one->isChecked();
    const bool otherBefore = other->isChecked();
    const QPoint low = one->mapTo(window.root(), QPoint(18, one->height() - 8));
    const QPoint high = other->mapTo(window.root(), QPoint(18, 8));
    QVERIFY((high - low).manhattanLength() < 40);
    tap(window.root(), low, TwoPresses, oneTap);
    goOnAtOnce();
    tap(window.root(), high, TwoPresses, oneTap);
    QCOMPARE(one->isChecked(), !oneBefore);
    QCOMPARE(other->isChecked(), !otherBefore);
}

KAVLOR_TEST_MAIN(tst_DoubleTapGuard)
#include "tst_doubletapguard.moc"
