// SPDX-License-Identifier: MIT

#include "connector.h"
#include "privatebus.h"
#include "standindaemon.h"
#include "standingconf.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDBusAbstractInterface>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QProcess>
#include <QSignalSpy>

#include <memory>

namespace {

const char autoConnect[] = "/system/osso/connectivity/network_type/auto_connect";

// How a run of the probe ended.
struct Outcome
{
    QStringList output;
    QStringList errors;
    int exitCode = -1;
    bool crashed = true;
};

// Runs the probe until it has printed so many lines, then lets it end.
Outcome runProbe(const QStringList &operations, int lines,
                 const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.start(QStringLiteral(KAVLOR_CONNECTOR_PROBE), operations);
    Outcome outcome;
    while (outcome.output.size() < lines && (probe.canReadLine() || probe.waitForReadyRead())) {
        while (probe.canReadLine())
            outcome.output.append(QString::fromUtf8(probe.readLine()).trimmed());
    }
    probe.closeWriteChannel();
    probe.waitForFinished();
    outcome.output += QString::fromUtf8(probe.readAllStandardOutput())
                          .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    outcome.errors = QString::fromUtf8(probe.readAllStandardError())
                         .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    outcome.exitCode = probe.exitCode();
    outcome.crashed = probe.exitStatus() != QProcess::NormalExit;
    return outcome;
}

} // namespace

class tst_Connector : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void instanceIsTheLivingObject();
    void isNotConnectedBeforeAnyReport();
    void asksForTheStateAtOnce();
    void connectedStates_data();
    void connectedStates();
    void firstReportIsAlwaysPassedOn_data();
    void firstReportIsAlwaysPassedOn();
    void shortReportCountsAsTheFirst();
    void repeatedReportIsSwallowed();
    void reportCarriesItsArgumentsUnchanged();
    void shortReportsAreSurvived_data();
    void shortReportsAreSurvived();
    void updateStateTakesAnyMessage();
    void connectSendsAnUnsignedOne();
    void disconnectSendsAnUnsignedOne();
    void smartConnectDoesNothingWhileConnected_data();
    void smartConnectDoesNothingWhileConnected();
    void smartConnectFollowsTheSetting_data();
    void smartConnectFollowsTheSetting();
    void chooserIsTriedThreeTimes_data();
    void chooserIsTriedThreeTimes();
    void slowChooserIsOpenedOnce();
    void chooserThatGoesInMidCallIsNotOpenedAgain();
    void stateIsKnownOnceTheAnswerAndItsReportsAreThere_data();
    void stateIsKnownOnceTheAnswerAndItsReportsAreThere();
    void stateIsKnownWithoutADaemon();
    void withoutGConfTheSettingIsNotConsulted();
    void daemonMayComeLaterAndGoAndComeBack();
    void withoutADaemonCallsFailSilently();
    void withoutItsInterfacesEachOperationSaysSo();
    void whatItSaysHasACategoryOfItsOwn();
    void silentDaemonIsNotWaitedFor();
    void worksBeforeTheApplicationObject();
    void withoutAnyBusNothingHappens();

private:
    void make();

    StandInGConf m_gconf;
    PrivateBus m_bus;
    std::unique_ptr<StandInDaemon> m_daemon;
    std::unique_ptr<CConnector> m_connector;
};

void tst_Connector::initTestCase()
{
    QVERIFY(m_bus.start());
}

void tst_Connector::init()
{
    TestCase::init();
    m_daemon = std::make_unique<StandInDaemon>(m_bus.address());
    QVERIFY(m_daemon->enter());
}

void tst_Connector::cleanup()
{
    m_connector.reset();
    m_daemon.reset();
}

void tst_Connector::make()
{
    m_connector = std::make_unique<CConnector>();
    QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("state_req")});
    m_daemon->takeCalls();
}

void tst_Connector::instanceIsTheLivingObject()
{
    QCOMPARE(CConnector::instance(), nullptr);
    make();
    QCOMPARE(CConnector::instance(), m_connector.get());
    m_connector.reset();
    QCOMPARE(CConnector::instance(), nullptr);
}

void tst_Connector::isNotConnectedBeforeAnyReport()
{
    make();
    QVERIFY(!m_connector->isConnected());
}

void tst_Connector::asksForTheStateAtOnce()
{
    m_daemon->setState(2);
    m_connector = std::make_unique<CConnector>();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    QTRY_COMPARE(changes.size(), 1);
    QVERIFY(m_connector->isConnected());
    const QList<StandInDaemon::Call> calls = m_daemon->takeCalls();
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().member, QStringLiteral("state_req"));
    QCOMPARE(calls.first().signature, QString());
}

