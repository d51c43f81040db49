// SPDX-License-Identifier: MIT

#include "connector.h"
#include "httptolvex.h"
#include "privatebus.h"
#include "scriptedservice.h"
#include "standindaemon.h"
#include "standingconf.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QElapsedTimer>
#include <QFrame>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTimer>
#include <QWindow>

#include <qpa/qwindowsysteminterface.h>

#include <memory>

namespace {

const char autoConnect[] = "/system/osso/connectivity/network_type/auto_connect";

// The request under test with what came of it.
class Request
{
public:
    void send()
    {
        m_http->getServiceTerms();
    }
    void drop()
    {
        m_http.reset();
    }
    int resultCount() const
    {
        return static_cast<int>(m_results.size());
    }
    QString response() const
    {
        return m_results.value(0).value(0).toString();
    }
    QString error() const
    {
        return m_results.value(0).value(1).toString();
    }

private:
    std::unique_ptr<CHttpTolvex> m_http = std::make_unique<CHttpTolvex>();
    QSignalSpy m_results{m_http.get(),
                         qOverload<QString, QString>(&CHttpTolvex::requestIsFinished)};
};

} // namespace

/**
 * How a request gets its network connection: the request object, the connection manager and the
 * daemon on a real bus together.
 */
class tst_ConnectionWait : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void sentAtOnceInAConnectedState_data();
    void sentAtOnceInAConnectedState();
    void connectionIsAskedForInOtherStates_data();
    void connectionIsAskedForInOtherStates();
    void emptySettingShowsTheChooser_data();
    void emptySettingShowsTheChooser();
    void noConnectionIsReportedOnceAndNothingIsSent_data();
    void noConnectionIsReportedOnceAndNothingIsSent();
    void lateConnectionSendsNothing();
    void searchReportsDoNotEndTheWait();
    void limitThatPassesAfterTheConnectionIsHarmless();
    void secondRequestDoesNotAskAgain();
    void daemonMayComeDuringTheWait();
    void daemonMayGoDuringTheWait();
    void onlineAtTheStartNoConnectionIsAskedFor_data();
    void onlineAtTheStartNoConnectionIsAskedFor();
    void silentDaemonIsAskedForAConnectionAllTheSame();
    void closedWindowEndsTheWait_data();
    void closedWindowEndsTheWait();
    void endOfTheProgramEndsTheWait();
    void inputIsDeadAndTimersLiveDuringTheWait();
    void aDialogDuringTheWaitCanBeAnswered();
    void requestMayBeDeletedDuringTheWait();
    void twoRequestsMayWait();

private:
    bool configure(const char *setting);
    void goOffline(quint32 state = 0);

    StandInGConf m_gconf;
    PrivateBus m_bus;
    std::unique_ptr<StandInDaemon> m_daemon;
    std::unique_ptr<CConnector> m_connector;
    std::unique_ptr<ScriptedService> m_service;
};

void tst_ConnectionWait::initTestCase()
{
    QVERIFY(m_bus.start());
}

void tst_ConnectionWait::init()
{
    TestCase::init();
    testTimeConstants().connectionWait = 10000;
    QVERIFY(configure("*"));
    m_daemon = std::make_unique<StandInDaemon>(m_bus.address());
    QVERIFY(m_daemon->enter());
    m_service = std::make_unique<ScriptedService>();
    m_connector = std::make_unique<CConnector>();
    QTRY_VERIFY(m_connector->isStateKnown());
}

void tst_ConnectionWait::cleanup()
{
    QVERIFY2(m_service->isDone(), m_service->report());
    m_service.reset();
    m_connector.reset();
    m_daemon.reset();
}

bool tst_ConnectionWait::configure(const char *setting)
{
    return m_gconf.set(QLatin1String(autoConnect), QStringLiteral("string"),
                       QLatin1String(setting));
}

// Has the daemon report a state that is not connected, and forgets the calls until then.
void tst_ConnectionWait::goOffline(quint32 state)
{
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_daemon->reportState(state);
    QTRY_COMPARE(changes.size(), 1);
    QVERIFY(!m_connector->isConnected());
    m_daemon->takeCalls();
}

void tst_ConnectionWait::sentAtOnceInAConnectedState_data()
{
    QTest::addColumn<quint32>("state");

    QTest::newRow("connected") << 2U;
    QTest::newRow("disconnecting") << 3U;
    QTest::newRow("limited") << 4U;
}

void tst_ConnectionWait::sentAtOnceInAConnectedState()
{
    QFETCH(quint32, state);

    m_daemon->reportState(state);
    QTRY_VERIFY(m_connector->isConnected());
    m_daemon->takeCalls();

    m_service->expect("GetServiceTerms", "terms");
    Request request;
    request.send();
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
    QCOMPARE(request.error(), QString());
    QCOMPARE(m_daemon->members(), QStringList());
}

