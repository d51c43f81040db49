// SPDX-License-Identifier: MIT

#include "framecreateaccount.h"
#include "framestage.h"
#include "framewelcomekavlor.h"
#include "httptolvex.h"
#include "kavlorknownuser.h"
#include "kavlorsettings.h"
#include "leaveframe.h"
#include "modifyaccountcontroller.h"
#include "navigationcontrolableframe.h"
#include "notificationscontroller.h"
#include "progressivemodel.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QWindow>

class tst_AccountFlow : public TestCase
{
    Q_OBJECT

private slots:
    void termsOfTheStartAreUsed();
    void termsThatTheStartDidNotBringAreFetched();
    void createdAccountLeadsHome();
    void progressStripRunsWhileTheAccountIsCreated();
    void failedCreationStaysInTheForm();
    void cancelLeavesAtAnyMoment_data();
    void cancelLeavesAtAnyMoment();
    void createdMemberIsKnownAtTheNextStart();

    void newAccountHasNothingOfTheMemberBefore();
    void alertsOfTheMemberBeforeAreNotTheNextOnes();
    void requestOfTheMemberBeforeIsHeardNoMore();
    void windowClosedOverAHalfFilledFormLeavesStoredMembersAlone();

    void settingsMenuAndBackHome();
    void homeIsReachedOnceByADoubleClickOnBack();
    void backFromAChildRestoresTheTitle_data();
    void backFromAChildRestoresTheTitle();
    void alertsFromTheMenuReturnToTheMenu();
    void alertsAfterAnUploadReturnHome();
    void refusedAlertsAfterAnUploadReturnToTheMenu();
    void alertsWhoseReplyIsLostReturnToTheMenu();
    void lateReplyToLeftAlertsDoesNothing();
    void chosenAlertsOutliveTheWayHome();
    void alertsAreFetchedWithOtherLetters();
    void settingsWithoutAPasswordShowTheWelcome();

    void changedAccountReturnsToTheMenu();
    void changedPasswordIsUsedFromThenOn();
    void refusedChangeReturnsToTheMenuUnchanged();
    void everyScreenFitsTheSmallestWindow();
    void windowGoesWithAChildOpen();
    void windowGoesWithARequestInFlight();
};

namespace {

bool openCreation(RootWindow &window)
{
    return window.startAtWelcome() && window.click("createAccountButton")
        && window.shown<FrameCreateAccount>();
}

bool acceptTerms(RootWindow &window)
{
    auto *tabs = window.find<QTabWidget>("tabWidget");
    tabs->setCurrentIndex(1);
    clickBox(window.find("checkTerms"));
    const bool accepted = window.find<QCheckBox>("checkTerms")->isChecked();
    tabs->setCurrentIndex(0);
    return accepted;
}

bool fillIn(RootWindow &window, const QString &name = QStringLiteral("m5"))
{
    return window.type("lineUsername", name) && window.type("linePassword", QStringLiteral("new"))
        && window.type("lineEmailaddress", QStringLiteral("m5@example.org"))
        && window.type("lineAgain", QStringLiteral("m5@example.org")) && acceptTerms(window);
}

// What the root asks for once somebody is signed in who was not at the start.
void scriptFirstHome(RootWindow &window)
{
    window.service.expect("GetNotificationOptions", "options\n0,1,0,0\n");
    window.service.expect("GetCategoryList", "");
}

bool openSettings(RootWindow &window)
{
    return window.startAtHome() && window.click("buttonSettings")
        && window.shown<CKavlorSettings>();
}

// Clicks "Sign out", and waits for the screen that follows.
bool signOut(RootWindow &window)
{
    return window.click("cancelNavigationButton")
        && waitUntil([&window] { return window.shown<FrameWelcomeKavlor>() != nullptr; });
}

bool logIn(RootWindow &window, const QString &name)
{
    return window.click("loginButton") && window.type("lineUsername", name)
        && window.type("linePassword", QStringLiteral("other")) && window.click("loginButton");
}

QString stored(const RootWindow &window, const char *key)
{
    return window.settings.value(QLatin1String(key)).toString();
}

} // namespace