void tst_Connector::connectedStates_data()
{
    QTest::addColumn<quint32>("state");
    QTest::addColumn<bool>("connected");

    QTest::newRow("disconnected") << 0U << false;
    QTest::newRow("connecting") << 1U << false;
    QTest::newRow("connected") << 2U << true;
    QTest::newRow("disconnecting") << 3U << true;
    QTest::newRow("limited enabled") << 4U << true;
    QTest::newRow("limited disabled") << 5U << false;
    QTest::newRow("search begins") << 8U << false;
    QTest::newRow("search ends") << 9U << false;
    QTest::newRow("largest") << 0xFFFFFFFFU << false;
}

void tst_Connector::connectedStates()
{
    QFETCH(quint32, state);
    QFETCH(bool, connected);

    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    // From the opposite, so that the report makes the difference.
    m_daemon->reportState(connected ? 6 : 2);
    QTRY_COMPARE(changes.size(), 1);
    QCOMPARE(m_connector->isConnected(), !connected);

    bool connectedWhenTold = !connected;
    connect(m_connector.get(), &CConnector::connectionStateChanged, this,
            [&] { connectedWhenTold = m_connector->isConnected(); });
    m_daemon->reportState(state);
    QTRY_COMPARE(changes.size(), 2);
    QCOMPARE(m_connector->isConnected(), connected);
    QCOMPARE(connectedWhenTold, connected);
}

void tst_Connector::firstReportIsAlwaysPassedOn_data()
{
    QTest::addColumn<QList<QVariant>>("arguments");

    QTest::newRow("state 0") << StandInDaemon::stateArguments(0);
    QTest::newRow("state 2") << StandInDaemon::stateArguments(2);
    QTest::newRow("no state") << QList<QVariant>{QString(), 8U};
}

void tst_Connector::firstReportIsAlwaysPassedOn()
{
    QFETCH(QList<QVariant>, arguments);

    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_daemon->report(arguments);
    QTRY_COMPARE(changes.size(), 1);
    QCOMPARE(changes.first().first().toList(), arguments);
}

// What repeats state 0 after it tells nothing new.
void tst_Connector::shortReportCountsAsTheFirst()
{
    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    const QList<QVariant> search{QString(), 8U};
    m_daemon->report(search);
    m_daemon->report(StandInDaemon::stateArguments(0));
    m_daemon->report(StandInDaemon::stateArguments(4));
    QTRY_VERIFY(m_connector->isConnected());
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(0).first().toList(), search);
    QCOMPARE(changes.at(1).first().toList(), StandInDaemon::stateArguments(4));
}

void tst_Connector::repeatedReportIsSwallowed()
{
    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    for (const quint32 state : {0U, 0U, 2U, 2U, 2U, 0U, 0U, 4U})
        m_daemon->reportState(state);
    QTRY_COMPARE(changes.value(changes.size() - 1).value(0).toList().value(7).toUInt(), 4U);
    QList<quint32> states;
    for (const QList<QVariant> &change : std::as_const(changes))
        states.append(change.first().toList().at(7).toUInt());
    QCOMPARE(states, (QList<quint32>{0, 2, 0, 4}));
}

void tst_Connector::reportCarriesItsArgumentsUnchanged()
{
    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    const QList<QVariant> arguments{
        QStringLiteral("type"),  1U, QStringLiteral("service"),
        QStringLiteral("GPRS"),  7U, QByteArray("\0id", 3),
        QStringLiteral("error"), 2U, QStringLiteral("more"),
    };
    m_daemon->report(arguments);
    QTRY_COMPARE(changes.size(), 1);
    QCOMPARE(changes.first().first().toList(), arguments);
    QVERIFY(m_connector->isConnected());
}

void tst_Connector::shortReportsAreSurvived_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("passedOn");

    // With seven arguments the state becomes 0; with fewer it stays and there is nothing to pass
    // on.
    QTest::newRow("seven") << 7 << true;
    for (int length = 6; length >= 0; --length)
        QTest::addRow("%d", length) << length << false;
}

void tst_Connector::shortReportsAreSurvived()
{
    QFETCH(int, length);
    QFETCH(bool, passedOn);

    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_daemon->reportState(2);
    QTRY_COMPARE(changes.size(), 1);
    m_daemon->report(StandInDaemon::stateArguments(2).first(length));
    m_daemon->reportState(4);
    QTRY_COMPARE(changes.size(), passedOn ? 3 : 2);
    QVERIFY(m_connector->isConnected());
    if (passedOn)
        QCOMPARE(changes.at(1).first().toList().size(), length);
}

