// SPDX-License-Identifier: MIT

#include "framewelcomekavlor.h"
#include "httptolvex.h"
#include "kavlorcategorystore.h"
#include "kavlorknownuser.h"
#include "kavlorlogin.h"
#include "leaveframe.h"
#include "navigationcontrolableframe.h"
#include "navigationframe.h"
#include "pixels.h"
#include "progressivemodel.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QAbstractEventDispatcher>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

/** A frame that counts how often it is asked to leave. */
class LowerCounter : public QFrame
{
    Q_OBJECT

public:
    int count() const
    {
        return m_count;
    }

public slots:
    void lower()
    {
        ++m_count;
    }

private:
    int m_count = 0;
};

class tst_RootViewController : public TestCase
{
    Q_OBJECT

private slots:
    void notSignedInBar();
    void barsAfterSignIn_data();
    void barsAfterSignIn();
    void fontsOfTheBarBeforeSignIn();
    void fontsOfTheBarAfterSignIn();
    void theBarAfterSignInShowsItsHeader();
    void aCancelButtonThatIsNotShownIsNotConnected();
    void theStripStepsEvery350MillisecondsUnlessToldOtherwise();
    void aUserNameWithoutPasswordCountsAsNobody();
    void settingsWithAnEmptyPasswordFallBackToWelcome();
    void progressOperationsNeedTheBarBeforeSignIn();
    void barTextsReachBothKindsOfBar();
    void withoutABarTheBarOperationsAreRefused();
    void aKnownLoginIsSavedAgainUnlessValidated_data();
    void aKnownLoginIsSavedAgainUnlessValidated();
    void validatedLoginWithOtherTextsIsSaved();
    void repliesOfTheRootsOwnRequestsThatAreNotUsableAreIgnored_data();
    void repliesOfTheRootsOwnRequestsThatAreNotUsableAreIgnored();
    void repliesAfterTheOptionsCountAsOptionsWhileCategoriesAreThere();
    void categoriesAreLoadedOnce();
    void signOutForgetsTheCategoriesText();
    void welcomeSignalShowsTheScreen();
    void framesFillTheirAreas();
    void dialogsKeepTheirOwnSize();
    void destructionRemembersTheMember();
    void destructionRemembersThatNobodyIsSignedIn();
    void destructionWithARequestInFlight();
    void nothingOfTheLastScreenStays();
    void aLeftFrameHearsNoLateReply();

private:
    static QList<bool> alertsShown(RootWindow *window);
};

// What the alert options say, opened from the home frame; empty when they cannot be opened.
QList<bool> tst_RootViewController::alertsShown(RootWindow *window)
{
    if (!window->click("buttonSettings") || !window->click("pushButtonNotifications"))
        return {};
    QList<bool> shown;
    for (const char *name :
         {"checkBoxOnBid", "checkBoxOnAuctionEnd", "checkBoxOnView", "checkBoxBuyerQuestion"})
        shown.append(window->find<QCheckBox>(name)->isChecked());
    return shown;
}

void tst_RootViewController::notSignedInBar()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QVERIFY(window.shown<NavigationFrame>());
    QCOMPARE(window.text("labelWelcomeTo"), QStringLiteral("welcome to "));
    QVERIFY(window.find("labelSmallestLogo"));
    QVERIFY(!window.find("cancelNavigationButton"));
    QVERIFY(!window.find("progressBar"));
    QVERIFY(!window.find("backNavigationButton"));
}

void tst_RootViewController::barsAfterSignIn_data()
{
    QTest::addColumn<QByteArray>("button"); // of the home frame; empty = none is clicked
    QTest::addColumn<bool>("uploaded");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("back"); // empty = hidden, as for the next
    QTest::addColumn<QString>("cancel");

    QTest::newRow("home") << QByteArray() << false << "welcome to kavlor!"
                          << ":/KavlorMicroLogo.png"
                          << ""
                          << "Sign out";
    QTest::newRow("my auctions") << QByteArray("buttonMyKavlor") << false << "My kavlor"
                                 << ":/myKavlor.png"
                                 << "Back"
                                 << "";
    QTest::newRow("upload") << QByteArray("buttonUpload") << false << "Upload"
                            << ":/UploadIcon.png"
                            << "Back"
                            << "Cancel";
    QTest::newRow("settings") << QByteArray("buttonSettings") << false << "Settings"
                              << ":/MySettingsIcon.png"
                              << "Back"
                              << "";
    QTest::newRow("alert options after an upload") << QByteArray() << true << "Notification Options"
                                                   << ":/NotificationIcon.png"
                                                   << "Home"
                                                   << "";
}

