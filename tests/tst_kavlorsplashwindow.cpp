// SPDX-License-Identifier: MIT

#include "framewelcomekavlor.h"
#include "httptransfer.h"
#include "kavlorknownuser.h"
#include "kavlorsplashwindow.h"
#include "progressivemodel.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTableView>
#include <QTimer>

namespace {

// Whether a widget has been painted since.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget *watched)
    {
        watched->installEventFilter(this);
    }
    bool isPainted() const
    {
        return m_isPainted;
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_isPainted = m_isPainted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_isPainted = false;
};

} // namespace

class tst_KavlorSplashWindow : public TestCase
{
    Q_OBJECT

private slots:
    void nothingIsAskedBeforeTheWindowIsSeen();
    void aWindowThatIsNeverSeenStartsAllTheSame();
    void withoutALoginTermsThenCountries();
    void withALoginAllFiveInOrder();
    void validationReply_data();
    void validationReply();
    void repliesWithinTheMinimumTimeWaitForIt();
    void theMinimumTimeIsNotCutShort();
    void theTimerFirstWaitsForTheCountriesReply();
    void messagesAccompanyTheRequests_data();
    void messagesAccompanyTheRequests();
    void onlyALoginThatWasNotValidatedIsSavedAgain_data();
    void onlyALoginThatWasNotValidatedIsSavedAgain();
    void replyWithErrorIsNotStored_data();
    void replyWithErrorIsNotStored();
    void termsAreStoredWithoutLookingForError();
    void transportErrorEndsTheProgram_data();
    void transportErrorEndsTheProgram();
    void theStripStopsOnAnError();
    void theWindowIsHiddenBeforeItSaysThatTheStartFailed();
    void afterTheFirstErrorEveryReplyIsIgnored();
    void offlineTheStartEndsWithOneBoxAndNoRequest();
    void aWindowClosedWhileWaitingForAConnectionIsToldNothing();
    void versionAndStripAreShown();
    void theStripSweepsFromItsFirstCell();
    void aLoginWithoutPasswordIsNotValidated();
    void handsOverOnlyOnce();
    void theLegalNoticeIsOneLine();

private:
    static QString message(const RootWindow &window);
    static CProgressiveModel *strip(const RootWindow &window);
};

QString tst_KavlorSplashWindow::message(const RootWindow &window)
{
    return window.text("progressMessage");
}

CProgressiveModel *tst_KavlorSplashWindow::strip(const RootWindow &window)
{
    return qobject_cast<CProgressiveModel *>(window.find<QTableView>("splashProgress")->model());
}

void tst_KavlorSplashWindow::nothingIsAskedBeforeTheWindowIsSeen()
{
    RootWindow window;
    window.scriptStart();
    window.start();
    PaintWatch watch(window.find("splashProgress"));
    QVERIFY(window.root()->findChildren<HttpTransfer *>().isEmpty());
    QTRY_VERIFY(watch.isPainted());
    QVERIFY(window.root()->findChildren<HttpTransfer *>().isEmpty());
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::aWindowThatIsNeverSeenStartsAllTheSame()
{
    RootWindow window;
    testTimeConstants().paintWait = 1;
    window.scriptStart();
    window.start();
    window.root()->setUpdatesEnabled(false);
    PaintWatch watch(window.find("splashProgress"));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
    QVERIFY(!watch.isPainted());
}

void tst_KavlorSplashWindow::withoutALoginTermsThenCountries()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QCOMPARE(window.service.operations(), (QList<QByteArray>{"GetServiceTerms", "GetCountryList"}));
    QCOMPARE(window.root()->termsText(), QStringLiteral("<p>terms</p>"));
    QCOMPARE(window.root()->countriesText(), QStringLiteral("countries"));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::withALoginAllFiveInOrder()
{
    RootWindow window;
    QVERIFY(window.startAtHome());
    QCOMPARE(window.service.operations(),
             (QList<QByteArray>{"ValidateLogin", "GetCategoryList", "GetNotificationOptions",
                                "GetServiceTerms", "GetCountryList"}));
    QCOMPARE(window.service.requests().at(0).body,
             QByteArray("Username=m1&Password=secret&SUBMIT=Submit"));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::validationReply_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("valid");

    QTest::newRow("0") << QByteArray("0") << false;
    QTest::newRow("abc") << QByteArray("abc") << false;
    QTest::newRow("17") << QByteArray("17") << true;
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("-1") << QByteArray("-1") << true;
    QTest::newRow("ERROR") << QByteArray("ERROR") << false;
    QTest::newRow("1 with ERROR") << QByteArray("1 ERROR") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void tst_KavlorSplashWindow::validationReply()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, valid);

    RootWindow window;
    window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
    window.service.expect("ValidateLogin", reply);
    QList<QByteArray> expected{"ValidateLogin"};
    if (valid) {
        window.service.expect("GetCategoryList", "c\n1,Sports,0\n");
        window.service.expect("GetNotificationOptions", "o\n0,0,0,0\n");
        expected += QList<QByteArray>{"GetCategoryList", "GetNotificationOptions"};
    }
    window.scriptStart();
    expected += QList<QByteArray>{"GetServiceTerms", "GetCountryList"};
    if (!valid) {
        // The home frame opens all the same, and the root fetches what is missing.
        window.service.expect("GetNotificationOptions", "o\n0,0,0,0\n");
        window.service.expect("GetCategoryList", "c\n1,Sports,0\n");
        expected += QList<QByteArray>{"GetNotificationOptions"};
    }
    window.start();
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QTRY_VERIFY(window.service.operations().size() >= expected.size());
    QCOMPARE(window.service.operations().mid(0, expected.size()), expected);
}