void tst_AccountFlow::termsOfTheStartAreUsed()
{
    RootWindow window;
    QVERIFY(openCreation(window));
    QCOMPARE(window.find<QPlainTextEdit>("termsEdit"), nullptr); // on the other tab
    const auto *terms = window.shown<FrameCreateAccount>()->findChild<QPlainTextEdit *>();
    QCOMPARE(terms->toPlainText(), QStringLiteral("terms"));
    const auto *box = window.shown<FrameCreateAccount>()->findChild<QCheckBox *>();
    QVERIFY(box->isEnabled());
    QCOMPARE(window.text("labelWelcomeTo"), QStringLiteral("Create account "));
    QVERIFY(window.find("cancelNavigationButton"));
    QCOMPARE(window.service.operations().count("GetServiceTerms"), 1);
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::termsThatTheStartDidNotBringAreFetched()
{
    RootWindow window;
    window.service.expect("GetServiceTerms", "");
    window.service.expect("GetCountryList", "countries");
    window.start();
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
    window.service.expect("GetServiceTerms", "<p>late terms</p>");
    QVERIFY(window.click("createAccountButton"));
    const auto *creation = window.shown<FrameCreateAccount>();
    QTRY_VERIFY(creation->findChild<QCheckBox *>()->isEnabled());
    QCOMPARE(creation->findChild<QPlainTextEdit *>()->toPlainText(), QStringLiteral("late terms"));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::createdAccountLeadsHome()
{
    RootWindow window;
    QVERIFY(openCreation(window));
    const QPointer<FrameCreateAccount> creation = window.shown<FrameCreateAccount>();
    QVERIFY(fillIn(window, QStringLiteral(u"\u017Eofie")));
    window.service.expect("CreateAccount", "4711");
    scriptFirstHome(window);
    QVERIFY(window.click("submitButton"));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.text("labelWelcome"), QStringLiteral(u"\u017Eofie"));
    QCOMPARE(window.title(), QStringLiteral("welcome to kavlor!"));
    QTRY_VERIFY(!creation);
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    QCOMPARE(window.service.requests().at(2).body,
             QByteArray("Password2=new&Username=%C5%BEofie&Password1=new&FirstName=&LastName="
                        "&EmailAddress=m5@example.org&PaypalAddress=&CountryID=US&Gender=M"
                        "&Language=EN&TwitterUsername=&TwitterPassword=&SUBMIT=Submit"));
    QCOMPARE(window.root()->user()->userId(), 4711);
    QCOMPARE(stored(window, "last/USERID"), QStringLiteral(u"\u017Eofie"));
    QVERIFY(window.dialogs.boxes().isEmpty());
}

void tst_AccountFlow::progressStripRunsWhileTheAccountIsCreated()
{
    testTimeConstants().progressStep = 20;
    RootWindow window;
    QVERIFY(openCreation(window));
    QVERIFY(fillIn(window));
    QVERIFY(!window.find("progressBar"));
    window.service.expectHeld("CreateAccount", "ERROR: taken");
    QVERIFY(window.click("submitButton"));
    auto *strip = window.find<QTableView>("progressBar");
    QVERIFY(strip);
    const QImage first = strip->grab().toImage();
    QTRY_VERIFY(strip->grab().toImage() != first);
    QTRY_COMPARE(strip->grab().toImage(), first); // to and fro
    QTRY_VERIFY(window.service.isHolding());
    window.service.release();
    QTRY_VERIFY(!window.find("progressBar"));
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);

    // Nor does it go on unseen.
    const QSignalSpy steps(qobject_cast<CProgressiveModel *>(strip->model()),
                           &CProgressiveModel::occuredTimerEvent);
    bool passed = false;
    QTimer::singleShot(5 * testTimeConstants().progressStep, this, [&] { passed = true; });
    QTRY_VERIFY(passed);
    QCOMPARE(steps.size(), 0);
}

