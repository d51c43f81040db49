// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/**
 * A real message bus of the test's own, with a home folder for what the bus activates.
 *
 * start() makes it the system and the session bus of this process and of those it starts, and the
 * folder their home; it belongs before the first use of a bus, since a process reads the addresses
 * only once. What the session's folders offer for activation, GConf above all, starts on demand.
 */
class PrivateBus
{
public:
    PrivateBus() = default;
    ~PrivateBus();
    Q_DISABLE_COPY_MOVE(PrivateBus)

    /** False when there is no dbus-daemon or it does not start. */
    bool start();
    /**
     * Starts it with the rules of the file @p policy after its own, for nobody but who is given its
     * address: the environment stays as it is.
     */
    bool startBeside(const QString &policy);
    /** Ends the bus under whoever uses it. */
    void stop();
    QString address() const;
    QString home() const;

    /** Runs gconftool-2 on the database of this home; false when it reports a failure. */
    static bool gconfTool(const QStringList &arguments);

private:
    bool startDaemon(const QString &included);

    QTemporaryDir m_home;
    QProcess m_daemon;
    QString m_address;
};
