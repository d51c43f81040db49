// SPDX-License-Identifier: MIT

#include "endlessservice.h"
#include "framewelcomekavlor.h"
#include "kavlorknownuser.h"
#include "kavlorlogin.h"
#include "languages.h"
#include "pixels.h"
#include "resultlog.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

class tst_KavlorLogin : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void buttonIsDisabledWhileEitherFieldIsEmpty();
    void theRightReplyLeadsHome();
    void anotherPasswordThanTheStoredOneIsStored();
    void otherReplyIsRefused_data();
    void otherReplyIsRefused();
    void typingAgainClearsTheError();
    void theErrorStandsWhileAFieldIsEmpty();
    void theNextLoginClearsTheError();
    void transportErrorIsTold();
    void lateTimeOutOfARefusedLoginIsNotTold();
    void secondResultOfATimeOutIsNotShown();
    void theFormIsDisabledWhileTheRequestRuns();
    void doubleClickSendsOnce();
    void returnSubmits();
    void returnDoesNothingWhileAFieldIsEmpty();
    void textsAreSentAsTyped();
    void cancelLeavesToTheWelcomeFrame();
    void whatWasLeftSaysNothingInTheBar();
    void cancelWhileTheRequestRuns();
    void endlessReplyStopsWithTheFrame();
    void passwordPageIsTheServices();
    void barShowsTheLoginText();
    void fontsAndTheColourOfTheError();

private:
    bool typeLogin();

    std::unique_ptr<RootWindow> m_window;
};

void tst_KavlorLogin::init()
{
    TestCase::init();
    m_window = std::make_unique<RootWindow>();
    QVERIFY(m_window->startAtWelcome());
    QVERIFY(m_window->click("loginButton"));
    QVERIFY(m_window->shown<KavlorLogin>());
    QTRY_VERIFY(!m_window->shown<FrameWelcomeKavlor>());
}

void tst_KavlorLogin::cleanup()
{
    QVERIFY2(m_window->service.isDone(), m_window->service.report());
    m_window.reset();
}

bool tst_KavlorLogin::typeLogin()
{
    return m_window->type("lineUsername", QStringLiteral("m1"))
        && m_window->type("linePassword", QStringLiteral("secret"));
}

void tst_KavlorLogin::buttonIsDisabledWhileEitherFieldIsEmpty()
{
    QCOMPARE(m_window->text("labelError"), QString());
    const auto *button = m_window->find<QPushButton>("loginButton");
    QVERIFY(!button->isEnabled());
    QVERIFY(m_window->type("lineUsername", QStringLiteral("m1")));
    QVERIFY(!button->isEnabled());
    QVERIFY(m_window->type("linePassword", QStringLiteral("secret")));
    QVERIFY(button->isEnabled());
    QVERIFY(m_window->type("lineUsername", QString()));
    QVERIFY(!button->isEnabled());
}

void tst_KavlorLogin::theRightReplyLeadsHome()
{
    m_window->service.expect("ValidateLogin", "1");
    m_window->service.expect("GetNotificationOptions", "o\n0,0,0,0\n");
    m_window->service.expect("GetCategoryList", "c\n1,Sports,0\n");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(m_window->shown<KavlorKnownUser>());
    QTRY_VERIFY(!m_window->root()->findChild<KavlorLogin *>());
    QCOMPARE(m_window->settings.value(QStringLiteral("last/USERID")).toString(),
             QStringLiteral("m1"));
    QCOMPARE(m_window->settings.value(QStringLiteral("UserData.m1/Password")).toString(),
             QStringLiteral("secret"));
    QTRY_VERIFY2(m_window->service.isDone(), m_window->service.report());
}

void tst_KavlorLogin::anotherPasswordThanTheStoredOneIsStored()
{
    m_window->remember(QStringLiteral("m1"), QStringLiteral("old"));
    m_window->service.expect("ValidateLogin", "1");
    m_window->service.expect("GetNotificationOptions", "o\n0,0,0,0\n");
    m_window->service.expect("GetCategoryList", "c\n1,Sports,0\n");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(m_window->shown<KavlorKnownUser>());
    QCOMPARE(m_window->settings.value(QStringLiteral("UserData.m1/Password")).toString(),
             QStringLiteral("secret"));
    QCOMPARE(m_window->settings.value(QStringLiteral("UserData.m1/Email Address")).toString(),
             QStringLiteral("m1@example.org")); // the rest of the record stays
    QTRY_VERIFY2(m_window->service.isDone(), m_window->service.report());
}

void tst_KavlorLogin::otherReplyIsRefused_data()
{
    QTest::addColumn<QByteArray>("reply");
    for (const char *reply : {"2", "0", "-1", "abc", "ERROR", "1x", "1.0"})
        QTest::newRow(reply) << QByteArray(reply);
    QTest::newRow("empty") << QByteArray();
}