void tst_AccountFlow::failedCreationStaysInTheForm()
{
    RootWindow window;
    QVERIFY(openCreation(window));
    QVERIFY(fillIn(window));
    window.service.expect("CreateAccount", "ERROR: taken");
    QVERIFY(window.click("submitButton"));
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QTRY_COMPARE(window.find<QTabWidget>("tabWidget")->toolTip(), QStringLiteral("ERROR: taken"));
    QVERIFY(window.shown<FrameCreateAccount>());
    QCOMPARE(window.text("lineUsername"), QStringLiteral("m5"));
    QVERIFY(!window.settings.contains(QStringLiteral("UserData.m5/Username")));

    window.service.expect("CreateAccount", "12");
    scriptFirstHome(window);
    QVERIFY(window.type("lineUsername", QStringLiteral("m6")));
    QVERIFY(window.click("submitButton"));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    QCOMPARE(stored(window, "UserData.m6/UserID"), QStringLiteral("12"));
}

void tst_AccountFlow::cancelLeavesAtAnyMoment_data()
{
    QTest::addColumn<QByteArray>("moment");
    for (const char *moment :
         {"opened", "typing", "error", "complete", "running", "replied", "failed"})
        QTest::newRow(moment) << QByteArray(moment);
}

void tst_AccountFlow::cancelLeavesAtAnyMoment()
{
    QFETCH(QByteArray, moment);
    RootWindow window;
    QVERIFY(openCreation(window));
    const QPointer<FrameCreateAccount> creation = window.shown<FrameCreateAccount>();
    if (moment == "typing")
        QVERIFY(window.type("lineUsername", QStringLiteral("m")));
    if (moment == "error")
        QVERIFY(window.click("submitButton"));
    const bool sent = moment == "running" || moment == "replied";
    if (moment == "complete" || sent || moment == "failed")
        QVERIFY(fillIn(window));
    if (moment == "failed") {
        window.service.expect("CreateAccount", "ERROR");
        QVERIFY(window.click("submitButton"));
        QTRY_COMPARE(window.dialogs.boxes().size(), 1);
        QTRY_VERIFY(window.find("submitButton")->isEnabled());
    }
    if (sent) {
        window.service.expectHeld("CreateAccount", "4711");
        QVERIFY(window.click("submitButton"));
        QTRY_VERIFY(window.service.isHolding());
    }
    const qsizetype boxesBefore = window.dialogs.boxes().size();

    if (moment == "replied")
        QVERIFY(window.clickAsReplyComes("cancelNavigationButton", creation));
    else
        QVERIFY(window.click("cancelNavigationButton"));
    QVERIFY(window.shown<FrameWelcomeKavlor>());
    QVERIFY(!window.shown<FrameCreateAccount>());
    QCOMPARE(window.text("labelWelcomeTo"), QStringLiteral("welcome to "));
    QVERIFY(!window.find("cancelNavigationButton"));
    if (moment == "running")
        QVERIFY(window.service.release());
    QTRY_VERIFY(!creation);

    // Whatever may have come late has come by the time another request is through.
    window.service.expect("ValidateLogin", "0");
    QVERIFY(window.click("loginButton"));
    QVERIFY(window.type("lineUsername", QStringLiteral("m1")));
    QVERIFY(window.type("linePassword", QStringLiteral("x")));
    QVERIFY(window.click("loginButton"));
    QTRY_COMPARE(window.text("labelError"), QStringLiteral("kavlor authentication failed."));
    QCOMPARE(window.root()->user()->userId(), 0);
    QCOMPARE(window.root()->user()->field(CKavlorUser::Username), QString());
    QCOMPARE(window.dialogs.boxes().size(), boxesBefore);
    QCOMPARE(window.settings.allKeys(), QStringList{QStringLiteral("last/USERID")});
    QCOMPARE(stored(window, "last/USERID"), QString());
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::createdMemberIsKnownAtTheNextStart()
{
    RootWindow window;
    QVERIFY(openCreation(window));
    QVERIFY(fillIn(window));
    window.service.expect("CreateAccount", "4711");
    scriptFirstHome(window);
    QVERIFY(window.click("submitButton"));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    window.end();

    window.scriptSignedInStart();
    window.start();
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.text("labelWelcome"), QStringLiteral("m5"));
    QCOMPARE(window.root()->user()->userId(), 4711);
    QCOMPARE(window.root()->user()->field(CKavlorUser::EmailAddress),
             QStringLiteral("m5@example.org"));
}