void tst_ConnectionWait::connectionIsAskedForInOtherStates_data()
{
    QTest::addColumn<quint32>("state");

    QTest::newRow("disconnected") << 0U;
    QTest::newRow("connecting") << 1U;
    QTest::newRow("limited disabled") << 5U;
    QTest::newRow("searching") << 8U;
}

void tst_ConnectionWait::connectionIsAskedForInOtherStates()
{
    QFETCH(quint32, state);

    goOffline(state);
    m_daemon->setStateOnConnect(2);
    m_service->expect("GetServiceTerms", "terms");
    Request request;
    request.send();
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
    QCOMPARE(request.error(), QString());
    QCOMPARE(m_daemon->members(), QStringList{QStringLiteral("connect_req")});
}

void tst_ConnectionWait::emptySettingShowsTheChooser_data()
{
    QTest::addColumn<int>("failures");
    QTest::addColumn<int>("calls");

    QTest::newRow("shown at once") << 0 << 1;
    QTest::newRow("shown the third time") << 2 << 3;
    QTest::newRow("never shown") << 3 << 3;
}

void tst_ConnectionWait::emptySettingShowsTheChooser()
{
    QFETCH(int, failures);
    QFETCH(int, calls);

    QVERIFY(configure(""));
    goOffline();
    m_daemon->failChooser(failures);
    m_service->expect("GetServiceTerms", "terms");
    // The member chooses a network once the chooser has been asked for so often.
    QTimer choice;
    connect(&choice, &QTimer::timeout, this, [&] {
        if (m_daemon->members().size() < calls)
            return;
        choice.stop();
        m_daemon->reportState(2);
    });
    choice.start(5);
    Request request;
    request.send();
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
    QCOMPARE(m_daemon->members(), QStringList(calls, QStringLiteral("show_conn_dlg")));
}

void tst_ConnectionWait::noConnectionIsReportedOnceAndNothingIsSent_data()
{
    QTest::addColumn<bool>("daemonIsThere");

    QTest::newRow("daemon finds none") << true;
    QTest::newRow("no daemon") << false;
}

void tst_ConnectionWait::noConnectionIsReportedOnceAndNothingIsSent()
{
    QFETCH(bool, daemonIsThere);

    if (!daemonIsThere)
        m_daemon->leave();
    testTimeConstants().connectionWait = 200;
    testTimeConstants().formTimeout = 50;
    Request request;
    QElapsedTimer timer;
    timer.start();
    request.send();
    // Reported before the operation returns, and not before the time is over.
    QCOMPARE(request.resultCount(), 1);
    QVERIFY2(timer.elapsed() >= 150, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(request.response(), QStringLiteral("ERROR:no connection"));
    QCOMPARE(request.error(), QStringLiteral("Unable to create a connection"));

    // Nothing was started that would end later: twice the response time-out brings nothing more.
    bool over = false;
    QTimer::singleShot(2 * testTimeConstants().formTimeout, this, [&] { over = true; });
    QTRY_VERIFY(over);
    QCOMPARE(request.resultCount(), 1);
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_ConnectionWait::lateConnectionSendsNothing()
{
    testTimeConstants().connectionWait = 50;
    Request request;
    request.send();
    QCOMPARE(request.response(), QStringLiteral("ERROR:no connection"));
    m_daemon->reportState(2);
    QTRY_VERIFY(m_connector->isConnected());
    QCOMPARE(request.resultCount(), 1);
    QCOMPARE(m_service->connectionCount(), 0);

    // The next one on the same object goes.
    m_service->expect("GetServiceTerms", "terms");
    request.send();
    QTRY_COMPARE(request.resultCount(), 2);
}

void tst_ConnectionWait::searchReportsDoNotEndTheWait()
{
    testTimeConstants().connectionWait = 300;
    QTimer::singleShot(0, this, [this] {
        m_daemon->report({QString(), 8U});
        m_daemon->report({QString(), 9U});
        m_daemon->report({2U});
        m_daemon->report(StandInDaemon::stateArguments(2).first(7));
    });
    Request request;
    request.send();
    QCOMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("ERROR:no connection"));
}

void tst_ConnectionWait::limitThatPassesAfterTheConnectionIsHarmless()
{
    testTimeConstants().connectionWait = 300;
    goOffline();
    m_daemon->setStateOnConnect(4);
    m_service->expectHeld("GetServiceTerms", "terms");
    Request request;
    request.send();
    QCOMPARE(request.resultCount(), 0);
    bool passed = false;
    QTimer::singleShot(2 * testTimeConstants().connectionWait, this, [&] { passed = true; });
    QTRY_VERIFY(passed);
    QTRY_VERIFY(m_service->isHolding());
    QVERIFY(m_service->release());
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
}

void tst_ConnectionWait::secondRequestDoesNotAskAgain()
{
    goOffline();
    m_daemon->setStateOnConnect(2);
    Request request;
    for (int count = 1; count <= 2; ++count) {
        m_service->expect("GetServiceTerms", "terms");
        request.send();
        QTRY_COMPARE(request.resultCount(), count);
    }
    QCOMPARE(m_daemon->members(), QStringList{QStringLiteral("connect_req")});
}

void tst_ConnectionWait::daemonMayComeDuringTheWait()
{
    m_daemon->leave();
    m_service->expect("GetServiceTerms", "terms");
    QTimer::singleShot(0, this, [this] {
        QVERIFY(m_daemon->enter());
        m_daemon->reportState(2);
    });
    Request request;
    request.send();
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
}

void tst_ConnectionWait::daemonMayGoDuringTheWait()
{
    testTimeConstants().connectionWait = 300;
    goOffline();
    QTimer::singleShot(0, this, [this] {
        m_daemon->reportState(1);
        m_daemon->leave();
    });
    Request request;
    request.send();
    QCOMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("ERROR:no connection"));
}

