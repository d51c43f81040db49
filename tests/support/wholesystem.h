// SPDX-License-Identifier: MIT

#pragma once

#include "clientdriver.h"
#include "localserviceprocess.h"
#include "privatebus.h"

#include <QColor>
#include <QProcess>
#include <memory>

/**
 * Everything a member has, for real and in processes of its own: a system bus, the connectivity
 * bridge on it, and the client; and at the other end the local auction service.
 *
 * The client was built for a service on a fixed port, so only one whole system runs at a time.
 */
class WholeSystem
{
public:
    WholeSystem();
    ~WholeSystem();
    Q_DISABLE_COPY_MOVE(WholeSystem)

    /** Starts bus and bridge, the device being online. */
    bool startConnectivity();
    /** Has the device be in the daemon's state @p state from the next start of the client on. */
    bool setNetworkState(int state);
    /** Stops the daemon in mid work: it keeps its names and answers nothing until resumed. */
    void stopDaemon();
    void resumeDaemon();
    /** Starts the service where the client looks for it, with @p options such as "--seed". */
    bool startService(const QStringList &options = {});

    /** A real JPEG in the member's picture folder, plain but for a disc; empty = not saved. */
    QString makePhoto(const QColor &ground) const;
    /** From the welcome frame, with the terms accepted, to the home frame. */
    bool createAccount(const QString &userName, const QString &password, const QString &email);
    /** From the welcome frame to the home frame. */
    bool logIn(const QString &userName, const QString &password);
    /** From the home frame to the wizard's confirmation page, in the category Monuments. */
    bool prepareUpload(const QString &photo, const QString &caption);

    /** The port that the client was built for. */
    static quint16 servicePort();

    LocalServiceProcess service;
    /** Made with the connectivity; the client's home outlives its restarts. */
    std::unique_ptr<ClientDriver> client;

private:
    void endBridge();

    PrivateBus m_bus;
    QProcess m_bridge;
};