void tst_AccountFlow::newAccountHasNothingOfTheMemberBefore()
{
    RootWindow window;
    window.settings.setValue(QStringLiteral("UserData.m1/Paypal Address"),
                             QStringLiteral("m1@pay.example.org"));
    window.settings.setValue(QStringLiteral("UserData.m1/Twitter Username"), QStringLiteral("tw"));
    window.settings.setValue(QStringLiteral("UserData.m1/Country ID"), QStringLiteral("FI"));
    window.settings.setValue(QStringLiteral("UserData.m1/Twitter Password"),
                             QStringLiteral("twsecret"));
    window.settings.setValue(QStringLiteral("UserData.m1/Username"), QStringLiteral("m1"));
    window.settings.setValue(QStringLiteral("UserData.m1/Password"), QStringLiteral("secret"));
    window.settings.setValue(QStringLiteral("UserData.m1/UserID"), 7);
    window.settings.setValue(QStringLiteral("last/USERID"), QStringLiteral("m1"));
    window.scriptSignedInStart();
    window.start();
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.root()->user()->userId(), 7);

    QVERIFY(signOut(window));
    QCOMPARE(window.root()->user()->userId(), 0);
    QVERIFY(window.click("createAccountButton"));
    QVERIFY(fillIn(window));
    window.service.expect("CreateAccount", "4711");
    window.service.expect("GetNotificationOptions", "options\n0,1,0,0\n");
    QVERIFY(window.click("submitButton"));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    const QList<ScriptedService::Request> requests = window.service.requests();
    QCOMPARE(requests.at(requests.size() - 2).body,
             QByteArray("Password2=new&Username=m5&Password1=new&FirstName=&LastName="
                        "&EmailAddress=m5@example.org&PaypalAddress=&CountryID=US&Gender=M"
                        "&Language=EN&TwitterUsername=&TwitterPassword=&SUBMIT=Submit"));
    QCOMPARE(stored(window, "UserData.m1/Paypal Address"), QStringLiteral("m1@pay.example.org"));
}

void tst_AccountFlow::alertsOfTheMemberBeforeAreNotTheNextOnes()
{
    RootWindow window;
    QVERIFY(window.startAtHome()); // with alerts for bids and questions
    QVERIFY(signOut(window));
    window.service.expect("ValidateLogin", "1");
    window.service.expect("GetNotificationOptions", "ERROR");
    QVERIFY(logIn(window, QStringLiteral("m2")));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QTRY_VERIFY2(window.service.isDone(), window.service.report());

    QVERIFY(window.click("buttonSettings"));
    QVERIFY(window.click("pushButtonNotifications"));
    for (const char *box :
         {"checkBoxOnBid", "checkBoxOnAuctionEnd", "checkBoxOnView", "checkBoxBuyerQuestion"}) {
        QVERIFY2(!window.find<QCheckBox>(box)->isChecked(), box);
    }
    window.service.expect("SetNotificationOptions", "1");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    QCOMPARE(window.service.requests().constLast().body,
             QByteArray("Username=m2&Password=other&NotifyOnBid=0&NotifyOnAuctionEnd=0"
                        "&NotifyOnView=0&NotifyOnBuyerQuestion=0&SUBMIT=Submit"));
}

void tst_AccountFlow::requestOfTheMemberBeforeIsHeardNoMore()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    window.service.expect("ValidateLogin", "1");
    window.service.expectHeld("GetNotificationOptions", "options\n1,1,1,1\n");
    QVERIFY(logIn(window, QStringLiteral("m1")));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QTRY_VERIFY(window.service.isHolding());
    QVERIFY(signOut(window));
    window.service.release();

    // No request for categories follows in nobody's name: the next one is the next member's.
    window.service.expect("ValidateLogin", "1");
    scriptFirstHome(window);
    QVERIFY(logIn(window, QStringLiteral("m2")));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    QCOMPARE(window.service.requests().constLast().body,
             QByteArray("Username=m2&Password=other&SUBMIT=Submit"));
}

