// SPDX-License-Identifier: MIT

#include "framestage.h"
#include "httptolvex.h"
#include "kavlornotificationoptions.h"
#include "kavlorsettings.h"
#include "modifyaccountcontroller.h"
#include "notificationscontroller.h"
#include "smallpixmapcache.h"
#include "testcase.h"
#include "testmain.h"

#include <QPushButton>
#include <QSignalSpy>

namespace {

// The menu with live records of its own, without a root window above it.
class Menu
{
public:
    Menu()
        : user(&stage.settings, nullptr, false, memberFields())
        , options(nullptr, {true, false, false, true}, true)
        , frame(new CKavlorSettings(&user, &options, stage.area()))
    {
        isShown = stage.show(frame);
    }

    QPushButton *button(const char *name) const
    {
        return frame->findChild<QPushButton *>(QLatin1String(name));
    }
    void click(const char *name)
    {
        QTest::mouseClick(button(name), Qt::LeftButton);
    }
    template <typename Frame>
    QList<Frame *> children()
    {
        return stage.area()->findChildren<Frame *>(QString(), Qt::FindDirectChildrenOnly);
    }
    template <typename Frame>
    Frame *child()
    {
        return children<Frame>().value(0);
    }
    void clickChild(QWidget *child, const char *name)
    {
        clickBox(child->findChild<QWidget *>(QLatin1String(name)));
    }

    FrameStage stage;
    CKavlorUser user;
    CKavlorNotificationOptions options;
    QPointer<CKavlorSettings> frame;
    bool isShown = false;
};

} // namespace

class tst_KavlorSettings : public TestCase
{
    Q_OBJECT

private slots:
    void menuIsAsLaidDown();
    void iconsAreReadOnce();
    void fitsTheSmallestWindowAndGrows();
    void buttonsWorkByKeys();
    void myAccountTakesThePlaceOfTheMenu();
    void notificationsTakeThePlaceOfTheMenu();
    void oneChildAtATime();
    void backFromTheAccount();
    void backFromTheAlertsLeavesTheLiveOptions();
    void liveOptionsChangeOnlyWithTheReply_data();
    void liveOptionsChangeOnlyWithTheReply();
    void alertsStartFromTheLiveOptionsAgain();
    void accountReturnsToTheMenu_data();
    void accountReturnsToTheMenu();
    void lateReplyToALeftChildDoesNothing_data();
    void lateReplyToALeftChildDoesNothing();
    void childGoesWithTheMenu();
    void menuSurvivesItsChild();
    void itsOwnRequestIsNotLookedAt();
};

void tst_KavlorSettings::menuIsAsLaidDown()
{
    Menu menu;
    QVERIFY(menu.isShown);
    QCOMPARE(menu.button("pushButtonMyAccount")->text(), QStringLiteral("My Account"));
    QVERIFY(!menu.button("pushButtonMyAccount")->icon().isNull());
    QCOMPARE(menu.button("pushButtonNotifications")->text(), QStringLiteral("Notificatons"));
    QVERIFY(!menu.button("pushButtonNotifications")->icon().isNull());
    QCOMPARE(nameless(menu.frame), QByteArrayList());
    QVERIFY(menu.frame->findChild<CHttpTolvex *>());
    QVERIFY2(menu.stage.service.isDone(), menu.stage.service.report());
}

void tst_KavlorSettings::iconsAreReadOnce()
{
    const SmallPixmapCache cache(400);
    constexpr int visits = 60;
    for (int visit = 0; visit < visits; ++visit)
        QVERIFY(!Menu().frame->grab().isNull());
    QVERIFY(cache.isLeftToOthers());
}

void tst_KavlorSettings::fitsTheSmallestWindowAndGrows()
{
    Menu menu;
    QVERIFY(menu.isShown);
    for (const QSize &size : {QSize(800, 344), QSize(1920, 1000)}) {
        menu.stage.resize(size);
        QCOMPARE(cutOff(menu.frame), QByteArrayList());
        QVERIFY(menu.button("pushButtonMyAccount")->height() >= 120);
        QVERIFY(menu.button("pushButtonMyAccount")->width() >= 300);
    }
}

void tst_KavlorSettings::buttonsWorkByKeys()
{
    Menu menu;
    QVERIFY(menu.isShown);
    QCOMPARE(tabOrder(menu.button("pushButtonMyAccount")),
             QByteArrayList({"pushButtonMyAccount", "pushButtonNotifications"}));
    QTest::keyClick(menu.button("pushButtonNotifications"), Qt::Key_Return);
    QVERIFY(menu.child<CNotificationsController>());
}

void tst_KavlorSettings::myAccountTakesThePlaceOfTheMenu()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonMyAccount");
    QVERIFY(menu.child<CModifyAccountController>()->isVisible());
    QVERIFY(!menu.frame->isVisible());
}

void tst_KavlorSettings::notificationsTakeThePlaceOfTheMenu()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonNotifications");
    QVERIFY(menu.child<CNotificationsController>()->isVisible());
    QVERIFY(!menu.frame->isVisible());
}

void tst_KavlorSettings::oneChildAtATime()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.frame->myAccountClicked();
    menu.frame->myAccountClicked();
    menu.frame->notificationsClicked();
    QCOMPARE(menu.children<CModifyAccountController>().size(), 1);
    QCOMPARE(menu.children<CNotificationsController>().size(), 0);
}

