// SPDX-License-Identifier: MIT

#include "datafolder.h"

#include "database.h"
#include "passwords.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The marker's one line: whose folder this is, the version of its layout, and whether it is whole.
const QByteArray signature = "kavlor-localservice 1";
const QByteArray whole = "whole";
const QByteArray inTheMaking = "in the making";

// A renamed file is only safe once the folder that names it is on the disk too.
bool syncFolder(const QString &path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY);
    if (folder < 0)
        return false;
    const bool synced = ::fsync(folder) == 0;
    ::close(folder);
    return synced;
}

// Those above it that nobody may read were not made for it.
void syncFoldersAbove(const QString &path)
{
    QDir folder(path);
    while (folder.cdUp())
        syncFolder(folder.path());
}

QString freeName(const QDir &folder, const QString &wanted)
{
    QString name = wanted;
    for (int i = 1; folder.exists(name); ++i)
        name = QString::number(i) + QLatin1Char('-') + wanted;
    return name;
}

} // namespace

DataFolder::DataFolder(const QString &path)
    : m_path(QDir(path).absolutePath())
{
}

DataFolder::~DataFolder()
{
    if (m_lock >= 0)
        ::close(m_lock);
}

Result<void> DataFolder::open()
{
    if (!QDir().mkpath(m_path))
        return broken(QStringLiteral("The folder %1 cannot be made.").arg(m_path));
    const Result<void> recognised = recognise();
    if (!recognised.isOk())
        return recognised;
    if (!takeLock())
        return broken(QStringLiteral("The folder %1 is in use by another service.").arg(m_path));
    const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (!QFile::setPermissions(m_path, ownerOnly))
        return broken(QStringLiteral("The folder %1 cannot be closed to others.").arg(m_path));
    if (m_isNew) {
        syncFoldersAbove(m_path);
        const Result<void> marked = writeMarker(inTheMaking);
        if (!marked.isOk())
            return marked;
    }
    for (const char *name : {"/media", "/incoming"}) {
        const QString folder = m_path + QLatin1String(name);
        if (!QDir().mkpath(folder))
            return broken(QStringLiteral("The folder %1 cannot be made.").arg(folder));
    }
    return {};
}

// The system lets go of it when the service ends, however it ends. The file stays, empty, so that
// it needs no room on the disk.
bool DataFolder::takeLock()
{
    m_lock = ::open(QFile::encodeName(m_path + QStringLiteral("/lock")).constData(),
                    O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    return m_lock >= 0 && ::flock(m_lock, LOCK_EX | LOCK_NB) == 0;
}

Result<void> DataFolder::recognise()
{
    QFile marker(markerPath());
    if (!marker.exists() || marker.size() == 0) {
        // A service from before there were markers is known by its database.
        const bool isUnmarked = Database::isService(databasePath());
        m_isNew = !isUnmarked;
        if (isUnmarked || isFreeToTake())
            return {};
        return broken(QStringLiteral("The folder %1 is not empty and was not made by this service. "
                                     "It is left as it is.")
                          .arg(m_path));
    }
    const QByteArray line = marker.open(QIODevice::ReadOnly) ? marker.read(100).trimmed() : "";
    m_isNew = line == signature + ' ' + inTheMaking;
    if (!m_isNew && line != signature + ' ' + whole) {
        return broken(QStringLiteral("The folder %1 was made by another version of this service.")
                          .arg(m_path));
    }
    return {};
}

// Empty, or with no more in it than a service that was killed when it had just begun.
bool DataFolder::isFreeToTake() const
{
    QStringList entries = QDir(m_path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                                 | QDir::NoDotAndDotDot);
    entries.removeOne(QStringLiteral("lock"));
    entries.removeOne(QStringLiteral("lock.marker"));
    return entries.isEmpty();
}

bool DataFolder::isNew() const
{
    return m_isNew;
}

Result<void> DataFolder::finishMaking()
{
    const Result<void> marked = writeMarker(whole);
    m_isNew = m_isNew && !marked.isOk();
    return marked;
}

Result<void> DataFolder::writeMarker(const QByteArray &state) const
{
    const QByteArray line = signature + ' ' + state + '\n';
    QFile marker(markerPath());
    if (marker.open(QIODevice::ReadOnly) && marker.readAll() == line)
        return {};
    marker.close();
    // In one piece under its name, since a marker that is cut short is not known again.
    QFile draft(m_path + QStringLiteral("/lock.marker"));
    const bool isWritten = draft.open(QIODevice::WriteOnly) && draft.write(line) == line.size()
        && draft.flush() && ::fsync(draft.handle()) == 0;
    draft.close();
    if (!isWritten
        || ::rename(QFile::encodeName(draft.fileName()).constData(),
                    QFile::encodeName(markerPath()).constData())
            != 0
        || !syncFolder(m_path)) {
        return broken(QStringLiteral("The folder %1 cannot be written to.").arg(m_path));
    }
    return {};
}

QString DataFolder::markerPath() const
{
    return m_path + QStringLiteral("/kavlor-localservice.folder");
}

QString DataFolder::databasePath() const
{
    return m_path + QStringLiteral("/service.sqlite");
}

QString DataFolder::mediaPath(const QString &name) const
{
    return m_path + QStringLiteral("/media/") + name;
}

std::unique_ptr<QTemporaryFile> DataFolder::newIncoming() const
{
    auto file = std::make_unique<QTemporaryFile>(m_path + QStringLiteral("/incoming/XXXXXX.part"));
    if (!file->open())
        return nullptr;
    return file;
}

Result<QString> DataFolder::publish(QTemporaryFile &incoming, const QString &extension) const
{
    const Failure notStored = broken(QStringLiteral("the media could not be stored"));
    const QString name = QString::fromLatin1(randomName()) + QLatin1Char('.') + extension;
    if (!incoming.flush() || ::fsync(incoming.handle()) != 0)
        return notStored;
    if (::rename(QFile::encodeName(incoming.fileName()).constData(),
                 QFile::encodeName(mediaPath(name)).constData())
        != 0) {
        return notStored;
    }
    incoming.setAutoRemove(false);
    if (!syncFolder(m_path + QStringLiteral("/media")))
        return notStored;
    return name;
}

Result<int> DataFolder::setAside(const QStringList &namedMedia) const
{
    const Result<int> parts = moveToLost(QStringLiteral("/incoming"), {});
    if (!parts.isOk())
        return parts;
    const Result<int> media = moveToLost(QStringLiteral("/media"), namedMedia);
    return media.isOk() ? Result<int>(parts.value() + media.value()) : media;
}

Result<int> DataFolder::moveToLost(const QString &folder, const QStringList &kept) const
{
    const QDir from(m_path + folder);
    const QDir lost(m_path + QStringLiteral("/lost"));
    const QSet<QString> names(kept.cbegin(), kept.cend());
    int moved = 0;
    const QStringList found = from.entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : found) {
        if (names.contains(name))
            continue;
        if (!lost.mkpath(QStringLiteral("."))
            || !QFile::rename(from.filePath(name), lost.filePath(freeName(lost, name)))) {
            return broken(QStringLiteral("The file %1 cannot be moved to %2.")
                              .arg(from.filePath(name), lost.path()));
        }
        ++moved;
    }
    return moved;
}