void tst_ConnectionWait::onlineAtTheStartNoConnectionIsAskedFor_data()
{
    QTest::addColumn<bool>("answerFirst");

    QTest::newRow("report, answer") << false;
    QTest::newRow("answer, report") << true;
}

void tst_ConnectionWait::onlineAtTheStartNoConnectionIsAskedFor()
{
    QFETCH(bool, answerFirst);

    // As in the program's start: the first request comes before any event was handled, and while
    // the daemon has not answered.
    m_daemon->takeCalls();
    m_daemon->setState(2);
    m_daemon->setAnswerBeforeReports(answerFirst);
    m_daemon->hold(QStringLiteral("state_req"));
    m_connector = std::make_unique<CConnector>();
    QTimer answers;
    connect(&answers, &QTimer::timeout, this, [this] { m_daemon->release(); });
    answers.start(100);
    m_service->expect("GetServiceTerms", "terms");
    Request request;
    request.send();
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
    QCOMPARE(m_daemon->members(), QStringList{QStringLiteral("state_req")});
}

void tst_ConnectionWait::silentDaemonIsAskedForAConnectionAllTheSame()
{
    testTimeConstants().connectionWait = 600;
    testTimeConstants().stateAnswerWait = 100;
    m_daemon->takeCalls();
    m_daemon->setSilent(true);
    m_connector = std::make_unique<CConnector>();
    Request request;
    request.send();
    QCOMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("ERROR:no connection"));
    QCOMPARE(m_daemon->members(),
             (QStringList{QStringLiteral("state_req"), QStringLiteral("connect_req")}));
    QCOMPARE(m_service->connectionCount(), 0);

    // The next request asks at once.
    m_daemon->takeCalls();
    testTimeConstants().stateAnswerWait = 60000;
    QTimer::singleShot(200, this, [this] { m_daemon->reportState(2); });
    m_service->expect("GetServiceTerms", "terms");
    request.send();
    QTRY_COMPARE(request.resultCount(), 2);
    QCOMPARE(m_daemon->members(), QStringList{QStringLiteral("connect_req")});
}

void tst_ConnectionWait::closedWindowEndsTheWait_data()
{
    QTest::addColumn<bool>("byTheMember");

    QTest::newRow("by the member") << true;
    QTest::newRow("by the program") << false;
}

