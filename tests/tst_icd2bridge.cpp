// SPDX-License-Identifier: MIT

#include "connector.h"
#include "privatebus.h"
#include "processmemory.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>
#include <QSignalSpy>

#include <csignal>
#include <memory>

namespace {

const char daemonName[] = "com.nokia.icd2";
const char uiName[] = "com.nokia.icd_ui";
const char networkName[] = "org.freedesktop.NetworkManager";
const char networkPath[] = "/org/freedesktop/NetworkManager";

/** The state signals of the bridge, as they came. */
class Reports : public QObject
{
    Q_OBJECT

public:
    QStringList signatures() const
    {
        QStringList texts;
        for (const QDBusMessage &message : messages)
            texts.append(message.signature());
        return texts;
    }
    QList<quint32> states() const
    {
        QList<quint32> numbers;
        for (const QDBusMessage &message : messages)
            numbers.append(message.arguments().constLast().toUInt());
        return numbers;
    }

    QList<QDBusMessage> messages;

public slots:
    void add(const QDBusMessage &message)
    {
        messages.append(message);
    }
};

/** What a desktop's network service says of its network. */
class NetworkService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.NetworkManager")
    Q_PROPERTY(uint State MEMBER m_state)
    Q_PROPERTY(uint Connectivity MEMBER m_connectivity)

public:
    explicit NetworkService(uint state)
        : m_state(state)
    {
    }
    ~NetworkService() override
    {
        // Whatever a test came to: the next one has no such service.
        QDBusConnection::systemBus().unregisterService(QLatin1String(networkName));
    }
    Q_DISABLE_COPY_MOVE(NetworkService)

    bool appear()
    {
        QDBusConnection bus = QDBusConnection::systemBus();
        return bus.registerObject(QLatin1String(networkPath), this,
                                  QDBusConnection::ExportAllProperties)
            && bus.registerService(QLatin1String(networkName));
    }

    void setState(uint state)
    {
        m_state = state;
        tell("State", state);
    }
    void setConnectivity(uint connectivity)
    {
        m_connectivity = connectivity;
        tell("Connectivity", connectivity);
    }

private:
    static void tell(const char *property, uint value)
    {
        QDBusMessage change = QDBusMessage::createSignal(
            QLatin1String(networkPath), QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("PropertiesChanged"));
        change.setArguments({QLatin1String(networkName),
                             QVariantMap{{QLatin1String(property), value}}, QStringList()});
        QDBusConnection::systemBus().send(change);
    }

    uint m_state;
    uint m_connectivity = 4;
};

QDBusMessage call(const char *service, const char *path, const QString &member,
                  const QList<QVariant> &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QLatin1String(service), QLatin1String(path), QLatin1String(service), member);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message);
}

QDBusMessage callDaemon(const char *member, const QList<QVariant> &arguments = {})
{
    return call(daemonName, "/com/nokia/icd2", QLatin1String(member), arguments);
}

bool isOwned(const char *name)
{
    return QDBusConnection::systemBus().interface()->isServiceRegistered(QLatin1String(name));
}

} // namespace

class tst_Icd2Bridge : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void ownsBothNames();
    void answersStateRequests_data();
    void answersStateRequests();
    void reportHasTheDaemonsSignature();
    void reportsTheConnectionToWhoeverAsksForIt_data();
    void reportsTheConnectionToWhoeverAsksForIt();
    void reportsASearchWithoutAConnection_data();
    void reportsASearchWithoutAConnection();
    void refusesSignedNumbers_data();
    void refusesSignedNumbers();
    void bringsTheClientOnline();
    void followsTheDesktopsNetwork();
    void isLimitedBehindACaptivePortal();
    void isOnlineWhereTheDesktopCannotTell();
    void servesTheBusItIsGiven();
    void wrongOptionsAreErrors_data();
    void wrongOptionsAreErrors();
    void helpAndVersionAreNoErrors_data();
    void helpAndVersionAreNoErrors();
    void staysAwayFromARealDaemonAndTakesOverFromIt_data();
    void staysAwayFromARealDaemonAndTakesOverFromIt();
    void onlyItsOwnUserMayOwnTheNames();
    void aFloodOfCallsFillsNoMemory();
    void failsWithoutABus();
    void signalsEndIt_data();
    void signalsEndIt();
    void endsWithItsBus();

