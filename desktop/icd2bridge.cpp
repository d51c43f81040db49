// SPDX-License-Identifier: MIT

#include "icd2bridge.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusError>

namespace {

const char daemonName[] = "com.nokia.icd2";
const char daemonPath[] = "/com/nokia/icd2";
const char uiName[] = "com.nokia.icd_ui";
const char uiPath[] = "/com/nokia/icd_ui";

// The daemon's name comes last: whoever sees it finds the rest in place.
const char *const names[] = {uiName, daemonName};

} // namespace

Icd2Bridge::Icd2Bridge(const QDBusConnection &bus, quint32 state, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_daemon(state)
    , m_ui(m_daemon)
{
}

Icd2Bridge::~Icd2Bridge()
{
    leaveBus();
}

QString Icd2Bridge::start()
{
    if (!m_bus.isConnected())
        return tr("cannot reach the bus: %1").arg(m_bus.lastError().message());
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SIGNAL(busLost()));

    m_owners.setConnection(m_bus);
    m_owners.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    for (const char *name : names)
        m_owners.addWatchedService(QLatin1String(name));
    connect(&m_owners, &QDBusServiceWatcher::serviceUnregistered, this, &Icd2Bridge::takeOver);
    return takeNames();
}

// Both names or none.
QString Icd2Bridge::takeNames()
{
    if (isOwnedByAnother())
        return {};
    const auto contents = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals;
    m_bus.registerObject(QLatin1String(daemonPath), &m_daemon, contents);
    m_bus.registerObject(QLatin1String(uiPath), &m_ui, contents);
    for (const char *name : names) {
        if (m_bus.registerService(QLatin1String(name)))
            continue;
        leaveBus();
        // Somebody may have been quicker.
        return isOwnedByAnother()
            ? QString()
            : tr("cannot own the name %1 on the bus").arg(QLatin1String(name));
    }
    return {};
}

// Tells of the first name that another program owns. The bridge must own none when it asks.
bool Icd2Bridge::isOwnedByAnother()
{
    for (const char *name : names) {
        if (m_bus.interface()->isServiceRegistered(QLatin1String(name))) {
            emit staysAway(QLatin1String(name));
            return true;
        }
    }
    return false;
}

void Icd2Bridge::takeOver()
{
    const QString error = takeNames();
    if (!error.isEmpty())
        emit failed(error);
}

void Icd2Bridge::leaveBus()
{
    for (const char *name : names)
        m_bus.unregisterService(QLatin1String(name));
    for (const char *path : {uiPath, daemonPath})
        m_bus.unregisterObject(QLatin1String(path));
}

void Icd2Bridge::setState(quint32 state)
{
    m_daemon.setState(state);
}