void tst_KavlorLogin::otherReplyIsRefused()
{
    QFETCH(QByteArray, reply);
    m_window->service.expect("ValidateLogin", reply);
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_COMPARE(m_window->text("labelError"), QStringLiteral("kavlor authentication failed."));
    for (const char *name : {"lineUsername", "linePassword", "loginButton"})
        QVERIFY(m_window->find(name)->isEnabled());
    QCOMPARE(m_window->text("lineUsername"), QStringLiteral("m1"));
    QCOMPARE(m_window->dialogs.boxes().size(), 0);
}

void tst_KavlorLogin::typingAgainClearsTheError()
{
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
    QTest::keyClicks(m_window->find("linePassword"), QStringLiteral("x"));
    QCOMPARE(m_window->text("labelError"), QString());
}

void tst_KavlorLogin::theErrorStandsWhileAFieldIsEmpty()
{
    const QString refused = QStringLiteral("kavlor authentication failed.");
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_COMPARE(m_window->text("labelError"), refused);
    QTest::keyClick(m_window->find("linePassword"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(m_window->find("linePassword"), Qt::Key_Delete);
    QCOMPARE(m_window->text("linePassword"), QString());
    QCOMPARE(m_window->text("labelError"), refused);
    QTest::keyClick(m_window->find("lineUsername"), Qt::Key_2);
    QCOMPARE(m_window->text("labelError"), refused);
    QTest::keyClick(m_window->find("linePassword"), Qt::Key_X);
    QCOMPARE(m_window->text("labelError"), QString());
}

void tst_KavlorLogin::theNextLoginClearsTheError()
{
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
    m_window->service.expectHeld("ValidateLogin", "0");
    QVERIFY(m_window->click("loginButton"));
    QCOMPARE(m_window->text("labelError"), QString());
    QTRY_VERIFY(m_window->service.isHolding());
    QVERIFY(m_window->service.release());
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
}

void tst_KavlorLogin::transportErrorIsTold()
{
    ScriptedService::Step cut;
    cut.then = ScriptedService::Close;
    m_window->service.expect(cut);
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_COMPARE(m_window->dialogs.boxes().size(), 1);
    QCOMPARE(m_window->dialogs.boxes().constFirst().title,
             QStringLiteral("Authentication failed:"));
    QVERIFY(!m_window->dialogs.boxes().constFirst().text.isEmpty());
    QTRY_VERIFY(m_window->find("loginButton")->isEnabled());
    QVERIFY(m_window->find("lineUsername")->isEnabled());
    QCOMPARE(m_window->text("labelError"), QString());
}

void tst_KavlorLogin::lateTimeOutOfARefusedLoginIsNotTold()
{
    testTimeConstants().formTimeout = 1500;
    m_window->service.expect("ValidateLogin", "0");
    const ResultLog results(m_window->shown<KavlorLogin>()->findChild<CHttpTolvex *>());
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
    QTRY_COMPARE(results.textAt(1),
                 ResultLog::text(QStringLiteral("ERROR:timeout"),
                                 QStringLiteral("Unable to get a server response")));
    QCOMPARE(m_window->dialogs.boxes().size(), 0);
    QCOMPARE(m_window->text("labelError"), QStringLiteral("kavlor authentication failed."));

    // The next try is heard again.
    m_window->service.expect("ValidateLogin", "0");
    QTest::keyClicks(m_window->find("linePassword"), QStringLiteral("x"));
    QCOMPARE(m_window->text("labelError"), QString());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
}

void tst_KavlorLogin::secondResultOfATimeOutIsNotShown()
{
    testTimeConstants().formTimeout = 100;
    m_window->service.expectHeld("ValidateLogin", "1");
    const ResultLog results(m_window->shown<KavlorLogin>()->findChild<CHttpTolvex *>());
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_COMPARE(m_window->dialogs.boxes().size(), 1);
    QTRY_VERIFY(m_window->find("loginButton")->isEnabled());
    QTRY_VERIFY(m_window->service.isHolding());
    QVERIFY(m_window->service.release());
    QTRY_COMPARE(results.textAt(1), ResultLog::text(QString(), QString()));
    QCOMPARE(m_window->text("labelError"), QString());
    QCOMPARE(m_window->dialogs.boxes().size(), 1);
}

void tst_KavlorLogin::theFormIsDisabledWhileTheRequestRuns()
{
    m_window->service.expectHeld("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(m_window->service.isHolding());
    for (const char *name : {"lineUsername", "linePassword", "loginButton"})
        QVERIFY(!m_window->find(name)->isEnabled());
    QVERIFY(m_window->service.release());
    QTRY_VERIFY(m_window->find("loginButton")->isEnabled());
}

void tst_KavlorLogin::doubleClickSendsOnce()
{
    m_window->service.expectHeld("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QTest::mouseClick(m_window->find("loginButton"), Qt::LeftButton);
    QTest::mouseDClick(m_window->find("loginButton"), Qt::LeftButton);
    QTRY_VERIFY(m_window->service.isHolding());
    QVERIFY(m_window->service.release());
    QTRY_VERIFY(m_window->find("loginButton")->isEnabled());
    QCOMPARE(m_window->service.operations().count("ValidateLogin"), 1);
}

void tst_KavlorLogin::returnSubmits()
{
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QTest::keyClick(m_window->find("linePassword"), Qt::Key_Return);
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
}

void tst_KavlorLogin::returnDoesNothingWhileAFieldIsEmpty()
{
    QVERIFY(m_window->type("lineUsername", QStringLiteral("m1")));
    QTest::keyClick(m_window->find("lineUsername"), Qt::Key_Return);
    QVERIFY(m_window->find("lineUsername")->isEnabled());
    QCOMPARE(m_window->service.operations().count("ValidateLogin"), 0);
}

void tst_KavlorLogin::textsAreSentAsTyped()
{
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(m_window->type("lineUsername", QStringLiteral(" m 1 ")));
    QVERIFY(m_window->type("linePassword", QStringLiteral(u"a&b=%+\u00E9")));
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
    QCOMPARE(m_window->service.requests().constLast().body,
             QByteArray("Username=%20m%201%20&Password=a%26b%3D%25%2B%C3%A9&SUBMIT=Submit"));
}

void tst_KavlorLogin::cancelLeavesToTheWelcomeFrame()
{
    QVERIFY(m_window->click("cancelNavigationButton"));
    QTRY_VERIFY(m_window->shown<FrameWelcomeKavlor>());
    QTRY_VERIFY(!m_window->root()->findChild<KavlorLogin *>());
    QCOMPARE(m_window->text("labelWelcomeTo"), QStringLiteral("welcome to "));
    QVERIFY(!m_window->find("cancelNavigationButton"));
}

// The language may change before the frame is really gone.
void tst_KavlorLogin::whatWasLeftSaysNothingInTheBar()
{
    QVERIFY(m_window->click("cancelNavigationButton"));
    Languages languages;
    languages.use(QLocale(QLocale::German));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LanguageChange);
    QVERIFY(m_window->root()->findChild<KavlorLogin *>());
    QCOMPARE(m_window->text("labelWelcomeTo"), QStringLiteral("Willkommen bei "));
}

void tst_KavlorLogin::cancelWhileTheRequestRuns()
{
    m_window->service.expectHeld("ValidateLogin", "1");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(m_window->service.isHolding());
    QVERIFY(m_window->click("cancelNavigationButton"));
    QTRY_VERIFY(!m_window->root()->findChild<KavlorLogin *>());
    m_window->service.release();
    // The late reply changes nothing: another login from here works as ever.
    QVERIFY(m_window->click("loginButton"));
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(!m_window->text("labelError").isEmpty());
    QVERIFY(!m_window->shown<KavlorKnownUser>());
}

void tst_KavlorLogin::endlessReplyStopsWithTheFrame()
{
    EndlessService service;
    setServiceHost(service.host());
    QVERIFY(m_window->click("cancelNavigationButton"));
    QTRY_VERIFY(m_window->shown<FrameWelcomeKavlor>());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(m_window->shown<KavlorLogin>());
    testTimeConstants().formTimeout = 100;
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_COMPARE(m_window->dialogs.boxes().size(), 1);
    QTRY_VERIFY(service.written() > 1024LL * 1024); // it goes on after the time-out
    QVERIFY(m_window->click("cancelNavigationButton"));
    QTRY_VERIFY(service.isLeft());
}

void tst_KavlorLogin::passwordPageIsTheServices()
{
    const QString link =
        QStringLiteral("http://%1/index.php?do=forgotpass").arg(m_window->service.host());
    const auto *label = m_window->find<QLabel>("forgotPassword");
    QVERIFY(label->text().startsWith(QStringLiteral("I forgot ")));
    QVERIFY(label->text().contains(QStringLiteral("href=\"%1\">password<").arg(link)));
    QVERIFY(label->openExternalLinks());
}

void tst_KavlorLogin::barShowsTheLoginText()
{
    QCOMPARE(m_window->text("labelWelcomeTo"), QStringLiteral("Please login to "));
    QVERIFY(m_window->find("cancelNavigationButton"));
    QCOMPARE(m_window->find<QLineEdit>("linePassword")->echoMode(), QLineEdit::Password);
}

void tst_KavlorLogin::fontsAndTheColourOfTheError()
{
    for (const char *name : {"lineUsername", "linePassword"})
        QCOMPARE(m_window->find(name)->font().family(), QStringLiteral("AlArabiya"));
    QCOMPARE(m_window->find("loginButton")->font().family(), QStringLiteral("AlMateen"));
    const QColor red(200, 29, 4);
    QVERIFY(!showsColour(m_window->picture("labelError"), red));
    m_window->service.expect("ValidateLogin", "0");
    QVERIFY(typeLogin());
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(showsColour(m_window->picture("labelError"), red));
}

KAVLOR_TEST_MAIN(tst_KavlorLogin)
#include "tst_kavlorlogin.moc"