private:
    bool start(const QStringList &arguments);
    bool run(const QStringList &arguments);

    PrivateBus m_bus;
    std::unique_ptr<QProcess> m_bridge;
    std::unique_ptr<Reports> m_reports;
};

void tst_Icd2Bridge::initTestCase()
{
    QVERIFY(m_bus.start());
}

void tst_Icd2Bridge::init()
{
    TestCase::init();
    m_bridge = std::make_unique<QProcess>();
    m_reports = std::make_unique<Reports>();
    QVERIFY(QDBusConnection::systemBus().connect(
        QString(), QStringLiteral("/com/nokia/icd2"), QLatin1String(daemonName),
        QStringLiteral("state_sig"), m_reports.get(), SLOT(add(QDBusMessage))));
}

void tst_Icd2Bridge::cleanup()
{
    if (m_bridge->state() == QProcess::NotRunning)
        return;
    m_bridge->terminate();
    QVERIFY(m_bridge->waitForFinished());
    QCOMPARE(m_bridge->readAllStandardError(), QByteArray());
}

// The bridge as it serves the private bus.
bool tst_Icd2Bridge::start(const QStringList &arguments)
{
    m_bridge->start(QStringLiteral(KAVLOR_BRIDGE), arguments);
    return m_bridge->waitForStarted() && waitUntil([] { return isOwned(daemonName); });
}

// The bridge as it ends by itself.
bool tst_Icd2Bridge::run(const QStringList &arguments)
{
    m_bridge->start(QStringLiteral(KAVLOR_BRIDGE), arguments);
    return m_bridge->waitForFinished() && m_bridge->exitStatus() == QProcess::NormalExit;
}

void tst_Icd2Bridge::ownsBothNames()
{
    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    QVERIFY(isOwned(uiName));
    m_bridge->terminate();
    QVERIFY(m_bridge->waitForFinished());
    QTRY_VERIFY(!isOwned(daemonName));
    QTRY_VERIFY(!isOwned(uiName));
}

void tst_Icd2Bridge::answersStateRequests_data()
{
    QTest::addColumn<quint32>("state");

    for (const quint32 state : {1U, 2U, 3U, 4U, 5U, 15U})
        QTest::addRow("%u", state) << state;
    QTest::newRow("nothing connected") << 0U;
}

void tst_Icd2Bridge::answersStateRequests()
{
    QFETCH(quint32, state);

    QVERIFY(start({QStringLiteral("--state"), QString::number(state)}));
    const QDBusMessage reply = callDaemon("state_req");
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(reply.signature(), QStringLiteral("u"));
    QCOMPARE(reply.arguments(), (QList<QVariant>{state == 0 ? 0U : 1U}));

    // What was sent before the reply to a second call has arrived with it.
    callDaemon("state_req");
    QCoreApplication::processEvents();
    QCOMPARE(m_reports->states(), state == 0 ? QList<quint32>() : (QList<quint32>{state, state}));
}

void tst_Icd2Bridge::reportHasTheDaemonsSignature()
{
    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    callDaemon("state_req");
    QTRY_COMPARE(m_reports->signatures(), QStringList{QStringLiteral("sussuaysu")});
    QCOMPARE(m_reports->states(), QList<quint32>{2});
}

void tst_Icd2Bridge::reportsTheConnectionToWhoeverAsksForIt_data()
{
    QTest::addColumn<QString>("member");

    QTest::newRow("connect") << "connect_req";
    QTest::newRow("disconnect") << "disconnect_req";
    QTest::newRow("chooser") << "show_conn_dlg";
}

