#include "connector.h"

#include "gconfbackend.h"
#include "timeconstants.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDebug>

namespace {

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
        setTimeout(timeConstants().busCallTimeout);
    }
};

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

void CConnector::requestConnectionState()
{
    if (!m_daemon) {
        qDebug("CConnector::requestConnectionState: no interface");
        return;
    }
    m_daemon->call(QStringLiteral("state_req"));
}

void CConnector::selectConnection()
{
    if (!m_daemon) {
        qDebug("CConnector::selectConnection: no interface");
        return;
    }
    for (int attempt = 0; attempt < chooserAttempts; ++attempt) {
        const QDBusMessage reply = m_dialog->call(QStringLiteral("show_conn_dlg"), false);
        if (reply.type() != QDBusMessage::ErrorMessage)
            return;
    }
}

void CConnector::connect()
{
    if (!m_daemon) {
        qDebug("CConnector::connect: no interface");
        return;
    }
    m_daemon->call(QStringLiteral("connect_req"), 1U);
}

void CConnector::smartConnect()
{
    if (!m_daemon || isConnected()) {
        qDebug("CConnector::smartConnect: no interface");
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
        qDebug("CConnector::disconnect: no interface");
        return;
    }
    m_daemon->call(QStringLiteral("disconnect_req"), 1U);
}

void CConnector::updateState(const QDBusMessage &message)
{
    const quint32 oldState = m_state;
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() >= stateArgument)
        m_state = arguments.value(stateArgument).toUInt();
    if (m_state == oldState && !m_firstReport)
        return;
    m_firstReport = false;
    emit connectionStateChanged(arguments);
}