void tst_RootViewController::barsAfterSignIn()
{
    QFETCH(QByteArray, button);
    QFETCH(bool, uploaded);
    QFETCH(QString, title);
    QFETCH(QString, icon);
    QFETCH(QString, back);
    QFETCH(QString, cancel);

    RootWindow window;
    QVERIFY(window.startAtHome());
    window.service.expect("GetMyAuctions", "header\n");
    if (uploaded)
        emit window.root()->UploadComplete();
    if (!button.isEmpty())
        QVERIFY(window.click(button.constData()));
    QTRY_COMPARE(window.title(), title);
    QCOMPARE(window.text("backNavigationButton"), back);
    QCOMPARE(window.text("cancelNavigationButton"), cancel);
    const auto *label = window.find<QLabel>("labelNavigationIcon");
    QVERIFY(label);
    const int height = qRound(64 * label->devicePixelRatioF());
    QCOMPARE(label->pixmap().toImage(),
             QPixmap(icon).scaledToHeight(height, Qt::SmoothTransformation).toImage());
}

void tst_RootViewController::fontsOfTheBarBeforeSignIn()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QVERIFY(window.click("loginButton"));
    const QFont text = window.find("labelWelcomeTo")->font();
    QCOMPARE(text.family(), QStringLiteral("LargeSystemFont"));
    QCOMPARE(text.pointSize(), 24);
    QCOMPARE(text.style(), QFont::StyleOblique);
    QVERIFY(showsColour(window.picture("labelWelcomeTo"), QColor(0, 0, 127)));
    QCOMPARE(window.find("cancelNavigationButton")->font().family(), QStringLiteral("Sans Serif"));
}

void tst_RootViewController::fontsOfTheBarAfterSignIn()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QVERIFY(window.click("buttonUpload"));
    const QFont title = window.find("labelNavigationTitle")->font();
    QCOMPARE(title.pointSize(), 18);
    QVERIFY(title.bold());
    QVERIFY(showsColour(window.picture("labelNavigationTitle"), Qt::white));
    for (const char *name : {"backNavigationButton", "cancelNavigationButton"})
        QCOMPARE(window.find(name)->font().family(), QStringLiteral("Sans Serif"));
}

void tst_RootViewController::theBarAfterSignInShowsItsHeader()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    for (const int width : {800, 1280}) {
        window.root()->resize(width, 480);
        QTRY_COMPARE(window.root()->width(), width);
        const QImage bar = window.picture("navigationBar");
        const QImage header =
            QImage(QStringLiteral(":/Header.png"))
                .scaled(bar.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        // Beside all that stands on the bar, from top to bottom.
        for (int y = 0; y < bar.height(); ++y) {
            for (const int x : {4, bar.width() - 5})
                QVERIFY2(isNear(bar.pixelColor(x, y), header.pixelColor(x, y)),
                         qPrintable(QStringLiteral("%1,%2: %3")
                                        .arg(x)
                                        .arg(y)
                                        .arg(bar.pixelColor(x, y).name())));
        }
    }
}

void tst_RootViewController::aCancelButtonThatIsNotShownIsNotConnected()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    LowerCounter frame;
    const auto showCancel = [&](bool shown, QFrame *whom) {
        return window.root()->setNavigationTextAndIcon(QStringLiteral("Text "), QString(), shown,
                                                       whom);
    };
    QVERIFY(showCancel(false, &frame));
    QVERIFY(showCancel(true, nullptr));
    QVERIFY(window.click("cancelNavigationButton"));
    QCOMPARE(frame.count(), 0);
    QVERIFY(showCancel(true, &frame));
    QVERIFY(window.click("cancelNavigationButton"));
    QCOMPARE(frame.count(), 1);
}

void tst_RootViewController::theStripStepsEvery350MillisecondsUnlessToldOtherwise()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    auto *strip = window.shown<NavigationFrame>()->findChild<CProgressiveModel *>();
    const auto periods = [strip] {
        QList<int> found;
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(strip);
        for (const QAbstractEventDispatcher::TimerInfo &timer : timers)
            found.append(timer.interval);
        return found;
    };
    QVERIFY(window.root()->progressAnimation(true));
    QCOMPARE(periods(), QList<int>{350});
    QVERIFY(window.root()->progressAnimation(true, 20));
    QCOMPARE(periods(), QList<int>{20});
    QVERIFY(window.root()->progressAnimation(false));
    QCOMPARE(periods(), QList<int>());
}

void tst_RootViewController::aUserNameWithoutPasswordCountsAsNobody()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.root()->ShowLoginOptions(QStringLiteral("m1"), QString(), true);
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(), QString());
    QCOMPARE(window.root()->user()->field(CKavlorUser::Username), QString());
}

void tst_RootViewController::settingsWithAnEmptyPasswordFallBackToWelcome()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.root()->ShowSettingsOptions(QStringLiteral("m1"), QString());
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
    QVERIFY(window.shown<NavigationFrame>());
}