void tst_Icd2Bridge::reportsTheConnectionToWhoeverAsksForIt()
{
    QFETCH(QString, member);

    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("4")}));
    const QDBusMessage reply = member == QLatin1String("show_conn_dlg")
        ? call(uiName, "/com/nokia/icd_ui", member, {false})
        : call(daemonName, "/com/nokia/icd2", member, {1U});
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    QCOMPARE(reply.signature(), QString());
    QTRY_COMPARE(m_reports->signatures(), QStringList{QStringLiteral("sussuaysu")});
    QCOMPARE(m_reports->states(), QList<quint32>{4});
}

void tst_Icd2Bridge::reportsASearchWithoutAConnection_data()
{
    QTest::addColumn<bool>("chooser");

    QTest::newRow("connect") << false;
    QTest::newRow("chooser") << true;
}

void tst_Icd2Bridge::reportsASearchWithoutAConnection()
{
    QFETCH(bool, chooser);

    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("0")}));
    const QDBusMessage reply = chooser
        ? call(uiName, "/com/nokia/icd_ui", QStringLiteral("show_conn_dlg"), {false})
        : callDaemon("connect_req", {1U});
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    QTRY_COMPARE(m_reports->signatures(),
                 (QStringList{QStringLiteral("su"), QStringLiteral("su"), QStringLiteral("u")}));
    QCOMPARE(m_reports->states(), (QList<quint32>{8, 9, 0}));
}

void tst_Icd2Bridge::refusesSignedNumbers_data()
{
    QTest::addColumn<QString>("member");

    QTest::newRow("connect") << "connect_req";
    QTest::newRow("disconnect") << "disconnect_req";
}

void tst_Icd2Bridge::refusesSignedNumbers()
{
    QFETCH(QString, member);

    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    const QDBusMessage reply = call(daemonName, "/com/nokia/icd2", member, {1});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
}

void tst_Icd2Bridge::bringsTheClientOnline()
{
    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    const CConnector connector;
    QTRY_VERIFY(connector.isConnected());
}

void tst_Icd2Bridge::followsTheDesktopsNetwork()
{
    NetworkService network(70);
    QVERIFY(network.appear());

    QVERIFY(start({}));
    callDaemon("state_req");
    QList<quint32> states{2};
    QTRY_COMPARE(m_reports->states(), states);

    // Disconnected, local only, its site only, disconnecting, connecting (no telling), local again,
    // online.
    const QList<QPair<uint, quint32>> changes{{20, 0}, {50, 1}, {60, 4}, {30, 0},
                                              {40, 2}, {50, 1}, {70, 2}};
    for (const auto &[networkState, state] : changes) {
        network.setState(networkState);
        states.append(state);
        QTRY_COMPARE(m_reports->states(), states);
    }
    // What makes no difference is not reported.
    for (const uint networkState : {70U, 40U, 70U, 20U})
        network.setState(networkState);
    states.append(0);
    QTRY_COMPARE(m_reports->states(), states);
    QCOMPARE(callDaemon("state_req").arguments(), (QList<QVariant>{0U}));
}

void tst_Icd2Bridge::isLimitedBehindACaptivePortal()
{
    NetworkService network(70);
    QVERIFY(network.appear());
    QVERIFY(start({}));
    callDaemon("state_req");
    QTRY_COMPARE(m_reports->states(), QList<quint32>{2});

    // Portal, the whole Internet, portal, and the network lost behind it and back.
    network.setConnectivity(2);
    QTRY_COMPARE(m_reports->states(), (QList<quint32>{2, 4}));
    network.setConnectivity(4);
    QTRY_COMPARE(m_reports->states(), (QList<quint32>{2, 4, 2}));
    network.setConnectivity(2);
    QTRY_COMPARE(m_reports->states(), (QList<quint32>{2, 4, 2, 4}));
    network.setState(20);
    QTRY_COMPARE(m_reports->states(), (QList<quint32>{2, 4, 2, 4, 0}));
    network.setState(70);
    QTRY_COMPARE(m_reports->states(), (QList<quint32>{2, 4, 2, 4, 0, 4}));
}