void tst_AccountFlow::windowClosedOverAHalfFilledFormLeavesStoredMembersAlone()
{
    RootWindow window;
    window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
    window.settings.setValue(QStringLiteral("last/USERID"), QString());
    QVERIFY(openCreation(window));
    QVERIFY(window.type("lineUsername", QStringLiteral("m1")));
    QVERIFY(window.type("linePassword", QStringLiteral("zz")));
    QVERIFY(window.root()->windowHandle()->close());
    QTRY_VERIFY(!window.root()->isVisible());
    window.end();
    QCOMPARE(stored(window, "UserData.m1/Password"), QStringLiteral("secret"));
    QCOMPARE(stored(window, "UserData.m1/Email Address"), QStringLiteral("m1@example.org"));
    QCOMPARE(stored(window, "last/USERID"), QString());
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::settingsMenuAndBackHome()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    const QPointer<CKavlorSettings> menu = window.shown<CKavlorSettings>();
    QCOMPARE(window.title(), QStringLiteral("Settings"));
    QVERIFY(window.find("labelNavigationIcon"));
    QCOMPARE(window.text("backNavigationButton"), QStringLiteral("Back"));
    QVERIFY(!window.find("cancelNavigationButton"));

    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.title(), QStringLiteral("welcome to kavlor!"));
    QTRY_VERIFY(!menu);
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::homeIsReachedOnceByADoubleClickOnBack()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    const QPointer<QWidget> back = window.find("backNavigationButton");
    QTest::mouseDClick(back, Qt::LeftButton);
    if (back)
        QTest::mouseClick(back, Qt::LeftButton);
    QTRY_VERIFY(!back);
    QCOMPARE(window.root()->findChildren<KavlorKnownUser *>().size(), 1);
}

void tst_AccountFlow::backFromAChildRestoresTheTitle_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("icon");
    QTest::newRow("account") << QByteArray("pushButtonMyAccount") << "My Account"
                             << ":/MyAccountIcon.png";
    QTest::newRow("alerts") << QByteArray("pushButtonNotifications") << "Notification Options"
                            << ":/NotificationIcon.png";
}

void tst_AccountFlow::backFromAChildRestoresTheTitle()
{
    QFETCH(QByteArray, button);
    QFETCH(QString, title);
    QFETCH(QString, icon);
    RootWindow window;
    QVERIFY(openSettings(window));
    const auto shownIcon = [&window] {
        return window.find<QLabel>("labelNavigationIcon")->pixmap(Qt::ReturnByValue).toImage();
    };
    const QImage menuIcon = shownIcon();
    QVERIFY(window.click(button));
    QCOMPARE(window.title(), title);
    const int height = qRound(64 * window.root()->devicePixelRatioF());
    QCOMPARE(shownIcon(), QPixmap(icon).scaledToHeight(height, Qt::SmoothTransformation).toImage());
    QVERIFY(!window.shown<CKavlorSettings>());

    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<CKavlorSettings>());
    QCOMPARE(window.title(), QStringLiteral("Settings"));
    QCOMPARE(shownIcon(), menuIcon);
    QVERIFY(!window.shown<CModifyAccountController>());
    QVERIFY(!window.shown<CNotificationsController>());
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<KavlorKnownUser>());
}

void tst_AccountFlow::alertsFromTheMenuReturnToTheMenu()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonNotifications"));
    QVERIFY(window.find<QCheckBox>("checkBoxOnBid")->isChecked());
    QVERIFY(!window.find<QCheckBox>("checkBoxOnView")->isChecked());
    clickBox(window.find("checkBoxOnView"));
    window.service.expect("SetNotificationOptions", "17");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QCOMPARE(window.title(), QStringLiteral("Settings"));
    QCOMPARE(window.service.requests().constLast().body,
             QByteArray("Username=m1&Password=secret&NotifyOnBid=1&NotifyOnAuctionEnd=0"
                        "&NotifyOnView=1&NotifyOnBuyerQuestion=1&SUBMIT=Submit"));
    QVERIFY2(window.service.isDone(), window.service.report());

    QVERIFY(window.click("pushButtonNotifications"));
    QVERIFY(window.find<QCheckBox>("checkBoxOnView")->isChecked());
}

