// SPDX-License-Identifier: MIT

#include "driver.h"

#include <QGenericPlugin>

/**
 * Lets a test drive the client's real binary: the toolkit loads it into a program started with
 * QT_QPA_GENERIC_PLUGINS=kavlordriver, and the program knows nothing of it.
 */
class DriverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver.json")

public:
    QObject *create(const QString &name, const QString &) override
    {
        if (name.compare(QLatin1String("kavlordriver"), Qt::CaseInsensitive) != 0)
            return nullptr;
        return new Driver;
    }
};

#include "driverplugin.moc"
