// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

class Icd2Daemon;

/**
 * The connection chooser's interface com.nokia.icd_ui.
 *
 * A desktop shows a chooser of its own. This one only has the daemon look for a connection, so that
 * whoever waits for one is told.
 */
class IcdUi : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nokia.icd_ui")

public:
    /** @p daemon outlives the object. */
    explicit IcdUi(Icd2Daemon &daemon, QObject *parent = nullptr);

public slots: // Named as the method is called on the bus.
    void show_conn_dlg(bool flag);

private:
    Icd2Daemon &m_daemon;
};
