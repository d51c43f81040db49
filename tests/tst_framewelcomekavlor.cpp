// SPDX-License-Identifier: MIT

#include "framecreateaccount.h"
#include "framewelcomekavlor.h"
#include "kavlorlogin.h"
#include "pixels.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

class tst_FrameWelcomeKavlor : public TestCase
{
    Q_OBJECT

private slots:
    void asksBothQuestions();
    void theChoicesStandOnWhite();
    void loginReplacesTheFrame();
    void accountCreationReplacesTheFrame();
    void doubleClickOpensOneLogin();
    void withoutARootTheLoginIsStillShown();
};

void tst_FrameWelcomeKavlor::asksBothQuestions()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    auto *frame = window.shown<FrameWelcomeKavlor>();
    QStringList texts;
    for (const QLabel *label : frame->findChildren<QLabel *>())
        texts.append(label->text());
    QVERIFY(texts.contains(QStringLiteral("New to kavlor?")));
    QVERIFY(texts.contains(QStringLiteral("Already have an account?")));
    for (const char *name : {"createAccountButton", "loginButton"}) {
        QVERIFY(window.find<QPushButton>(name));
        QCOMPARE(window.find(name)->font().family(), QStringLiteral("AlMateen"));
    }
}

void tst_FrameWelcomeKavlor::theChoicesStandOnWhite()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    const QImage form = window.picture("frameForm");
    QVERIFY(!form.isNull());
    const QWidget *button = window.find("createAccountButton");
    const QPoint between(form.width() / 2, button->geometry().center().y());
    for (const QPoint &free :
         {between, QPoint(form.width() / 2, 4), QPoint(form.width() / 2, form.height() - 5)})
        QVERIFY(isNear(form.pixelColor(free), Qt::white));
    // The rest of the screen is the window's background.
    QVERIFY(!isNear(window.picture("mainView").pixelColor(4, 4), Qt::white));
}

void tst_FrameWelcomeKavlor::loginReplacesTheFrame()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QSignalSpy clicked(window.shown<FrameWelcomeKavlor>(), &FrameWelcomeKavlor::LoginClicked);
    QVERIFY(window.click("loginButton"));
    QCOMPARE(clicked.count(), 1);
    QVERIFY(window.shown<KavlorLogin>());
    QTRY_VERIFY(!window.root()->findChild<FrameWelcomeKavlor *>());
}

void tst_FrameWelcomeKavlor::accountCreationReplacesTheFrame()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QSignalSpy clicked(window.shown<FrameWelcomeKavlor>(),
                       &FrameWelcomeKavlor::CreateAccountClicked);
    QVERIFY(window.click("createAccountButton"));
    QCOMPARE(clicked.count(), 1);
    QVERIFY(window.shown<FrameCreateAccount>());
    QTRY_VERIFY(!window.root()->findChild<FrameWelcomeKavlor *>());
}

void tst_FrameWelcomeKavlor::doubleClickOpensOneLogin()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QWidget *button = window.find("loginButton");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseDClick(button, Qt::LeftButton);
    QTRY_VERIFY(!window.root()->findChild<FrameWelcomeKavlor *>());
    QCOMPARE(window.root()->findChildren<KavlorLogin *>().size(), 1);
}

void tst_FrameWelcomeKavlor::withoutARootTheLoginIsStillShown()
{
    QWidget area;
    area.show();
    QPointer<FrameWelcomeKavlor> frame(new FrameWelcomeKavlor(nullptr, &area));
    frame->show();
    frame->showLoginFrame();
    QTRY_VERIFY(!frame);
    auto *login = area.findChild<KavlorLogin *>();
    QVERIFY(login);
    QVERIFY(login->isVisible());
}

KAVLOR_TEST_MAIN(tst_FrameWelcomeKavlor)
#include "tst_framewelcomekavlor.moc"
