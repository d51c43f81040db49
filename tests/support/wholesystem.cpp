// SPDX-License-Identifier: MIT

#include "wholesystem.h"

#include "testpaths.h"
#include "waituntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QPainter>
#include <QTest>

#include <csignal>

WholeSystem::WholeSystem() = default;

WholeSystem::~WholeSystem()
{
    client.reset();
    endBridge();
}

void WholeSystem::endBridge()
{
    m_bridge.kill();
    m_bridge.waitForFinished();
}

bool WholeSystem::startConnectivity()
{
    if (!m_bus.start())
        return false;
    client = std::make_unique<ClientDriver>();
    return setNetworkState(2);
}

bool WholeSystem::setNetworkState(int state)
{
    endBridge();
    m_bridge.start(QStringLiteral(KAVLOR_BRIDGE),
                   {QStringLiteral("--bus"), m_bus.address(), QStringLiteral("--state"),
                    QString::number(state)});
    const QString name = QStringLiteral("wholesystem");
    const QDBusConnection bus = QDBusConnection::connectToBus(m_bus.address(), name);
    const bool up = waitUntil([&bus] {
        return bus.isConnected()
            && bus.interface()->isServiceRegistered(QStringLiteral("com.nokia.icd2"));
    });
    QDBusConnection::disconnectFromBus(name);
    return up;
}

void WholeSystem::stopDaemon()
{
    ::kill(static_cast<pid_t>(m_bridge.processId()), SIGSTOP);
}

void WholeSystem::resumeDaemon()
{
    ::kill(static_cast<pid_t>(m_bridge.processId()), SIGCONT);
}

bool WholeSystem::startService(const QStringList &options)
{
    service.setPort(servicePort());
    return service.start(options);
}

QString WholeSystem::makePhoto(const QColor &ground) const
{
    QImage image(1024, 768, QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    painter.setBrush(QColor(240, 170, 40));
    painter.drawEllipse(QPoint(512, 384), 100, 80);
    painter.end();
    const QString folder = client->home() + QStringLiteral("/Pictures");
    QDir().mkpath(folder);
    const QString path = folder + QStringLiteral("/sunset.jpg");
    return image.save(path, "JPEG") ? path : QString();
}

bool WholeSystem::createAccount(const QString &userName, const QString &password,
                                const QString &email)
{
    return client->click(QStringLiteral("createAccountButton"))
        && client->type(QStringLiteral("lineUsername"), userName)
        && client->type(QStringLiteral("linePassword"), password)
        && client->type(QStringLiteral("lineEmailaddress"), email)
        && client->type(QStringLiteral("lineAgain"), email)
        && client->clickTab(QStringLiteral("tabWidget"), 1)
        && client->click(QStringLiteral("checkTerms"))
        && client->click(QStringLiteral("submitButton"))
        && client->waitFor(QStringLiteral("buttonUpload"));
}

bool WholeSystem::logIn(const QString &userName, const QString &password)
{
    return client->click(QStringLiteral("loginButton"))
        && client->type(QStringLiteral("lineUsername"), userName)
        && client->type(QStringLiteral("linePassword"), password)
        && client->click(QStringLiteral("loginButton"))
        && client->waitFor(QStringLiteral("buttonUpload"));
}

bool WholeSystem::prepareUpload(const QString &photo, const QString &caption)
{
    const QString categories = QStringLiteral("categoriesTable");
    return client->click(QStringLiteral("buttonUpload"))
        && client->click(QStringLiteral("photoClicker")) && client->chooseFile(photo)
        && client->type(QStringLiteral("lineCaption"), caption)
        && client->click(QStringLiteral("doneButton"))
        && client->clickCell(categories, 5, 1) // Places
        && client->waitForText(QStringLiteral("categorySelected"), QStringLiteral("Places"))
        && client->clickCell(categories, 2, 1) // Monuments
        && client->type(QStringLiteral("startPrice"), QStringLiteral("12"))
        && client->type(QStringLiteral("reservePrice"), QStringLiteral("40"))
        && client->type(QStringLiteral("buyItNowPrice"), QStringLiteral("95"))
        && client->click(QStringLiteral("finalizeButton"))
        && client->waitForText(QStringLiteral("auctionOverallInfo"),
                               QStringLiteral("Places>Monuments"));
}

quint16 WholeSystem::servicePort()
{
    return QStringLiteral(KAVLOR_SERVICE_HOST).section(QLatin1Char(':'), 1).toUShort();
}