void tst_AccountFlow::alertsAfterAnUploadReturnHome()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    leaveFrame(window.shown<KavlorKnownUser>());
    emit window.root()->UploadComplete();
    QVERIFY(window.shown<CNotificationsController>());
    QVERIFY(!window.shown<CKavlorSettings>());
    QCOMPARE(window.title(), QStringLiteral("Notification Options"));
    QCOMPARE(window.text("backNavigationButton"), QStringLiteral("Home"));
    QVERIFY(!window.find("cancelNavigationButton"));

    const QPointer<CKavlorSettings> menu = window.root()->findChild<CKavlorSettings *>();
    window.service.expect("SetNotificationOptions", "17");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.title(), QStringLiteral("welcome to kavlor!"));
    QTRY_VERIFY(!menu);
    QVERIFY(!window.root()->findChild<CNotificationsController *>());
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::refusedAlertsAfterAnUploadReturnToTheMenu()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    leaveFrame(window.shown<KavlorKnownUser>());
    window.root()->showNotifications();
    window.service.expect("SetNotificationOptions", "ERROR");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QCOMPARE(window.title(), QStringLiteral("Settings"));
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<KavlorKnownUser>());
}

void tst_AccountFlow::alertsWhoseReplyIsLostReturnToTheMenu()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonNotifications"));
    clickBox(window.find("checkBoxOnBid"));
    ScriptedService::Step step;
    step.operation = "SetNotificationOptions";
    step.then = ScriptedService::Reset;
    window.service.expect(step);
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QVERIFY(window.click("pushButtonNotifications"));
    QVERIFY(window.find<QCheckBox>("checkBoxOnBid")->isChecked());
    QVERIFY(window.dialogs.boxes().isEmpty());
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::lateReplyToLeftAlertsDoesNothing()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonNotifications"));
    clickBox(window.find("checkBoxOnBid"));
    window.service.expectHeld("SetNotificationOptions", "17");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.service.isHolding());
    QVERIFY(window.click("backNavigationButton"));
    window.service.release();

    window.service.expect("ModifyAccount", "0");
    QVERIFY(window.click("pushButtonMyAccount"));
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QVERIFY(window.click("pushButtonNotifications"));
    QVERIFY(window.find<QCheckBox>("checkBoxOnBid")->isChecked());
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::chosenAlertsOutliveTheWayHome()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonNotifications"));
    clickBox(window.find("checkBoxOnBid"));
    window.service.expect("SetNotificationOptions", "17");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.click("buttonSettings"));
    QVERIFY(window.click("pushButtonNotifications"));
    QVERIFY(!window.find<QCheckBox>("checkBoxOnBid")->isChecked());
    QVERIFY(window.find<QCheckBox>("checkBoxBuyerQuestion")->isChecked());
}

void tst_AccountFlow::alertsAreFetchedWithOtherLetters()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QVERIFY(window.click("loginButton"));
    QVERIFY(window.type("lineUsername", QStringLiteral(u"\u017Eofie \u010D")));
    QVERIFY(window.type("linePassword", QStringLiteral(u"p\u00E4ss&")));
    window.service.expect("ValidateLogin", "1");
    scriptFirstHome(window);
    QVERIFY(window.click("loginButton"));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    const QList<ScriptedService::Request> requests = window.service.requests();
    QCOMPARE(requests.at(requests.size() - 2).operation(), QByteArray("GetNotificationOptions"));
    QCOMPARE(requests.at(requests.size() - 2).body,
             QByteArray("Username=%C5%BEofie%20%C4%8D&Password=p%C3%A4ss%26&SUBMIT=Submit"));
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QVERIFY(window.click("buttonSettings"));
    QVERIFY(window.click("pushButtonNotifications"));
    QVERIFY(!window.find<QCheckBox>("checkBoxOnBid")->isChecked());
    QVERIFY(window.find<QCheckBox>("checkBoxOnAuctionEnd")->isChecked());
}

void tst_AccountFlow::settingsWithoutAPasswordShowTheWelcome()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    leaveFrame(window.shown<KavlorKnownUser>());
    window.root()->ShowSettingsOptions(QStringLiteral("m1"), QString(), 1);
    QVERIFY(window.shown<FrameWelcomeKavlor>());
    QVERIFY(!window.root()->findChild<CKavlorSettings *>());
    QCOMPARE(stored(window, "last/USERID"), QString());
}

