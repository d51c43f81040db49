#pragma once

#include <QByteArray>
#include <QLockFile>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <memory>

/**
 * The one folder the service keeps its data in: the database file, `media/` with the photos and
 * clips on auction, and `incoming/` with uploads that are still arriving.
 *
 * Only its owner can read it, and only one service at a time can open it.
 */
class DataFolder
{
public:
    explicit DataFolder(const QString &path);

    /** Makes the folder where it is missing and takes it; an empty text, or why that failed. */
    QString open();

    QString databasePath() const;
    QString mediaPath(const QString &name) const;

    /** An open file in `incoming/` that removes itself unless it is published; null = disk full. */
    std::unique_ptr<QTemporaryFile> newIncoming() const;
    /**
     * Moves what was written to @p incoming into `media/` under a name of its own ending in
     * @p extension, so that it is on the disk for good when this returns.
     *
     * Gives the name, or an empty text when the disk refused.
     */
    QString publish(QTemporaryFile &incoming, const QString &extension) const;
    void removeMedia(const QString &name) const;

    /** Removes what a service that was killed left behind: uploads, and media nobody names. */
    void removeLeftovers(const QStringList &namedMedia) const;

private:
    QString m_path;
    QLockFile m_lock;
};
