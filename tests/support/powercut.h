// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QTemporaryDir>

/**
 * What is left on the disk when a program does not only die but the power goes, too.
 *
 * Of what the program did in a folder, only what it synced is sure to be there: the bytes of a file
 * by the file's sync, its name by the sync of the folder that holds it. The rest may be there or
 * not, each page of a file and each name for itself. The program is started with preload(); once it
 * is dead, cut() makes of the folder what may be left, and the program may be started anew.
 */
class PowerCut
{
public:
    enum Rest { NothingElse, ThisAndThat };
    /** One name in a folder, and what the file system knows the file by. */
    using Names = QHash<QByteArray, QByteArray>;

    /** For the folder @p root, which is there for good with all that is in it now. */
    explicit PowerCut(const QString &root);

    /** Variables for the environment of the program. */
    QList<QPair<QString, QString>> preload() const;
    /** What has not been synced is lost, or whatever chance says of it. */
    bool cut(Rest rest);

private:
    void takeStock(const QString &folder);
    void findAll(const QString &folder);
    Names syncedNames(const QByteArray &folderKey) const;
    static Names presentNames(const QString &folder);
    bool rebuildFolder(const QByteArray &key, const QString &target, Rest rest);
    bool rebuildFile(const QByteArray &key, const QString &target, Rest rest);
    QString noted(const QByteArray &key) const;

    const QString m_root;
    QTemporaryDir m_store;
    QTemporaryDir m_library;
    QHash<QByteArray, QString> m_present; // where each file and folder is
};
