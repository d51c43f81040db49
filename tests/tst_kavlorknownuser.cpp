// SPDX-License-Identifier: MIT

#include "framewelcomekavlor.h"
#include "kavlorknownuser.h"
#include "pixels.h"
#include "rootwindow.h"
#include "smallpixmapcache.h"
#include "testcase.h"
#include "testmain.h"

#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>

class tst_KavlorKnownUser : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void showsTheMember();
    void buttonsShowTheWays_data();
    void buttonsShowTheWays();
    void iconsAreReadOnce();
    void signOutForgetsWhoIsSignedInAndKeepsTheRecord();
    void doubleClickOnSignOutLeavesOneWelcomeFrame();
    void signOutFetchesAfreshAtTheNextLogin();
    void worksWithoutARoot();

private:
    std::unique_ptr<RootWindow> m_window;
};

void tst_KavlorKnownUser::init()
{
    TestCase::init();
    m_window = std::make_unique<RootWindow>();
    QVERIFY(m_window->startAtHome());
}

void tst_KavlorKnownUser::showsTheMember()
{
    QCOMPARE(m_window->text("labelWelcome"), QStringLiteral("m1"));
    QCOMPARE(m_window->find("labelWelcome")->font().family(), QStringLiteral("AlArabiya"));
    QCOMPARE(m_window->find<QLabel>("labelUserIcon")->pixmap().toImage(),
             QPixmap(QStringLiteral(":/UserIcon.png")).toImage());
    QVERIFY(m_window->find<QTextBrowser>("textBrowser"));
}

void tst_KavlorKnownUser::buttonsShowTheWays_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("icon");
    QTest::newRow("upload") << QByteArray("buttonUpload") << "Upload"
                            << ":/UploadIcon.png";
    QTest::newRow("my auctions") << QByteArray("buttonMyKavlor") << "My kavlor"
                                 << ":/myKavlor.png";
    QTest::newRow("settings") << QByteArray("buttonSettings") << "Settings"
                              << ":/MySettingsIcon.png";
}

void tst_KavlorKnownUser::buttonsShowTheWays()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, text);
    QFETCH(QString, icon);
    const auto *button = m_window->find<QPushButton>(name.constData());
    QVERIFY(button);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->icon().pixmap(button->iconSize()).toImage(),
             QIcon(icon).pixmap(button->iconSize()).toImage());
    QCOMPARE(button->font().family(), QStringLiteral("AlMateen"));

    m_window->find("textBrowser")->setFocus(); // which would show on the border
    const QImage shown = m_window->picture(name.constData());
    QVERIFY(showsColour(shown, Qt::white)); // the text
    const QColor border(0xcf, 0xcf, 0xcf);
    const int middle = shown.width() / 2;
    QVERIFY(isNear(shown.pixelColor(middle, 0), border));
    QVERIFY(isNear(shown.pixelColor(middle, 1), border));
    QVERIFY(!isNear(shown.pixelColor(middle, 2), border));
}

// However often the member comes home, the thumbnails keep their room.
void tst_KavlorKnownUser::iconsAreReadOnce()
{
    const SmallPixmapCache cache(400);
    auto *mainView = m_window->root()->findChild<QWidget *>(QStringLiteral("mainView"));
    constexpr int visits = 60;
    for (int visit = 0; visit < visits; ++visit)
        KavlorKnownUser(QStringLiteral("m1"), QStringLiteral("secret"), mainView).grab();
    QVERIFY(cache.isLeftToOthers());
}

void tst_KavlorKnownUser::signOutForgetsWhoIsSignedInAndKeepsTheRecord()
{
    QVERIFY(m_window->click("cancelNavigationButton"));
    QTRY_VERIFY(m_window->shown<FrameWelcomeKavlor>());
    QTRY_VERIFY(!m_window->root()->findChild<KavlorKnownUser *>());
    QCOMPARE(m_window->settings.value(QStringLiteral("last/USERID")).toString(), QString());
    QCOMPARE(m_window->settings.value(QStringLiteral("UserData.m1/Password")).toString(),
             QStringLiteral("secret"));
    m_window->end();
    QCOMPARE(m_window->settings.value(QStringLiteral("last/USERID")).toString(), QString());
    QVERIFY(m_window->settings.contains(QStringLiteral("UserData.m1/Username")));
}

void tst_KavlorKnownUser::doubleClickOnSignOutLeavesOneWelcomeFrame()
{
    QWidget *button = m_window->find("cancelNavigationButton");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseDClick(button, Qt::LeftButton);
    QTRY_VERIFY(!m_window->root()->findChild<KavlorKnownUser *>());
    QCOMPARE(m_window->root()->findChildren<FrameWelcomeKavlor *>().size(), 1);
}

void tst_KavlorKnownUser::signOutFetchesAfreshAtTheNextLogin()
{
    QVERIFY(m_window->click("cancelNavigationButton"));
    QTRY_VERIFY(m_window->shown<FrameWelcomeKavlor>());
    QVERIFY(m_window->click("loginButton"));
    m_window->service.expect("ValidateLogin", "1");
    m_window->service.expect("GetNotificationOptions", "ERROR");
    QVERIFY(m_window->type("lineUsername", QStringLiteral("m2")));
    QVERIFY(m_window->type("linePassword", QStringLiteral("other")));
    QVERIFY(m_window->click("loginButton"));
    QTRY_VERIFY(m_window->shown<KavlorKnownUser>());
    QTRY_VERIFY2(m_window->service.isDone(), m_window->service.report());
    QCOMPARE(m_window->service.requests().constLast().body,
             QByteArray("Username=m2&Password=other&SUBMIT=Submit"));
    QCOMPARE(m_window->settings.value(QStringLiteral("last/USERID")).toString(),
             QStringLiteral("m2"));
}

void tst_KavlorKnownUser::worksWithoutARoot()
{
    QWidget area;
    auto *frame = new KavlorKnownUser(QStringLiteral("m1"), QStringLiteral("secret"), &area);
    QPointer<KavlorKnownUser> guard(frame);
    frame->uploadClick();
    QTRY_VERIFY(!guard);
}

KAVLOR_TEST_MAIN(tst_KavlorKnownUser)
#include "tst_kavlorknownuser.moc"