void tst_Connector::updateStateTakesAnyMessage()
{
    make();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_connector->updateState(QDBusMessage());
    QCOMPARE(changes.size(), 1);

    QDBusMessage report = QDBusMessage::createSignal(QStringLiteral("/x"), QStringLiteral("x.y"),
                                                     QStringLiteral("state_sig"));
    report.setArguments(StandInDaemon::stateArguments(3));
    m_connector->updateState(report);
    QVERIFY(m_connector->isConnected());
    report.setArguments(QList<QVariant>(8, QStringLiteral("no number")));
    m_connector->updateState(report);
    QVERIFY(!m_connector->isConnected());
    QCOMPARE(changes.size(), 3);
}

void tst_Connector::connectSendsAnUnsignedOne()
{
    make();
    m_connector->connect();
    QTRY_COMPARE(m_daemon->members().size(), 1);
    const QList<StandInDaemon::Call> calls = m_daemon->takeCalls();
    QCOMPARE(calls.first().member, QStringLiteral("connect_req"));
    QCOMPARE(calls.first().signature, QStringLiteral("u"));
    QCOMPARE(calls.first().arguments, (QList<QVariant>{1U}));
}

void tst_Connector::disconnectSendsAnUnsignedOne()
{
    make();
    m_connector->disconnect();
    QTRY_COMPARE(m_daemon->members().size(), 1);
    const QList<StandInDaemon::Call> calls = m_daemon->takeCalls();
    QCOMPARE(calls.first().member, QStringLiteral("disconnect_req"));
    QCOMPARE(calls.first().signature, QStringLiteral("u"));
    QCOMPARE(calls.first().arguments, (QList<QVariant>{1U}));
}

void tst_Connector::smartConnectDoesNothingWhileConnected_data()
{
    QTest::addColumn<quint32>("state");

    QTest::newRow("connected") << 2U;
    QTest::newRow("disconnecting") << 3U;
    QTest::newRow("limited") << 4U;
}

void tst_Connector::smartConnectDoesNothingWhileConnected()
{
    QFETCH(quint32, state);

    make();
    m_daemon->reportState(state);
    QTRY_VERIFY(m_connector->isConnected());
    QTest::ignoreMessage(QtDebugMsg, "CConnector::smartConnect: no interface");
    m_connector->smartConnect();
    m_connector->disconnect(); // which comes after whatever that has sent
    QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("disconnect_req")});
}

void tst_Connector::smartConnectFollowsTheSetting_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<QString>("member");

    const QString connectCall = QStringLiteral("connect_req");
    const QString chooserCall = QStringLiteral("show_conn_dlg");
    QTest::newRow("unset") << QString() << QString()
                           << QStringLiteral(
                                  "Warning: CGConfBackend::value got a NULL value for key: \"%1\"")
                                  .arg(QLatin1String(autoConnect))
                           << chooserCall;
    QTest::newRow("empty text") << "string" << QString() << QString() << chooserCall;
    QTest::newRow("any network") << "string"
                                 << "*" << QString() << connectCall;
    QTest::newRow("list of any network") << "list"
                                         << "*" << QString() << connectCall;
    QTest::newRow("list of two") << "list"
                                 << "WLAN_INFRA,GPRS" << QString() << connectCall;
    QTest::newRow("empty list") << "list" << QString() << QString() << chooserCall;
    QTest::newRow("float") << "float"
                           << "1.5"
                           << QStringLiteral(
                                  "CGConfBackend::value: the type 3 is not yet supported.")
                           << chooserCall;
    QTest::newRow("number") << "int"
                            << "0" << QString() << connectCall;
    QTest::newRow("truth") << "bool"
                           << "false" << QString() << connectCall;
}

void tst_Connector::smartConnectFollowsTheSetting()
{
    QFETCH(QString, type);
    QFETCH(QString, value);
    QFETCH(QString, warning);
    QFETCH(QString, member);

    make();
    const QString key = QLatin1String(autoConnect);
    QVERIFY(type.isEmpty() ? m_gconf.unset(key) : m_gconf.set(key, type, value));
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
    m_connector->smartConnect();
    QTRY_COMPARE(m_daemon->members(), QStringList{member});
}

