// SPDX-License-Identifier: MIT

#include "desktopnetwork.h"
#include "icd2bridge.h"
#include "terminationsignal.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

#include <memory>
#include <optional>

namespace {

enum ExitCode { Failed = 1, WrongUsage = 2 };

struct Options
{
    QString bus;                  // empty = the system bus
    std::optional<quint32> state; // fixed, or else the desktop's
};

void tell(const QString &message)
{
    QTextStream(stderr) << QCoreApplication::applicationName() << ": " << message << Qt::endl;
}

int fail(ExitCode code, const QString &message)
{
    tell(message);
    return code;
}

// The numbers that the daemon has states for, up to that of an address within the device's own net.
bool isStateNumber(quint32 number)
{
    return number <= 5 || number == 8 || number == 9 || number == 15;
}

// The options, or an error that says what is wrong with them. --help and --version end the program.
Options readOptions(const QCoreApplication &app, QString *error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate(
        "main",
        "Tells a handheld's programs on a desktop whether it is online: owns "
        "com.nokia.icd2 and com.nokia.icd_ui on the system bus."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption bus(
        QStringLiteral("bus"),
        QCoreApplication::translate("main", "Serve the bus at this address instead."),
        QStringLiteral("address"));
    const QCommandLineOption state(
        QStringLiteral("state"),
        QCoreApplication::translate(
            "main",
            "Report this state number always, not the desktop's: 0 disconnected, "
            "1 connecting, 2 connected, 3 disconnecting, 4 limited connection enabled, "
            "5 limited connection disabled."),
        QStringLiteral("number"));
    parser.addOption(bus);
    parser.addOption(state);

    Options options;
    if (!parser.parse(app.arguments())) {
        *error = parser.errorText();
        return options;
    }
    parser.process(app);
    if (!parser.positionalArguments().isEmpty()) {
        *error = QCoreApplication::translate("main", "Unexpected argument '%1'.")
                     .arg(parser.positionalArguments().constFirst());
        return options;
    }
    options.bus = parser.value(bus);
    if (parser.isSet(bus) && options.bus.isEmpty())
        *error = QCoreApplication::translate("main", "The address of the bus is empty.");
    if (parser.isSet(state)) {
        bool isNumber = false;
        options.state = parser.value(state).toUInt(&isNumber);
        if (!isNumber || !isStateNumber(*options.state)) {
            *error = QCoreApplication::translate("main", "'%1' is no state number.")
                         .arg(parser.value(state));
        }
    }
    return options;
}

QDBusConnection openBus(const QString &address)
{
    return address.isEmpty() ? QDBusConnection::systemBus()
                             : QDBusConnection::connectToBus(address, QStringLiteral("bridge"));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    TerminationSignal termination;
    QCoreApplication::setApplicationName(QStringLiteral("kavlor-icd2-bridge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KAVLOR_VERSION));
    // A call of another form than the daemon's is answered with an error, which is for the caller;
    // nobody shall fill the journal with such calls.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.dbus.integration.warning=false"));
    QObject::connect(&termination, &TerminationSignal::received, &app, &QCoreApplication::quit);

    QString error;
    const Options options = readOptions(app, &error);
    if (!error.isEmpty())
        return fail(WrongUsage, error);

    std::unique_ptr<DesktopNetwork> network;
    if (!options.state)
        network = std::make_unique<DesktopNetwork>();

    Icd2Bridge bridge(openBus(options.bus), network ? network->state() : *options.state);
    if (network) {
        QObject::connect(network.get(), &DesktopNetwork::stateChanged, &bridge,
                         &Icd2Bridge::setState);
    }
    QObject::connect(&bridge, &Icd2Bridge::busLost, &app, [] {
        QCoreApplication::exit(
            fail(Failed, QCoreApplication::translate("main", "the bus has gone")));
    });
    QObject::connect(&bridge, &Icd2Bridge::failed, &app,
                     [](const QString &reason) { QCoreApplication::exit(fail(Failed, reason)); });
    QObject::connect(&bridge, &Icd2Bridge::staysAway, &app, [](const QString &name) {
        tell(QCoreApplication::translate("main", "%1 has an owner, whose end is waited for")
                 .arg(name));
    });
    error = bridge.start();
    if (!error.isEmpty())
        return fail(Failed, error);
    return QCoreApplication::exec();
}
