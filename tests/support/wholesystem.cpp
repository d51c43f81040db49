#include "wholesystem.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QTest>

WholeSystem::WholeSystem() = default;

WholeSystem::~WholeSystem()
{
    client.reset();
    m_bridge.kill();
    m_bridge.waitForFinished();
}

bool WholeSystem::startConnectivity()
{
    if (!m_bus.start())
        return false;
    m_bridge.start(
        QStringLiteral(KAVLOR_BRIDGE),
        {QStringLiteral("--bus"), m_bus.address(), QStringLiteral("--state"), QStringLiteral("2")});
    const QString name = QStringLiteral("wholesystem");
    const QDBusConnection bus = QDBusConnection::connectToBus(m_bus.address(), name);
    const bool up = QTest::qWaitFor([&bus] {
        return bus.isConnected()
            && bus.interface()->isServiceRegistered(QStringLiteral("com.nokia.icd2"));
    });
    QDBusConnection::disconnectFromBus(name);
    client = std::make_unique<ClientDriver>();
    return up;
}

bool WholeSystem::startService(const QStringList &options)
{
    return service.start(QStringList{QStringLiteral("--port"), QString::number(servicePort())}
                         + options);
}

quint16 WholeSystem::servicePort()
{
    return QStringLiteral(KAVLOR_SERVICE_HOST).section(QLatin1Char(':'), 1).toUShort();
}