void tst_Connector::chooserIsTriedThreeTimes_data()
{
    QTest::addColumn<int>("failures");
    QTest::addColumn<int>("calls");

    QTest::newRow("works") << 0 << 1;
    QTest::newRow("fails once") << 1 << 2;
    QTest::newRow("fails twice") << 2 << 3;
    QTest::newRow("fails three times") << 3 << 3;
    QTest::newRow("fails always") << 100 << 3;
}

void tst_Connector::chooserIsTriedThreeTimes()
{
    QFETCH(int, failures);
    QFETCH(int, calls);

    make();
    m_daemon->failChooser(failures);
    m_connector->selectConnection();
    QTRY_COMPARE(m_daemon->members().size(), calls);
    const QList<StandInDaemon::Call> shown = m_daemon->takeCalls();
    for (const StandInDaemon::Call &call : shown) {
        QCOMPARE(call.member, QStringLiteral("show_conn_dlg"));
        QCOMPARE(call.signature, QStringLiteral("b"));
        QCOMPARE(call.arguments, (QList<QVariant>{false}));
    }

    // The last answer is followed by no call: one that is made after it comes alone.
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_daemon->reportState(2);
    QTRY_COMPARE(changes.size(), 1);
    m_connector->disconnect();
    QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("disconnect_req")});
}

void tst_Connector::slowChooserIsOpenedOnce()
{
    make();
    m_daemon->hold(QStringLiteral("show_conn_dlg"));
    m_connector->selectConnection();
    QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("show_conn_dlg")});
    m_daemon->release(); // the member has chosen
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_daemon->reportState(2);
    QTRY_COMPARE(changes.size(), 1);
    QCOMPARE(m_daemon->members(), QStringList{QStringLiteral("show_conn_dlg")});
}

void tst_Connector::chooserThatGoesInMidCallIsNotOpenedAgain()
{
    make();
    m_daemon->hold(QStringLiteral("show_conn_dlg"));
    m_connector->selectConnection();
    QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("show_conn_dlg")});
    // The bus answers for the one that has gone. Another takes its place.
    m_daemon = std::make_unique<StandInDaemon>(m_bus.address());
    QVERIFY(m_daemon->enter());
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_daemon->reportState(2);
    QTRY_COMPARE(changes.size(), 1);
    m_connector->disconnect();
    QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("disconnect_req")});
}

void tst_Connector::stateIsKnownOnceTheAnswerAndItsReportsAreThere_data()
{
    QTest::addColumn<quint32>("state");
    QTest::addColumn<bool>("answerFirst");

    QTest::newRow("nothing to report") << 0U << false;
    QTest::newRow("report, answer") << 2U << false;
    QTest::newRow("answer, report") << 2U << true;
}

void tst_Connector::stateIsKnownOnceTheAnswerAndItsReportsAreThere()
{
    QFETCH(quint32, state);
    QFETCH(bool, answerFirst);

    m_daemon->setState(state);
    m_daemon->setAnswerBeforeReports(answerFirst);
    m_daemon->hold(QStringLiteral("state_req"));
    make();
    QVERIFY(!m_connector->isStateKnown());
    m_daemon->release();
    QTRY_VERIFY(m_connector->isStateKnown());
    QCOMPARE(m_connector->isConnected(), state != 0);
}

void tst_Connector::stateIsKnownWithoutADaemon()
{
    m_daemon->leave();
    m_connector = std::make_unique<CConnector>();
    QTRY_VERIFY(m_connector->isStateKnown());
    QVERIFY(!m_connector->isConnected());
}

void tst_Connector::withoutGConfTheSettingIsNotConsulted()
{
    // The loader finds this folder's library first, and it is none.
    QTemporaryDir folder;
    QFile library(folder.filePath(QStringLiteral("libgconf-2.so.4")));
    QVERIFY(library.open(QIODevice::WriteOnly));
    library.write("no library\n");
    library.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), folder.path());

    QVERIFY(m_gconf.unset(QLatin1String(autoConnect)));
    const Outcome outcome = runProbe({QStringLiteral("smartConnect")}, 1, environment);
    QCOMPARE(outcome.errors, QStringList());
    QCOMPARE(outcome.exitCode, 0);
    QTRY_COMPARE(m_daemon->members(),
                 (QStringList{QStringLiteral("state_req"), QStringLiteral("connect_req")}));
}

