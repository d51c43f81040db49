// SPDX-License-Identifier: MIT

// A program with a connection manager and little else, made in the order in which the client makes
// its own. It carries out the operations of its command line one after another, then prints one
// line for each report until its standard input is closed.

#include "connector.h"
#include "gconfbackend.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

namespace {

void carryOut(CConnector &connector, const QString &operation)
{
    if (operation == QLatin1String("smartConnect"))
        connector.smartConnect();
    else if (operation == QLatin1String("selectConnection"))
        connector.selectConnection();
    else if (operation == QLatin1String("connect"))
        connector.connect();
    else if (operation == QLatin1String("disconnect"))
        connector.disconnect();
    else if (operation == QLatin1String("gconf"))
        QTextStream(stdout) << (CGConfBackend::instance() ? "gconf" : "no gconf") << Qt::endl;
}

} // namespace

int main(int argc, char *argv[])
{
    CConnector connector;
    QApplication app(argc, argv);
    QTextStream out(stdout);
    QObject::connect(&connector, &CConnector::connectionStateChanged, &app,
                     [&](const QList<QVariant> &arguments) {
                         out << "state " << arguments.value(7).toUInt()
                             << (connector.isConnected() ? " connected" : " not connected")
                             << Qt::endl;
                     });
    const QStringList operations = app.arguments().mid(1);
    for (const QString &operation : operations)
        carryOut(connector, operation);
    out << "ready" << Qt::endl;

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &app, &QApplication::quit);
    return app.exec();
}
