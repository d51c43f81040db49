#include "icd2bridge.h"

#include <QCoreApplication>
#include <QDBusError>

namespace {

const char daemonName[] = "com.nokia.icd2";
const char daemonPath[] = "/com/nokia/icd2";
const char uiName[] = "com.nokia.icd_ui";
const char uiPath[] = "/com/nokia/icd_ui";

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
    for (const char *name : {daemonName, uiName})
        m_bus.unregisterService(QLatin1String(name));
}

QString Icd2Bridge::start()
{
    if (!m_bus.isConnected())
        return tr("cannot reach the bus: %1").arg(m_bus.lastError().message());
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SIGNAL(busLost()));

    const auto contents = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals;
    m_bus.registerObject(QLatin1String(daemonPath), &m_daemon, contents);
    m_bus.registerObject(QLatin1String(uiPath), &m_ui, contents);
    // The daemon's name comes last: whoever sees it finds the rest in place.
    for (const char *name : {uiName, daemonName}) {
        if (!m_bus.registerService(QLatin1String(name)))
            return tr("cannot own the name %1 on the bus").arg(QLatin1String(name));
    }
    return {};
}

void Icd2Bridge::setState(quint32 state)
{
    m_daemon.setState(state);
}