void tst_Icd2Bridge::isOnlineWhereTheDesktopCannotTell()
{
    QVERIFY(start({}));
    callDaemon("state_req");
    QTRY_COMPARE(m_reports->states(), QList<quint32>{2});
}

void tst_Icd2Bridge::servesTheBusItIsGiven()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                       QStringLiteral("unix:path=/nonexistent/system-bus"));
    m_bridge->setProcessEnvironment(environment);
    QVERIFY(start({QStringLiteral("--bus"), m_bus.address(), QStringLiteral("--state"),
                   QStringLiteral("3")}));
    callDaemon("state_req");
    QTRY_COMPARE(m_reports->states(), QList<quint32>{3});
}

void tst_Icd2Bridge::wrongOptionsAreErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    const QString state = QStringLiteral("--state");
    QTest::newRow("no number") << QStringList{state, QStringLiteral("online")}
                               << "'online' is no state number.";
    QTest::newRow("negative") << QStringList{state, QStringLiteral("-1")}
                              << "'-1' is no state number.";
    QTest::newRow("too large") << QStringList{state, QStringLiteral("4294967296")}
                               << "'4294967296' is no state number.";
    QTest::newRow("no state's number")
        << QStringList{state, QStringLiteral("99")} << "'99' is no state number.";
    QTest::newRow("empty number") << QStringList{QStringLiteral("--state=")}
                                  << "'' is no state number.";
    QTest::newRow("missing number") << QStringList{state} << "Missing value after '--state'.";
    QTest::newRow("empty address")
        << QStringList{QStringLiteral("--bus=")} << "The address of the bus is empty.";
    QTest::newRow("unknown") << QStringList{QStringLiteral("--fast")} << "Unknown option 'fast'.";
    QTest::newRow("argument") << QStringList{QStringLiteral("2")} << "Unexpected argument '2'.";
}

void tst_Icd2Bridge::wrongOptionsAreErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    QVERIFY(run(arguments));
    QCOMPARE(m_bridge->exitCode(), 2);
    QCOMPARE(QString::fromUtf8(m_bridge->readAllStandardError()),
             QStringLiteral("kavlor-icd2-bridge: %1\n").arg(message));
    QCOMPARE(m_bridge->readAllStandardOutput(), QByteArray());
}

void tst_Icd2Bridge::helpAndVersionAreNoErrors_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("text");

    QTest::newRow("help") << "--help"
                          << "--state <number>";
    QTest::newRow("version") << "--version"
                             << "kavlor-icd2-bridge 0.";
}

void tst_Icd2Bridge::helpAndVersionAreNoErrors()
{
    QFETCH(QString, option);
    QFETCH(QString, text);

    QVERIFY(run({option}));
    QCOMPARE(m_bridge->exitCode(), 0);
    const QString output = QString::fromUtf8(m_bridge->readAllStandardOutput());
    QVERIFY2(output.contains(text), qPrintable(output));
    QCOMPARE(m_bridge->readAllStandardError(), QByteArray());
}

void tst_Icd2Bridge::staysAwayFromARealDaemonAndTakesOverFromIt_data()
{
    QTest::addColumn<QString>("owned");

    QTest::newRow("daemon") << daemonName;
    QTest::newRow("chooser") << uiName;
}

