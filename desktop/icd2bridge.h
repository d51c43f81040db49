// SPDX-License-Identifier: MIT

#pragma once

#include "icd2daemon.h"
#include "icdui.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

/**
 * Puts the connectivity daemon's and its chooser's interface on a bus and owns their names.
 *
 * Where a real daemon or chooser owns one of the names, the bridge keeps off the bus until that has
 * left: it answers nothing and reports nothing meanwhile.
 */
class Icd2Bridge : public QObject
{
    Q_OBJECT

public:
    Icd2Bridge(const QDBusConnection &bus, quint32 state, QObject *parent = nullptr);
    ~Icd2Bridge() override;

    /** Empty once both names are owned or waited for, else what is in the way. */
    QString start();
    void setState(quint32 state);

signals:
    /** The bus has ended the connection. */
    void busLost();
    /** Another program owns @p name; the bridge takes over when it leaves. */
    void staysAway(const QString &name);
    /** The bus does not let the bridge take over, for the reason given. */
    void failed(const QString &error);

private:
    QString takeNames();
    bool isOwnedByAnother();
    void takeOver();
    void leaveBus();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_owners;
    Icd2Daemon m_daemon;
    IcdUi m_ui;
};