void tst_KavlorSettings::backFromTheAccount()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonMyAccount");
    const QPointer<CModifyAccountController> child = menu.child<CModifyAccountController>();
    menu.frame->backClicked();
    QVERIFY(menu.frame->isVisible());
    QVERIFY(!child->isVisible());
    QTRY_VERIFY(!child);
    menu.click("pushButtonMyAccount");
    QVERIFY(menu.child<CModifyAccountController>()->isVisible());
}

void tst_KavlorSettings::backFromTheAlertsLeavesTheLiveOptions()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonNotifications");
    const QPointer<CNotificationsController> child = menu.child<CNotificationsController>();
    menu.clickChild(child, "checkBoxOnBid");
    menu.clickChild(child, "checkBoxBuyerQuestion");
    QCOMPARE(menu.options.toText(), QStringLiteral("1,0,0,1"));
    menu.frame->backClicked();
    QVERIFY(menu.frame->isVisible());
    QTRY_VERIFY(!child);
    QCOMPARE(menu.options.toText(), QStringLiteral("1,0,0,1"));
}

void tst_KavlorSettings::liveOptionsChangeOnlyWithTheReply_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("options");
    QTest::newRow("accepted") << QByteArray("17") << "0,0,0,1";
    QTest::newRow("zero") << QByteArray("0") << "1,0,0,1";
    QTest::newRow("refused") << QByteArray("ERROR") << "1,0,0,1";
}

void tst_KavlorSettings::liveOptionsChangeOnlyWithTheReply()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, options);
    Menu menu;
    QVERIFY(menu.isShown);
    menu.stage.service.expectHeld("SetNotificationOptions", reply);
    menu.click("pushButtonNotifications");
    const QPointer<CNotificationsController> child = menu.child<CNotificationsController>();
    menu.clickChild(child, "checkBoxOnBid");
    menu.clickChild(child, "pushButtonDone");
    QTRY_VERIFY(menu.stage.service.isHolding());
    QCOMPARE(menu.options.toText(), QStringLiteral("1,0,0,1"));
    menu.stage.service.release();
    QTRY_VERIFY(!child);
    QCOMPARE(menu.options.toText(), options);
    QVERIFY(menu.frame->isVisible());
    QVERIFY(menu.stage.dialogs.boxes().isEmpty());
}

void tst_KavlorSettings::alertsStartFromTheLiveOptionsAgain()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonNotifications");
    menu.clickChild(menu.child<CNotificationsController>(), "checkBoxOnBid");
    menu.frame->backClicked();
    QTRY_VERIFY(!menu.child<CNotificationsController>());
    menu.click("pushButtonNotifications");
    const auto *box = menu.child<CNotificationsController>()->findChild<QAbstractButton *>(
        QStringLiteral("checkBoxOnBid"));
    QVERIFY(box->isChecked());
}

void tst_KavlorSettings::accountReturnsToTheMenu_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("number");
    QTest::newRow("accepted") << QByteArray("17") << 17;
    QTest::newRow("refused") << QByteArray("0") << 0;
}

void tst_KavlorSettings::accountReturnsToTheMenu()
{
    QFETCH(QByteArray, reply);
    QFETCH(int, number);
    Menu menu;
    QVERIFY(menu.isShown);
    menu.stage.service.expect("ModifyAccount", reply);
    menu.click("pushButtonMyAccount");
    const QPointer<CModifyAccountController> child = menu.child<CModifyAccountController>();
    menu.clickChild(child, "pushButtonDone");
    QTRY_VERIFY(!child);
    QVERIFY(menu.frame->isVisible());
    QCOMPARE(menu.user.userId(), number);
}

void tst_KavlorSettings::lateReplyToALeftChildDoesNothing_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("operation");
    QTest::newRow("account") << QByteArray("pushButtonMyAccount") << QByteArray("ModifyAccount");
    QTest::newRow("alerts") << QByteArray("pushButtonNotifications")
                            << QByteArray("SetNotificationOptions");
}

void tst_KavlorSettings::lateReplyToALeftChildDoesNothing()
{
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, operation);
    Menu menu;
    QVERIFY(menu.isShown);
    menu.stage.service.expectHeld(operation, "17");
    menu.click(button);
    const QPointer<QFrame> child = menu.children<QFrame>().constLast();
    QVERIFY(child && child != menu.frame);
    menu.clickChild(child, "pushButtonDone");
    QTRY_VERIFY(menu.stage.service.isHolding());
    menu.frame->backClicked();
    menu.stage.service.release();
    QTRY_VERIFY(!child);
    QVERIFY(menu.frame->isVisible());
    QCOMPARE(menu.user.userId(), 0);
    QCOMPARE(menu.stage.settings.allKeys(), QStringList());
}

void tst_KavlorSettings::childGoesWithTheMenu()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonMyAccount");
    const QPointer<CModifyAccountController> child = menu.child<CModifyAccountController>();
    delete menu.frame;
    QVERIFY(!child->isVisible());
    QTRY_VERIFY(!child);
}

void tst_KavlorSettings::menuSurvivesItsChild()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.click("pushButtonMyAccount");
    delete menu.child<CModifyAccountController>();
    menu.frame->backClicked();
    QVERIFY(menu.frame->isVisible());
}

void tst_KavlorSettings::itsOwnRequestIsNotLookedAt()
{
    Menu menu;
    QVERIFY(menu.isShown);
    menu.frame->dataRequestDone(QStringLiteral("17"), QStringLiteral("error"));
    QVERIFY(menu.frame->isVisible());
    QCOMPARE(menu.children<QFrame>().size(), 1);
    QVERIFY(menu.stage.dialogs.boxes().isEmpty());
}

KAVLOR_TEST_MAIN(tst_KavlorSettings)
#include "tst_kavlorsettings.moc"
