// SPDX-License-Identifier: MIT

#include "standingconf.h"

#include <QFile>

StandInGConf::StandInGConf()
{
    qputenv("KAVLOR_STANDIN_GCONF",
            QFile::encodeName(m_folder.filePath(QStringLiteral("settings"))));
    write();
}

bool StandInGConf::set(const QString &key, const QString &type, const QString &value)
{
    m_values.insert(key, type + QLatin1Char('\t') + value);
    return write();
}

bool StandInGConf::unset(const QString &key)
{
    m_values.remove(key);
    return write();
}

bool StandInGConf::write() const
{
    QFile file(m_folder.filePath(QStringLiteral("settings")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (auto value = m_values.cbegin(); value != m_values.cend(); ++value)
        file.write((value.key() + QLatin1Char('\t') + value.value() + QLatin1Char('\n')).toUtf8());
    return true;
}
