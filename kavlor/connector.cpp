// SPDX-License-Identifier: MIT

#include "connector.h"

#include "gconfbackend.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(connectorLog, "kavlor.connector")

constexpr quint32 connectedState = 2;
constexpr quint32 limitedDisabledState = 5;
constexpr int stateArgument = 7;
constexpr int chooserAttempts = 3;

constexpr char daemonService[] = "com.nokia.icd2";
constexpr char daemonPath[] = "/com/nokia/icd2";
constexpr char dialogService[] = "com.nokia.icd_ui";
constexpr char dialogPath[] = "/com/nokia/icd_ui";

CConnector *theConnector = nullptr;

// One interface of a service, named like the service. QDBusInterface would do as well, but its
// constructor asks the service to describe itself and waits 25 s for one that is silent.
class ServiceInterface : public QDBusAbstractInterface
{
public:
    ServiceInterface(const char *service, const char *path, QObject *parent)
        : QDBusAbstractInterface(QLatin1String(service), QLatin1String(path), service,
                                 QDBusConnection::systemBus(), parent)
    {
    }
};

// A missing answer is no refusal: whoever was called may still be busy with it.
bool isRefusal(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ErrorMessage
        && QDBusError(reply).type() != QDBusError::NoReply;
}

} // namespace

CConnector::CConnector(QObject *parent)
    : QObject(parent)
{
    theConnector = this;
    m_daemon = new ServiceInterface(daemonService, daemonPath, this);
    m_dialog = new ServiceInterface(dialogService, dialogPath, this);
    QDBusConnection::systemBus().connect(QLatin1String(daemonService), QLatin1String(daemonPath),
                                         QLatin1String(daemonService), QStringLiteral("state_sig"),
                                         this, SLOT(updateState(QDBusMessage)));
    requestConnectionState();
}

CConnector::~CConnector()
{
    if (theConnector == this)
        theConnector = nullptr;
}

CConnector *CConnector::instance()
{
    return theConnector;
}

bool CConnector::isConnected() const
{
    return m_state >= connectedState && m_state < limitedDisabledState;
}

bool CConnector::isStateKnown() const
{
    return m_stateAnswered && m_stateReports >= m_announcedReports;
}

void CConnector::requestConnectionState()
{
    if (!m_daemon) {
        qCDebug(connectorLog, "CConnector::requestConnectionState: no interface");
        return;
    }
    whenAnswered(m_daemon->asyncCall(QStringLiteral("state_req")),
                 [this](const QDBusMessage &reply) {
                     // The number of reports, which come before the answer or after it.
                     m_stateAnswered = true;
                     if (reply.type() == QDBusMessage::ReplyMessage)
                         m_announcedReports += reply.arguments().value(0).toUInt();
                 });
}

void CConnector::selectConnection()
{
    if (!m_daemon) {
        qCDebug(connectorLog, "CConnector::selectConnection: no interface");
        return;
    }
    openChooser(chooserAttempts);
}

void CConnector::openChooser(int attempts)
{
    whenAnswered(m_dialog->asyncCall(QStringLiteral("show_conn_dlg"), false),
                 [this, attempts](const QDBusMessage &reply) {
                     if (attempts > 1 && isRefusal(reply))
                         openChooser(attempts - 1);
                 });
}

void CConnector::connect()
{
    if (!m_daemon) {
        qCDebug(connectorLog, "CConnector::connect: no interface");
        return;
    }
    m_daemon->asyncCall(QStringLiteral("connect_req"), 1U);
}

void CConnector::smartConnect()
{
    if (!m_daemon || isConnected()) {
        qCDebug(connectorLog, "CConnector::smartConnect: no interface");
        return;
    }
    if (CGConfBackend *settings = CGConfBackend::instance()) {
        const QString key = QStringLiteral("/system/osso/connectivity/network_type/auto_connect");
        if (settings->value(key).toString().isEmpty()) {
            selectConnection();
            return;
        }
    }
    connect();
}

void CConnector::disconnect()
{
    if (!m_daemon) {
        qCDebug(connectorLog, "CConnector::disconnect: no interface");
        return;
    }
    m_daemon->asyncCall(QStringLiteral("disconnect_req"), 1U);
}

void CConnector::updateState(const QDBusMessage &message)
{
    const quint32 oldState = m_state;
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() >= stateArgument) {
        m_state = arguments.value(stateArgument).toUInt();
        ++m_stateReports;
    }
    if (m_state == oldState && !m_firstReport)
        return;
    m_firstReport = false;
    emit connectionStateChanged(arguments);
}

// Calls @p answered with the answer, from the event loop; at once where there is no bus, which
// answers nothing.
void CConnector::whenAnswered(const QDBusPendingCall &call, const Answered &answered)
{
    if (call.isFinished()) {
        answered(call.reply());
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(call, this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, answered] {
        watcher->deleteLater();
        answered(watcher->reply());
    });
}
