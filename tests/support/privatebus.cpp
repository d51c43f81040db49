// SPDX-License-Identifier: MIT

#include "privatebus.h"

#include <QFile>
#include <QUuid>

#include <csignal>
#include <sys/prctl.h>

namespace {

// The socket is abstract: a path inside the temporary folder may be too long for one.
const char configuration[] =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:abstract=%1</listen>
  <auth>EXTERNAL</auth>
  <standard_session_servicedirs/>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  %2
</busconfig>
)";

} // namespace

PrivateBus::~PrivateBus()
{
    stop();
}

void PrivateBus::stop()
{
    if (m_daemon.state() == QProcess::NotRunning)
        return;
    m_daemon.terminate();
    if (!m_daemon.waitForFinished())
        m_daemon.kill();
}

bool PrivateBus::start()
{
    qputenv("HOME", QFile::encodeName(home()));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home()));
    if (!startDaemon({}))
        return false;
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toLatin1());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toLatin1());
    return true;
}

bool PrivateBus::startBeside(const QString &policy)
{
    return startDaemon(QStringLiteral("<include>%1</include>").arg(policy.toHtmlEscaped()));
}

bool PrivateBus::startDaemon(const QString &included)
{
    const QString name =
        QStringLiteral("kavlor-test-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    QFile file(m_home.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QString::fromLatin1(configuration).arg(name, included).toUtf8());
    file.close();

    m_daemon.setStandardErrorFile(QProcess::nullDevice());
    // Not even a crash of the test leaves the bus behind.
    m_daemon.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + file.fileName(), QStringLiteral("--nofork"),
                    QStringLiteral("--print-address")});
    while (!m_daemon.canReadLine()) {
        if (!m_daemon.waitForReadyRead())
            return false;
    }
    m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
    return true;
}

QString PrivateBus::address() const
{
    return m_address;
}

QString PrivateBus::home() const
{
    return m_home.path();
}

bool PrivateBus::gconfTool(const QStringList &arguments)
{
    QProcess tool;
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("gconftool-2"), arguments);
    return tool.waitForFinished() && tool.exitStatus() == QProcess::NormalExit
        && tool.exitCode() == 0;
}
