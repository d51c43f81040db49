// SPDX-License-Identifier: MIT

#include "standindaemon.h"

#include <QDBusMessage>

namespace {

const char daemonName[] = "com.nokia.icd2";
const char chooserName[] = "com.nokia.icd_ui";

} // namespace

StandInDaemon::StandInDaemon(const QString &address)
    : m_connectionName(QStringLiteral("standin-%1").arg(quintptr(this)))
    , m_bus(QDBusConnection::connectToBus(address, m_connectionName))
{
    moveToThread(&m_thread);
    m_bus.registerVirtualObject(QStringLiteral("/com/nokia/icd2"), this);
    m_bus.registerVirtualObject(QStringLiteral("/com/nokia/icd_ui"), this);
    m_thread.start();
}

StandInDaemon::~StandInDaemon()
{
    m_bus.unregisterObject(QStringLiteral("/com/nokia/icd2"));
    m_bus.unregisterObject(QStringLiteral("/com/nokia/icd_ui"));
    QDBusConnection::disconnectFromBus(m_connectionName);
    m_thread.quit();
    m_thread.wait();
}

bool StandInDaemon::enter()
{
    return m_bus.registerService(QLatin1String(daemonName))
        && m_bus.registerService(QLatin1String(chooserName));
}

void StandInDaemon::leave()
{
    m_bus.unregisterService(QLatin1String(daemonName));
    m_bus.unregisterService(QLatin1String(chooserName));
}

void StandInDaemon::setState(quint32 state)
{
    const QMutexLocker locker(&m_mutex);
    m_state = state;
}

void StandInDaemon::reportState(quint32 state)
{
    setState(state);
    report(stateArguments(state));
}

void StandInDaemon::report(const QList<QVariant> &arguments)
{
    QDBusMessage signal = QDBusMessage::createSignal(
        QStringLiteral("/com/nokia/icd2"), QLatin1String(daemonName), QStringLiteral("state_sig"));
    signal.setArguments(arguments);
    m_bus.send(signal);
}

void StandInDaemon::setStateOnConnect(quint32 state)
{
    const QMutexLocker locker(&m_mutex);
    m_stateOnConnect = state;
}

void StandInDaemon::failChooser(int times)
{
    const QMutexLocker locker(&m_mutex);
    m_chooserFailures = times;
}

void StandInDaemon::setSilent(bool silent)
{
    const QMutexLocker locker(&m_mutex);
    m_silent = silent;
}

void StandInDaemon::hold(const QString &member)
{
    const QMutexLocker locker(&m_mutex);
    m_heldMember = member;
}

void StandInDaemon::release()
{
    const QMutexLocker locker(&m_mutex);
    m_heldMember.clear();
    const QList<QDBusMessage> held = std::exchange(m_held, {});
    for (const QDBusMessage &message : held)
        respond(message);
}

void StandInDaemon::setAnswerBeforeReports(bool answerFirst)
{
    const QMutexLocker locker(&m_mutex);
    m_answerFirst = answerFirst;
}

QList<StandInDaemon::Call> StandInDaemon::takeCalls()
{
    const QMutexLocker locker(&m_mutex);
    return std::exchange(m_calls, {});
}

QStringList StandInDaemon::members() const
{
    const QMutexLocker locker(&m_mutex);
    QStringList names;
    for (const Call &call : m_calls)
        names.append(call.member);
    return names;
}

QList<QVariant> StandInDaemon::stateArguments(quint32 state)
{
    return {
        QString(), 0U,   QString(), QStringLiteral("WLAN_INFRA"), 0U, QByteArray("an access point"),
        QString(), state};
}

QString StandInDaemon::introspect(const QString &) const
{
    return {};
}

bool StandInDaemon::handleMessage(const QDBusMessage &message, const QDBusConnection &)
{
    const QMutexLocker locker(&m_mutex);
    m_calls.append({message.member(), message.signature(), message.arguments()});
    if (message.member() == m_heldMember)
        m_held.append(message);
    else if (!m_silent)
        respond(message);
    return true;
}

void StandInDaemon::respond(const QDBusMessage &message)
{
    m_bus.send(answer(message));
    if (m_answerFirst && message.member() == QLatin1String("state_req") && m_state != 0)
        report(stateArguments(m_state));
}

QDBusMessage StandInDaemon::answer(const QDBusMessage &message)
{
    const QString call =
        message.interface() + QLatin1Char('.') + message.member() + message.signature();
    if (call == QLatin1String("com.nokia.icd2.state_req")) {
        if (m_state != 0 && !m_answerFirst)
            report(stateArguments(m_state));
        return message.createReply(m_state != 0 ? 1U : 0U);
    }
    if (call == QLatin1String("com.nokia.icd2.connect_requ")) {
        if (m_stateOnConnect != 0) {
            m_state = m_stateOnConnect;
            report(stateArguments(1));
            report(stateArguments(m_state));
        }
        return message.createReply();
    }
    if (call == QLatin1String("com.nokia.icd2.disconnect_requ"))
        return message.createReply();
    if (call == QLatin1String("com.nokia.icd_ui.show_conn_dlgb")) {
        if (m_chooserFailures > 0) {
            --m_chooserFailures;
            return message.createErrorReply(QDBusError::Failed, QStringLiteral("No dialog."));
        }
        return message.createReply();
    }
    return message.createErrorReply(QDBusError::UnknownMethod, call);
}