void tst_RootViewController::progressOperationsNeedTheBarBeforeSignIn()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QVERIFY(!window.root()->progressAnimation(true));
    QVERIFY(!window.root()->setProgressVisible(true));

    window.root()->ShowLoginOptions();
    QVERIFY(window.root()->setProgressVisible());
    QVERIFY(window.find("progressBar"));
    QVERIFY(window.root()->progressAnimation(true, 1));
    QVERIFY(window.root()->progressAnimation(false));
    QVERIFY(window.root()->setProgressVisible(false));
    QVERIFY(!window.find("progressBar"));
}

void tst_RootViewController::barTextsReachBothKindsOfBar()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QVERIFY(window.root()->setNavigationTextAndIcon(QStringLiteral("Title"),
                                                    QStringLiteral(":/UploadIcon.png")));
    QCOMPARE(window.title(), QStringLiteral("Title"));
    QVERIFY(window.find("labelNavigationIcon"));
    QVERIFY(window.root()->setNavigationTextAndIcon());
    QCOMPARE(window.title(), QString());
    QVERIFY(!window.find("labelNavigationIcon"));

    window.root()->ShowLoginOptions();
    QVERIFY(window.root()->setNavigationTextAndIcon(QStringLiteral("Text "), QString(), true));
    QCOMPARE(window.text("labelWelcomeTo"), QStringLiteral("Text "));
    QVERIFY(window.find("cancelNavigationButton"));
    QVERIFY(window.root()->setNavigationTextAndIcon(QStringLiteral("Text "), QString(), false));
    QVERIFY(!window.find("cancelNavigationButton"));
}

void tst_RootViewController::withoutABarTheBarOperationsAreRefused()
{
    RootWindow window;
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start(); // the start-up window has no bar above it
    QVERIFY(!window.root()->setNavigationTextAndIcon(QStringLiteral("Text")));
    QVERIFY(!window.root()->setProgressVisible(true));
    QVERIFY(!window.root()->progressAnimation(true));
}

void tst_RootViewController::aKnownLoginIsSavedAgainUnlessValidated_data()
{
    QTest::addColumn<bool>("validated");
    QTest::newRow("validated") << true;
    QTest::newRow("not validated") << false;
}

void tst_RootViewController::aKnownLoginIsSavedAgainUnlessValidated()
{
    QFETCH(bool, validated);
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.settings.remove(QStringLiteral("last"));
    window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"), validated);
    QVERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(),
             validated ? QString() : QStringLiteral("m1"));
    QCOMPARE(window.settings.value(QStringLiteral("UserData.m1/Password")).toString(),
             QStringLiteral("secret"));
}

void tst_RootViewController::validatedLoginWithOtherTextsIsSaved()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.root()->ShowLoginOptions(QStringLiteral("m9"), QStringLiteral("nine"), true);
    QCOMPARE(window.settings.value(QStringLiteral("UserData.m9/Password")).toString(),
             QStringLiteral("nine"));
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(), QStringLiteral("m9"));
    QCOMPARE(window.root()->user()->field(CKavlorUser::Username), QStringLiteral("m9"));
}

void tst_RootViewController::repliesOfTheRootsOwnRequestsThatAreNotUsableAreIgnored_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("ERROR") << QByteArray("o\n1,1,1,1\nERROR");
    QTest::newRow("empty") << QByteArray();
}

void tst_RootViewController::repliesOfTheRootsOwnRequestsThatAreNotUsableAreIgnored()
{
    QFETCH(QByteArray, reply);
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    window.service.expect("GetNotificationOptions", reply);
    window.service.expect("GetCategoryList", reply);
    QSignalSpy categories(window.root(), &RootViewController::CategoriesDone);
    window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"), true);
    QTRY_COMPARE(categories.count(), 1); // said whether usable or not
    QVERIFY2(window.service.isDone(), window.service.report());
    QVERIFY(window.shown<KavlorKnownUser>());
    QVERIFY(CKavlorCategoryStore::isEmpty());
    QCOMPARE(alertsShown(&window), (QList<bool>{false, false, false, false}));
    QCOMPARE(window.dialogs.boxes().size(), 0);
}

void tst_RootViewController::repliesAfterTheOptionsCountAsOptionsWhileCategoriesAreThere()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    CKavlorCategoryStore::load(QStringLiteral("c\n1,Sports,0\n"));
    window.service.expect("GetNotificationOptions", "o\n1,1,1,1\n");
    window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"), true);
    auto *request = window.root()->findChild<CHttpTolvex *>(QString(), Qt::FindDirectChildrenOnly);
    QSignalSpy results(request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    QTRY_COMPARE(results.count(), 1);
    window.root()->requestDone(QStringLiteral("o\n0,1,0,1\n"), QString());
    QCOMPARE(alertsShown(&window), (QList<bool>{false, true, false, true}));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_RootViewController::categoriesAreLoadedOnce()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QVERIFY(CKavlorCategoryStore::instance()->contains(10));
    CKavlorCategoryStore::load(QStringLiteral("c\n77,Newer,0\n"));
    QVERIFY(window.click("buttonSettings"));
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(window.shown<KavlorKnownUser>());
    QVERIFY(CKavlorCategoryStore::instance()->contains(77));
    QVERIFY(!CKavlorCategoryStore::instance()->contains(10));
}

