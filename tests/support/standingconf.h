// SPDX-License-Identifier: MIT

#pragma once

#include <QMap>
#include <QString>
#include <QTemporaryDir>

/**
 * The settings that the client finds in GConf, without a GConf server: ctest lets every test find
 * the library of gconfstandin.cpp first, and that answers from the file this class writes.
 *
 * Made before the client first asks for GConf, since it asks only once whether there is one. As
 * long as no such object was made, there is none.
 */
class StandInGConf
{
public:
    StandInGConf();
    Q_DISABLE_COPY_MOVE(StandInGConf)

    /**
     * From now on @p key has this value. @p type is one of GConf's names of types: "string", "int",
     * "bool", "float", "list" (its elements separated by commas), "schema" or "pair".
     */
    bool set(const QString &key, const QString &type, const QString &value);
    /** From now on @p key has no value. */
    bool unset(const QString &key);

private:
    bool write() const;

    QTemporaryDir m_folder;
    QMap<QString, QString> m_values;
};