void tst_KavlorSplashWindow::repliesWithinTheMinimumTimeWaitForIt()
{
    RootWindow window;
    testTimeConstants().startUpMinimum = 1000;
    window.scriptStart();
    QElapsedTimer timer;
    timer.start();
    window.start();
    QTRY_COMPARE(window.root()->countriesText(), QStringLiteral("countries"));
    QVERIFY(window.shown<CKavlorSplashWindow>());
    QVERIFY(!window.shown<FrameWelcomeKavlor>());
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
    QVERIFY(timer.elapsed() >= 1000);
    QTRY_VERIFY(!window.root()->findChild<CKavlorSplashWindow *>());
}

void tst_KavlorSplashWindow::theMinimumTimeIsNotCutShort()
{
    RootWindow window;
    testTimeConstants().startUpMinimum = 600000;
    window.service.expectHeld("GetServiceTerms", "terms");
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start();
    QTRY_VERIFY(window.service.isHolding());
    auto *splash = window.shown<CKavlorSplashWindow>();
    QElapsedTimer timer;
    qint64 passed = 0;
    connect(splash, &CKavlorSplashWindow::GoodExit, this, [&] { passed = timer.nsecsElapsed(); });

    // Shortly after a full second is when a time that may be rounded ends too early.
    testTimeConstants().startUpMinimum = 2000;
    const auto millisecond = [] {
        return QDeadlineTimer::current(Qt::PreciseTimer).deadline() % 1000;
    };
    while (millisecond() < 50 || millisecond() > 80)
        QTest::qWait(5);
    timer.start();
    splash->startRequests();
    QTRY_VERIFY(passed != 0);
    QVERIFY2(passed >= 2000LL * 1000 * 1000, QByteArray::number(passed));
    QTRY_COMPARE(window.service.operations().size(), 2);
}

void tst_KavlorSplashWindow::theTimerFirstWaitsForTheCountriesReply()
{
    RootWindow window;
    testTimeConstants().startUpMinimum = 1;
    window.service.expect("GetServiceTerms", "terms");
    window.service.expectHeld("GetCountryList", "countries");
    window.start();
    auto *splash = window.shown<CKavlorSplashWindow>();
    QVERIFY(splash);
    QSignalSpy goodExit(splash, &CKavlorSplashWindow::GoodExit);
    QTRY_VERIFY(window.service.isHolding());
    QTRY_COMPARE(goodExit.count(), 1); // the timer's
    QVERIFY(window.shown<CKavlorSplashWindow>());
    QVERIFY(!window.shown<FrameWelcomeKavlor>());
    QVERIFY(window.service.release());
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
}