void tst_RootViewController::signOutForgetsTheCategoriesText()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QVERIFY(window.click("cancelNavigationButton"));
    QVERIFY(window.shown<FrameWelcomeKavlor>());
    CKavlorCategoryStore::load(QString());
    // With a text left from the start there would be no need to ask.
    window.service.expect("GetNotificationOptions", "o\n1,1,1,1\n");
    window.service.expect("GetCategoryList", "c\n8,Others,0\n");
    QSignalSpy categories(window.root(), &RootViewController::CategoriesDone);
    window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"), true);
    QTRY_COMPARE(categories.count(), 1);
    QVERIFY(CKavlorCategoryStore::instance()->contains(8));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_RootViewController::welcomeSignalShowsTheScreen()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    emit window.root()->WelcomeKavlor(QString(), QString(), false);
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
}

void tst_RootViewController::framesFillTheirAreas()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    const auto *bar = window.root()->findChild<QFrame *>(QStringLiteral("navigationBar"));
    const auto *view = window.root()->findChild<QFrame *>(QStringLiteral("mainView"));
    for (const QSize size : {QSize(800, 424), QSize(1280, 800), QSize(800, 480)}) {
        window.root()->resize(size);
        QTRY_COMPARE(window.root()->size(), size);
        QCOMPARE(window.shown<NavigationControlableFrame>()->size(), bar->size());
        QCOMPARE(window.shown<KavlorKnownUser>()->size(), view->size());
        QCOMPARE(view->width(), size.width());
        QCOMPARE(view->height() + bar->height(), size.height());
    }
}

void tst_RootViewController::dialogsKeepTheirOwnSize()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    auto *view = window.root()->findChild<QFrame *>(QStringLiteral("mainView"));
    QDialog dialog(view);
    dialog.resize(321, 123);
    dialog.show();
    window.root()->resize(1280, 800);
    QTRY_COMPARE(view->width(), 1280);
    QCOMPARE(dialog.size(), QSize(321, 123));
}

void tst_RootViewController::destructionRemembersTheMember()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    window.settings.remove(QStringLiteral("last"));
    window.root()->user()->setUserId(17);
    window.end();
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(), QStringLiteral("m1"));
    QCOMPARE(window.settings.value(QStringLiteral("UserData.m1/UserID")).toInt(), 17);
}

void tst_RootViewController::destructionRemembersThatNobodyIsSignedIn()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    window.settings.setValue(QStringLiteral("last/USERID"), QStringLiteral("somebody"));
    window.end();
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(), QString());
}

void tst_RootViewController::destructionWithARequestInFlight()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    window.service.expectHeld("GetNotificationOptions", "o\n1,1,1,1\n");
    window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"), true);
    QTRY_VERIFY(window.service.isHolding());
    window.end();
    window.service.release();
}

void tst_RootViewController::nothingOfTheLastScreenStays()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    for (int round = 0; round < 5; ++round) {
        auto *home = window.shown<KavlorKnownUser>();
        window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"), true);
        leaveFrame(home);
    }
    QTRY_COMPARE(window.root()->findChildren<NavigationControlableFrame *>().size(), 1);
    QTRY_COMPARE(window.root()->findChildren<KavlorKnownUser *>().size(), 1);
}

void tst_RootViewController::aLeftFrameHearsNoLateReply()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QVERIFY(window.click("loginButton"));
    QVERIFY(window.type("lineUsername", QStringLiteral("m1")));
    QVERIFY(window.type("linePassword", QStringLiteral("secret")));
    window.service.expectHeld("ValidateLogin", "1");
    QVERIFY(window.click("loginButton"));
    QTRY_VERIFY(window.service.isHolding());
    const QPointer<KavlorLogin> login = window.shown<KavlorLogin>();
    QVERIFY(window.clickAsReplyComes("cancelNavigationButton", login));
    QTRY_VERIFY(!login);
    QVERIFY(window.shown<FrameWelcomeKavlor>());
    QVERIFY(!window.shown<KavlorKnownUser>());
    QVERIFY2(window.service.isDone(), window.service.report());
}

KAVLOR_TEST_MAIN(tst_RootViewController)
#include "tst_rootviewcontroller.moc"