void tst_ConnectionWait::closedWindowEndsTheWait()
{
    QFETCH(bool, byTheMember);

    testTimeConstants().connectionWait = 60000;
    goOffline();
    QWidget window;
    auto *frame = new QFrame(&window);
    auto *http = new CHttpTolvex(frame);
    QSignalSpy results(http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTimer::singleShot(20, this, [&] {
        if (byTheMember) {
            QWindowSystemInterface::handleCloseEvent<QWindowSystemInterface::AsynchronousDelivery>(
                window.windowHandle());
        } else {
            window.close();
        }
    });
    QElapsedTimer timer;
    timer.start();
    http->getServiceTerms();
    QVERIFY2(timer.elapsed() < 30000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!window.isVisible());
    QCOMPARE(results.size(), 0);
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_ConnectionWait::endOfTheProgramEndsTheWait()
{
    testTimeConstants().connectionWait = 60000;
    goOffline();
    Request request;
    QTimer::singleShot(0, this, [&] { request.send(); });
    QTimer::singleShot(20, this, [] { QCoreApplication::quit(); });
    QElapsedTimer timer;
    timer.start();
    QCoreApplication::exec();
    QVERIFY2(timer.elapsed() < 30000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(request.resultCount(), 0);
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_ConnectionWait::inputIsDeadAndTimersLiveDuringTheWait()
{
    QWidget window;
    QPushButton button(&window);
    button.resize(200, 60);
    button.setFocusPolicy(Qt::NoFocus);
    QLineEdit line(&window);
    line.setGeometry(0, 80, 200, 40);
    line.setFocus();
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy clicks(&button, &QPushButton::clicked);
    QShortcut shortcut(QKeySequence(Qt::Key_F5), &window);
    QSignalSpy shortcuts(&shortcut, &QShortcut::activated);

    // The member clicks and types while the request waits, as the window system would tell it.
    const QPoint centre = button.rect().center();
    const auto mouse = [&](Qt::MouseButtons held, QEvent::Type type) {
        QWindowSystemInterface::handleMouseEvent<QWindowSystemInterface::AsynchronousDelivery>(
            window.windowHandle(), centre, button.mapToGlobal(centre), held, Qt::LeftButton, type);
    };
    const auto key = [&](Qt::Key code, const QString &text) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QWindowSystemInterface::handleKeyEvent<QWindowSystemInterface::AsynchronousDelivery>(
                window.windowHandle(), type, code, Qt::NoModifier, text);
        }
    };
    const auto use = [&] {
        mouse(Qt::LeftButton, QEvent::MouseButtonPress);
        mouse(Qt::NoButton, QEvent::MouseButtonRelease);
        key(Qt::Key_A, QStringLiteral("a"));
        key(Qt::Key_F5, QString());
        key(Qt::Key_B, QStringLiteral("b"));
    };
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, this, [&] {
        ++ticks;
        if (ticks == 2)
            use();
        if (ticks == 20)
            m_daemon->reportState(2);
    });

    goOffline();
    m_service->expectHeld("GetServiceTerms", "terms");
    Request request;
    ticker.start(5);
    request.send();
    QVERIFY(ticks >= 20);
    QCOMPARE(clicks.size(), 0);
    QCOMPARE(shortcuts.size(), 0);
    QCOMPARE(line.text(), QString());

    // What was clicked and typed is not lost: it is taken once the wait is over.
    QTRY_COMPARE(clicks.size(), 1);
    QTRY_COMPARE(line.text(), QStringLiteral("ab"));
    QTRY_COMPARE(shortcuts.size(), 1);
    QTRY_VERIFY(m_service->isHolding());
    m_service->release();
    QTRY_COMPARE(request.resultCount(), 1);
}

void tst_ConnectionWait::aDialogDuringTheWaitCanBeAnswered()
{
    goOffline();
    bool answered = false;
    QTimer::singleShot(20, this, [&] {
        QMessageBox box(QMessageBox::Information, QString(), QStringLiteral("Late news"),
                        QMessageBox::Ok);
        QTimer::singleShot(0, &box, [&box] {
            const QAbstractButton *button = box.button(QMessageBox::Ok);
            const QPoint where = button->mapTo(&box, button->rect().center());
            for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                QWindowSystemInterface::handleMouseEvent<
                    QWindowSystemInterface::AsynchronousDelivery>(
                    box.windowHandle(), where, box.mapToGlobal(where),
                    type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                    Qt::LeftButton, type);
            }
        });
        QTimer::singleShot(10000, &box, &QDialog::reject); // so that a failure ends
        answered = box.exec() == QMessageBox::Ok;
        m_daemon->reportState(2);
    });
    testTimeConstants().connectionWait = 30000;
    m_service->expect("GetServiceTerms", "terms");
    Request request;
    request.send();
    QVERIFY(answered);
    QTRY_COMPARE(request.resultCount(), 1);
    QCOMPARE(request.response(), QStringLiteral("terms"));
}

void tst_ConnectionWait::requestMayBeDeletedDuringTheWait()
{
    goOffline();
    Request request;
    QTimer::singleShot(20, this, [&] { request.drop(); });
    request.send();
    QCOMPARE(request.resultCount(), 0);
    QCOMPARE(m_service->connectionCount(), 0);
}

void tst_ConnectionWait::twoRequestsMayWait()
{
    goOffline();
    m_service->expect("GetServiceTerms", "terms");
    m_service->expect("GetServiceTerms", "terms");
    Request first;
    Request second;
    QTimer::singleShot(0, this, [&] { second.send(); });
    QTimer::singleShot(50, this, [this] { m_daemon->reportState(2); });
    first.send();
    QTRY_COMPARE(first.resultCount(), 1);
    QTRY_COMPARE(second.resultCount(), 1);
    QCOMPARE(first.response(), QStringLiteral("terms"));
    QCOMPARE(second.response(), QStringLiteral("terms"));
}

KAVLOR_TEST_MAIN(tst_ConnectionWait)
#include "tst_connectionwait.moc"