void tst_Icd2Bridge::staysAwayFromARealDaemonAndTakesOverFromIt()
{
    QFETCH(QString, owned);

    QDBusConnection bus = QDBusConnection::systemBus();
    QVERIFY(bus.registerService(owned));
    m_bridge->start(QStringLiteral(KAVLOR_BRIDGE),
                    {QStringLiteral("--state"), QStringLiteral("2")});
    QByteArray said;
    QTRY_VERIFY((said += m_bridge->readAllStandardError()).endsWith('\n'));
    QCOMPARE(QString::fromUtf8(said),
             QStringLiteral("kavlor-icd2-bridge: %1 has an owner, whose end is waited for\n")
                 .arg(owned));
    QCOMPARE(static_cast<int>(isOwned(daemonName)) + static_cast<int>(isOwned(uiName)), 1);

    QVERIFY(bus.unregisterService(owned));
    QTRY_VERIFY(isOwned(daemonName));
    QVERIFY(isOwned(uiName));
    QCOMPARE(callDaemon("state_req").arguments(), (QList<QVariant>{1U}));
}

// By the bus's rules only the bridge's own user may own the names, which the user of a test is not.
void tst_Icd2Bridge::onlyItsOwnUserMayOwnTheNames()
{
    PrivateBus bus;
    QVERIFY(bus.startBeside(QStringLiteral(KAVLOR_BRIDGE_POLICY)));
    QVERIFY(run(
        {QStringLiteral("--state"), QStringLiteral("2"), QStringLiteral("--bus"), bus.address()}));
    QCOMPARE(m_bridge->exitCode(), 1);
    QCOMPARE(m_bridge->readAllStandardError(),
             QByteArray("kavlor-icd2-bridge: cannot own the name com.nokia.icd_ui on the bus\n"));
}

void tst_Icd2Bridge::aFloodOfCallsFillsNoMemory()
{
    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    const QDBusMessage request =
        QDBusMessage::createMethodCall(QLatin1String(daemonName), QStringLiteral("/com/nokia/icd2"),
                                       QLatin1String(daemonName), QStringLiteral("state_req"));
    for (int calls = 0; calls < 300000; ++calls)
        QDBusConnection::systemBus().send(request);
    // It answers what comes after them.
    constexpr int allBefore = 240000; // ms
    QCOMPARE(QDBusConnection::systemBus().call(request, QDBus::Block, allBefore).arguments(),
             (QList<QVariant>{1U}));
    const qint64 most = peakMemoryOf(m_bridge->processId());
    QVERIFY2(most > 0 && most < 60LL * 1024, qPrintable(QString::number(most)));
}

void tst_Icd2Bridge::failsWithoutABus()
{
    QVERIFY(run({QStringLiteral("--state"), QStringLiteral("2"), QStringLiteral("--bus"),
                 QStringLiteral("unix:path=/nonexistent/bus")}));
    QCOMPARE(m_bridge->exitCode(), 1);
    QVERIFY(
        m_bridge->readAllStandardError().startsWith("kavlor-icd2-bridge: cannot reach the bus: "));
}

void tst_Icd2Bridge::signalsEndIt_data()
{
    QTest::addColumn<int>("number");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void tst_Icd2Bridge::signalsEndIt()
{
    QFETCH(int, number);

    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    QCOMPARE(kill(pid_t(m_bridge->processId()), number), 0);
    QVERIFY(m_bridge->waitForFinished());
    QCOMPARE(m_bridge->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_bridge->exitCode(), 0);
    QCOMPARE(m_bridge->readAllStandardError(), QByteArray());
    QTRY_VERIFY(!isOwned(daemonName));
}

void tst_Icd2Bridge::endsWithItsBus()
{
    QVERIFY(start({QStringLiteral("--state"), QStringLiteral("2")}));
    m_bus.stop();
    QVERIFY(m_bridge->waitForFinished());
    QCOMPARE(m_bridge->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_bridge->exitCode(), 1);
    QCOMPARE(m_bridge->readAllStandardError(),
             QByteArray("kavlor-icd2-bridge: the bus has gone\n"));
}

KAVLOR_TEST_MAIN(tst_Icd2Bridge)
#include "tst_icd2bridge.moc"