void tst_Connector::daemonMayComeLaterAndGoAndComeBack()
{
    m_daemon->leave();
    m_connector = std::make_unique<CConnector>();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);

    for (const quint32 state : {2U, 0U, 4U}) {
        QVERIFY(m_daemon->enter());
        changes.clear();
        m_daemon->reportState(state);
        QTRY_COMPARE(changes.size(), 1);
        QCOMPARE(m_connector->isConnected(), state != 0);
        m_connector->connect();
        QTRY_COMPARE(m_daemon->members(), QStringList{QStringLiteral("connect_req")});
        m_daemon->takeCalls();
        m_daemon->leave();
        m_connector->connect();
        QCOMPARE(m_connector->isConnected(), state != 0);
    }

    // Another process takes the daemon's place.
    m_daemon = std::make_unique<StandInDaemon>(m_bus.address());
    QVERIFY(m_daemon->enter());
    changes.clear();
    m_daemon->setState(2);
    m_connector->requestConnectionState();
    QTRY_COMPARE(changes.size(), 1);
    QVERIFY(m_connector->isConnected());
}

void tst_Connector::withoutADaemonCallsFailSilently()
{
    m_daemon->leave();
    m_connector = std::make_unique<CConnector>();
    QSignalSpy changes(m_connector.get(), &CConnector::connectionStateChanged);
    m_connector->requestConnectionState();
    m_connector->selectConnection();
    m_connector->connect();
    m_connector->disconnect();
    QVERIFY(!m_connector->isConnected());
    QTRY_VERIFY(m_connector->isStateKnown()); // that much was answered by the bus
    QVERIFY(!m_connector->isConnected());
    QCOMPARE(changes.size(), 0);
    QCOMPARE(m_daemon->members(), QStringList());
}

void tst_Connector::withoutItsInterfacesEachOperationSaysSo()
{
    make();
    qDeleteAll(m_connector->findChildren<QDBusAbstractInterface *>());
    for (const char *line :
         {"CConnector::requestConnectionState: no interface",
          "CConnector::selectConnection: no interface", "CConnector::connect: no interface",
          "CConnector::smartConnect: no interface", "CConnector::disconnect: no interface"})
        QTest::ignoreMessage(QtDebugMsg, line);
    m_connector->requestConnectionState();
    m_connector->selectConnection();
    m_connector->connect();
    m_connector->smartConnect();
    m_connector->disconnect();

    // It still hears what the daemon reports, which comes after any call that had been sent.
    m_daemon->reportState(2);
    QTRY_VERIFY(m_connector->isConnected());
    QCOMPARE(m_daemon->members(), QStringList());
}

void tst_Connector::whatItSaysHasACategoryOfItsOwn()
{
    static QByteArrayList categories;
    make();
    qDeleteAll(m_connector->findChildren<QDBusAbstractInterface *>());
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &) {
            categories.append(context.category);
        });
    m_connector->connect();
    qInstallMessageHandler(before);
    QCOMPARE(categories, QByteArrayList{"kavlor.connector"});
}

void tst_Connector::silentDaemonIsNotWaitedFor()
{
    m_daemon->setSilent(true);
    QElapsedTimer timer;
    timer.start();
    m_connector = std::make_unique<CConnector>();
    m_connector->connect();
    m_connector->selectConnection();
    m_connector->disconnect();
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    QTRY_COMPARE(m_daemon->members(),
                 (QStringList{QStringLiteral("state_req"), QStringLiteral("connect_req"),
                              QStringLiteral("show_conn_dlg"), QStringLiteral("disconnect_req")}));

    // A report is taken all the same.
    m_daemon->reportState(2);
    QTRY_VERIFY(m_connector->isConnected());
}

void tst_Connector::worksBeforeTheApplicationObject()
{
    m_daemon->setState(1);
    m_daemon->setStateOnConnect(2);
    const Outcome outcome = runProbe({QStringLiteral("connect")}, 3);
    QCOMPARE(outcome.errors, QStringList());
    QCOMPARE(outcome.output,
             (QStringList{QStringLiteral("ready"), QStringLiteral("state 1 not connected"),
                          QStringLiteral("state 2 connected")}));
    QVERIFY(!outcome.crashed);
    QCOMPARE(outcome.exitCode, 0);
}

void tst_Connector::withoutAnyBusNothingHappens()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                       QStringLiteral("unix:path=/nonexistent/system-bus"));
    const Outcome outcome = runProbe({QStringLiteral("connect"), QStringLiteral("disconnect"),
                                      QStringLiteral("selectConnection")},
                                     1, environment);
    QCOMPARE(outcome.errors, QStringList());
    QCOMPARE(outcome.output, QStringList{QStringLiteral("ready")});
    QVERIFY(!outcome.crashed);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(m_daemon->members(), QStringList());
}

KAVLOR_TEST_MAIN(tst_Connector)
#include "tst_connector.moc"