void tst_AccountFlow::changedAccountReturnsToTheMenu()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonMyAccount"));
    QCOMPARE(window.title(), QStringLiteral("My Account"));
    clickBox(window.find("checkBoxEmail"));
    QVERIFY(window.type("lineEmail", QStringLiteral("new@example.org")));
    window.service.expect("ModifyAccount", "77");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QCOMPARE(window.title(), QStringLiteral("Settings"));
    QCOMPARE(stored(window, "UserData.m1/Email Address"), QStringLiteral("new@example.org"));
    QCOMPARE(stored(window, "UserData.m1/UserID"), QStringLiteral("77"));

    QVERIFY(window.click("pushButtonNotifications"));
    QCOMPARE(window.text("lineNotification"), QStringLiteral("new@example.org"));
}

void tst_AccountFlow::changedPasswordIsUsedFromThenOn()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonMyAccount"));
    clickBox(window.find("checkBoxPassword"));
    QVERIFY(window.type("linePassword", QStringLiteral("better")));
    QVERIFY(window.type("lineConfirm", QStringLiteral("better")));
    window.service.expect("ModifyAccount", "9");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<KavlorKnownUser>());

    QVERIFY(window.click("buttonSettings"));
    QVERIFY(window.click("pushButtonNotifications"));
    window.service.expect("SetNotificationOptions", "1");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QVERIFY(window.service.requests().constLast().body.startsWith(
        "Username=m1&Password=better&NotifyOnBid="));
    QCOMPARE(stored(window, "UserData.m1/Password"), QStringLiteral("better"));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_AccountFlow::refusedChangeReturnsToTheMenuUnchanged()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonMyAccount"));
    clickBox(window.find("checkBoxEmail"));
    QVERIFY(window.type("lineEmail", QStringLiteral("new@example.org")));
    window.service.expect("ModifyAccount", "ERROR: no");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.shown<CKavlorSettings>());
    QCOMPARE(window.title(), QStringLiteral("Settings"));
    QCOMPARE(stored(window, "UserData.m1/Email Address"), QStringLiteral("m1@example.org"));
    QVERIFY(window.click("pushButtonMyAccount"));
    QCOMPARE(window.text("lineEmail"), QStringLiteral("m1@example.org"));
    QVERIFY(window.dialogs.boxes().isEmpty());
}

void tst_AccountFlow::everyScreenFitsTheSmallestWindow()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    for (const QSize &size : {QSize(800, 424), QSize(1920, 1080)}) {
        window.root()->resize(size);
        for (const char *button : {"pushButtonMyAccount", "pushButtonNotifications"}) {
            QCOMPARE(window.root()->size(), size);
            QCOMPARE(cutOff(window.root()), QByteArrayList());
            QVERIFY(window.click(button));
            QCoreApplication::processEvents();
            QCOMPARE(cutOff(window.root()), QByteArrayList());
            QVERIFY(window.click("backNavigationButton"));
            QCoreApplication::processEvents();
        }
    }
}

void tst_AccountFlow::windowGoesWithAChildOpen()
{
    for (const char *button : {"pushButtonMyAccount", "pushButtonNotifications"}) {
        RootWindow window;
        QVERIFY(openSettings(window));
        QVERIFY(window.click(button));
        window.end();
        QCOMPARE(stored(window, "last/USERID"), QStringLiteral("m1"));
    }
}

void tst_AccountFlow::windowGoesWithARequestInFlight()
{
    RootWindow window;
    QVERIFY(openSettings(window));
    QVERIFY(window.click("pushButtonMyAccount"));
    window.service.expectHeld("ModifyAccount", "17");
    QVERIFY(window.click("pushButtonDone"));
    QTRY_VERIFY(window.service.isHolding());
    window.end();
    QCOMPARE(stored(window, "UserData.m1/UserID"), QStringLiteral("0"));
}

KAVLOR_TEST_MAIN(tst_AccountFlow)
#include "tst_accountflow.moc"