void tst_KavlorSplashWindow::messagesAccompanyTheRequests_data()
{
    QTest::addColumn<QByteArray>("validation"); // the reply; empty = nobody is remembered
    QTest::addColumn<QStringList>("messages");

    const QString terms = QStringLiteral("requesting terms data");
    const QString countries = QStringLiteral("requesting countries data");
    const QString login = QStringLiteral("validating login");
    QTest::newRow("nobody") << QByteArray() << QStringList{terms, countries};
    QTest::newRow("refused login") << QByteArray("0") << QStringList{login, terms, countries};
    // The message of the alert options' reply stays while the terms are fetched.
    QTest::newRow("right login") << QByteArray("1")
                                 << QStringList{login, QStringLiteral("requesting categories"),
                                                QStringLiteral("requesting user options"),
                                                QStringLiteral("data is ok, launching..."),
                                                countries};
}

void tst_KavlorSplashWindow::messagesAccompanyTheRequests()
{
    QFETCH(QByteArray, validation);
    QFETCH(QStringList, messages);
    RootWindow window;
    testTimeConstants().startUpMinimum = 60000; // the last message stands until then
    if (!validation.isEmpty()) {
        window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
        window.service.expectHeld("ValidateLogin", validation);
    }
    if (validation == "1") {
        window.service.expectHeld("GetCategoryList", "c\n1,Sports,0\n");
        window.service.expectHeld("GetNotificationOptions", "o\n0,0,0,0\n");
    }
    window.service.expectHeld("GetServiceTerms", "terms");
    window.service.expectHeld("GetCountryList", "countries");
    window.start();
    for (const QString &expected : messages) {
        QTRY_VERIFY(window.service.isHolding());
        QCOMPARE(message(window), expected);
        QVERIFY(window.service.release());
    }
    QTRY_COMPARE(message(window), QStringLiteral("data is ok, launching..."));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::onlyALoginThatWasNotValidatedIsSavedAgain_data()
{
    QTest::addColumn<QByteArray>("validation");
    QTest::addColumn<bool>("saved");

    QTest::newRow("validated") << QByteArray("1") << false;
    QTest::newRow("refused") << QByteArray("0") << true;
}

void tst_KavlorSplashWindow::onlyALoginThatWasNotValidatedIsSavedAgain()
{
    QFETCH(QByteArray, validation);
    QFETCH(bool, saved);
    RootWindow window;
    window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
    window.service.expect("ValidateLogin", validation);
    if (!saved) {
        window.service.expect("GetCategoryList", "c\n1,Sports,0\n");
        window.service.expect("GetNotificationOptions", "o\n0,0,0,0\n");
    }
    window.service.expect("GetServiceTerms", "terms");
    window.service.expectHeld("GetCountryList", "countries");
    window.start();
    QTRY_VERIFY(window.service.isHolding());
    // Whatever was read is read by now; who writes the record writes these, too.
    window.settings.remove(QStringLiteral("last"));
    window.settings.remove(QStringLiteral("UserData.m1/Gender"));
    if (saved) {
        window.service.expect("GetNotificationOptions", "o\n0,0,0,0\n");
        window.service.expect("GetCategoryList", "c\n1,Sports,0\n");
    }
    QVERIFY(window.service.release());
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(),
             saved ? QStringLiteral("m1") : QString());
    QCOMPARE(window.settings.contains(QStringLiteral("UserData.m1/Gender")), saved);
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::replyWithErrorIsNotStored_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("categories") << 1;
    QTest::newRow("alert options") << 2;
    QTest::newRow("countries") << 4;
}

void tst_KavlorSplashWindow::replyWithErrorIsNotStored()
{
    QFETCH(int, which);
    RootWindow window;
    window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
    const QList<QByteArray> operations{"ValidateLogin", "GetCategoryList", "GetNotificationOptions",
                                       "GetServiceTerms", "GetCountryList"};
    for (int request = 0; request < operations.size(); ++request) {
        const QByteArray good = request == 0 ? "1" : "1\n1,1,1,1";
        window.service.expect(operations.at(request), request == which ? "an ERROR" : good);
    }
    if (which == 2) {
        window.service.expect("GetNotificationOptions", "o\n1,1,1,1\n");
        window.service.expect("GetCategoryList", "c\n1,Sports,0\n");
    }
    window.start();
    QTRY_VERIFY(window.shown<KavlorKnownUser>());
    QCOMPARE(window.root()->countriesText().isEmpty(), which == 4);
    if (which == 2) // not stored, and so fetched once more
        QTRY_COMPARE(window.service.operations().value(5), QByteArray("GetNotificationOptions"));
}

