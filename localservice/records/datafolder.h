// SPDX-License-Identifier: MIT

#pragma once

#include "result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <memory>

/**
 * The one folder the service keeps its data in: the database file, `media/` with the photos and
 * clips on auction, `incoming/` with uploads that are still arriving, and `lost/` with files that
 * no auction names.
 *
 * It is a folder that the service made itself, which a marker file in it says. Only its owner can
 * read it, and only one service at a time can open it. Nothing that once was in place is deleted.
 */
class DataFolder
{
public:
    explicit DataFolder(const QString &path);
    ~DataFolder();
    DataFolder(const DataFolder &) = delete;
    DataFolder &operator=(const DataFolder &) = delete;

    /**
     * Takes the folder, or makes it where there is none or an empty one. Any other folder is
     * refused and left as it is.
     */
    Result<void> open();
    /** Whether the folder is still being made, so that there may be no database in it yet. */
    bool isNew() const;
    /** Says that the folder now holds all that belongs in it. */
    Result<void> finishMaking();

    QString databasePath() const;
    QString mediaPath(const QString &name) const;

    /** An open file in `incoming/` that removes itself unless it is published; null = disk full. */
    std::unique_ptr<QTemporaryFile> newIncoming() const;
    /**
     * Moves what was written to @p incoming into `media/` under a name of its own ending in
     * @p extension, so that it is on the disk for good when this returns; the name.
     */
    Result<QString> publish(QTemporaryFile &incoming, const QString &extension) const;

    /**
     * Moves to `lost/` what a service that was killed left behind: uploads, and media not among
     * @p namedMedia. How many files there were.
     */
    Result<int> setAside(const QStringList &namedMedia) const;

private:
    Result<void> recognise();
    bool takeLock();
    Result<void> writeMarker(const QByteArray &state) const;
    Result<int> moveToLost(const QString &folder, const QStringList &kept) const;
    bool isFreeToTake() const;
    QString markerPath() const;

    QString m_path;
    int m_lock = -1; // an open file, locked
    bool m_isNew = false;
};
