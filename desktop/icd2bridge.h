#pragma once

#include "icd2daemon.h"
#include "icdui.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

/**
 * Puts the connectivity daemon's and its chooser's interface on a bus and owns their names.
 */
class Icd2Bridge : public QObject
{
    Q_OBJECT

public:
    Icd2Bridge(const QDBusConnection &bus, quint32 state, QObject *parent = nullptr);
    ~Icd2Bridge() override;

    /** Empty once both names are owned, else what is in the way. */
    QString start();
    void setState(quint32 state);

signals:
    /** The bus has ended the connection. */
    void busLost();

private:
    QDBusConnection m_bus;
    Icd2Daemon m_daemon;
    IcdUi m_ui;
};