void tst_KavlorSplashWindow::termsAreStoredWithoutLookingForError()
{
    RootWindow window;
    window.service.expect("GetServiceTerms", "ERROR: terms");
    window.service.expect("GetCountryList", "countries");
    window.start();
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
    QCOMPARE(window.root()->termsText(), QStringLiteral("ERROR: terms"));
}

void tst_KavlorSplashWindow::transportErrorEndsTheProgram_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("login validation") << 0;
    QTest::newRow("categories") << 1;
    QTest::newRow("alert options") << 2;
    QTest::newRow("terms") << 3;
    QTest::newRow("countries") << 4;
}

void tst_KavlorSplashWindow::transportErrorEndsTheProgram()
{
    QFETCH(int, which);
    RootWindow window;
    window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
    const QList<QByteArray> operations{"ValidateLogin", "GetCategoryList", "GetNotificationOptions",
                                       "GetServiceTerms", "GetCountryList"};
    for (int request = 0; request < which; ++request)
        window.service.expect(operations.at(request), "1");
    ScriptedService::Step cut;
    cut.operation = operations.at(which);
    cut.then = ScriptedService::Close;
    window.service.expect(cut);

    window.start();
    QTRY_VERIFY(!window.root()->isVisible());
    QVERIFY(!window.root()->findChild<CKavlorSplashWindow *>());
    QCOMPARE(window.dialogs.boxes().size(), 1);
    const QString text = window.dialogs.boxes().constFirst().text;
    const QString opening = QStringLiteral("kavlor experienced an error contacting a server.\n"
                                           "Please check your network settings.\n\n");
    QVERIFY2(text.startsWith(opening), qPrintable(text));
    QVERIFY(text.size() > opening.size());
    QCOMPARE(window.service.operations(), operations.mid(0, which + 1));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::theStripStopsOnAnError()
{
    RootWindow window;
    testTimeConstants().progressStep = 1;
    ScriptedService::Step cut;
    cut.operation = "GetServiceTerms";
    cut.then = ScriptedService::Close;
    window.service.expect(cut);
    window.start();
    QSignalSpy steps(strip(window), &CProgressiveModel::occuredTimerEvent);
    qsizetype stepsInTheBox = -1;
    window.dialogs.beforeNextAnswer([&] {
        const qsizetype before = steps.count();
        // A strip that runs on would step as often as this one.
        CProgressiveModel peer(nullptr, 3, 1);
        QSignalSpy peerSteps(&peer, &CProgressiveModel::occuredTimerEvent);
        peer.animate(true, 1, 0);
        QTRY_VERIFY(peerSteps.count() >= 5);
        stepsInTheBox = steps.count() - before;
    });
    QTRY_COMPARE(stepsInTheBox, 0);
    QTRY_VERIFY(!window.root()->isVisible());
}

void tst_KavlorSplashWindow::theWindowIsHiddenBeforeItSaysThatTheStartFailed()
{
    RootWindow window;
    ScriptedService::Step cut;
    cut.operation = "GetServiceTerms";
    cut.then = ScriptedService::Close;
    window.service.expect(cut);
    window.start();
    const auto *splash = window.shown<CKavlorSplashWindow>();
    QList<bool> visible;
    connect(splash, &CKavlorSplashWindow::initFails, this,
            [&] { visible.append(splash->isVisible()); });
    QTRY_VERIFY(!window.root()->isVisible());
    QCOMPARE(visible, QList<bool>{false});
}

void tst_KavlorSplashWindow::afterTheFirstErrorEveryReplyIsIgnored()
{
    RootWindow window;
    testTimeConstants().exitDelay = 60000;
    ScriptedService::Step cut;
    cut.operation = "GetServiceTerms";
    cut.then = ScriptedService::Close;
    window.service.expect(cut);
    window.start();
    auto *splash = window.root()->findChild<CKavlorSplashWindow *>();
    QSignalSpy fails(splash, &CKavlorSplashWindow::initFails);
    QTRY_COMPARE(fails.count(), 1);
    splash->requestDone(QString(), QStringLiteral("a second error"));
    splash->requestDone(QStringLiteral("late terms"), QString());
    QCOMPARE(window.dialogs.boxes().size(), 1);
    QCOMPARE(fails.count(), 1);
    QCOMPARE(window.root()->termsText(), QString());
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::offlineTheStartEndsWithOneBoxAndNoRequest()
{
    RootWindow window;
    testTimeConstants().connectionWait = 50;
    window.connector.reportState(OnlineConnector::Disconnected);
    window.start();
    QTRY_VERIFY(!window.root()->isVisible());
    QCOMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(window.dialogs.boxes().constFirst().text.endsWith(
        QStringLiteral("Unable to create a connection")));
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::aWindowClosedWhileWaitingForAConnectionIsToldNothing()
{
    RootWindow window;
    testTimeConstants().connectionWait = 100;
    window.connector.reportState(OnlineConnector::Disconnected);
    bool isClosed = false;
    QTimer close;
    connect(&close, &QTimer::timeout, this, [&] {
        if (isClosed || message(window) != QStringLiteral("requesting terms data"))
            return;
        isClosed = true;
        QApplication::closeAllWindows();
    });
    window.start();
    close.start(0);
    QTRY_VERIFY(isClosed);
    QVERIFY(!window.root()->isVisible());
    QCOMPARE(window.dialogs.boxes().size(), 0);
    QVERIFY2(window.service.isDone(), window.service.report());
}

void tst_KavlorSplashWindow::versionAndStripAreShown()
{
    RootWindow window;
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start();
    QCOMPARE(window.text("version"), QStringLiteral("kavlor 0.1.6 beta"));
    QCOMPARE(window.root()->windowTitle(), QStringLiteral("kavlor"));
    QVERIFY(window.root()->isVisible());
    auto *strip = window.find<QTableView>("splashProgress");
    QVERIFY(strip);
    QCOMPARE(strip->model()->columnCount(), 8);
    QVERIFY(!window.find<QLabel>("kavlorLogoLabel")->pixmap().isNull());
}

void tst_KavlorSplashWindow::theStripSweepsFromItsFirstCell()
{
    RootWindow window;
    testTimeConstants().progressStep = 1;
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start();
    CProgressiveModel *model = strip(window);
    const CProgressiveModel dark(nullptr, 1, 0);
    const QVariant unlit = dark.index(0, 0).data(Qt::DecorationRole);
    QList<int> seen; // the lit column after each step, -1 for none
    const auto look = [&] {
        int lit = -1;
        for (int column = 0; column < model->columnCount(); ++column) {
            if (model->index(0, column).data(Qt::DecorationRole) != unlit)
                lit = column;
        }
        seen.append(lit);
    };
    look();
    // From 5 percent by 12 a step; the light turns at the end.
    const QList<int> expected{0, 1, 2, 3, 4, 5, 6, 7, 7, 6};
    connect(model, &CProgressiveModel::occuredTimerEvent, this, look);
    QTRY_VERIFY(seen.size() >= expected.size());
    QCOMPARE(seen.mid(0, expected.size()), expected);
}

void tst_KavlorSplashWindow::aLoginWithoutPasswordIsNotValidated()
{
    RootWindow window;
    window.remember(QStringLiteral("m1"), QString());
    window.scriptStart();
    window.start();
    QTRY_VERIFY(window.shown<FrameWelcomeKavlor>());
    QCOMPARE(window.service.operations(), (QList<QByteArray>{"GetServiceTerms", "GetCountryList"}));
    QCOMPARE(window.settings.value(QStringLiteral("last/USERID")).toString(), QString());
}

void tst_KavlorSplashWindow::handsOverOnlyOnce()
{
    RootWindow window;
    QVERIFY(window.startAtWelcome());
    QTRY_VERIFY(!window.root()->findChild<CKavlorSplashWindow *>());
    QCOMPARE(window.root()->findChildren<FrameWelcomeKavlor *>().size(), 1);
}

void tst_KavlorSplashWindow::theLegalNoticeIsOneLine()
{
    RootWindow window;
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start();
    window.root()->resize(800, 424);
    const auto *notice = window.find<QLabel>("labelLegalNotice");
    QVERIFY(notice);
    QTRY_VERIFY(notice->width() > 0 && notice->width() <= 800);
    QVERIFY(notice->fontMetrics().horizontalAdvance(notice->text()) <= notice->width());
}

KAVLOR_TEST_MAIN(tst_KavlorSplashWindow)
#include "tst_kavlorsplashwindow.moc"
