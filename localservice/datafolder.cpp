#include "datafolder.h"

#include "passwords.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

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

} // namespace

DataFolder::DataFolder(const QString &path)
    : m_path(QDir(path).absolutePath())
    , m_lock(m_path + QStringLiteral("/lock"))
{
    m_lock.setStaleLockTime(0);
}

QString DataFolder::open()
{
    const QStringList folders{m_path, m_path + QStringLiteral("/media"),
                              m_path + QStringLiteral("/incoming")};
    for (const QString &folder : folders) {
        if (!QDir().mkpath(folder))
            return QStringLiteral("The folder %1 cannot be made.").arg(folder);
    }
    const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (!QFile::setPermissions(m_path, ownerOnly))
        return QStringLiteral("The folder %1 cannot be closed to others.").arg(m_path);
    if (!m_lock.tryLock())
        return QStringLiteral("The folder %1 is in use by another service.").arg(m_path);
    return {};
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

QString DataFolder::publish(QTemporaryFile &incoming, const QString &extension) const
{
    const QString name = QString::fromLatin1(randomName()) + QLatin1Char('.') + extension;
    if (!incoming.flush() || ::fsync(incoming.handle()) != 0)
        return {};
    if (::rename(QFile::encodeName(incoming.fileName()).constData(),
                 QFile::encodeName(mediaPath(name)).constData())
        != 0) {
        return {};
    }
    incoming.setAutoRemove(false);
    return syncFolder(m_path + QStringLiteral("/media")) ? name : QString();
}

void DataFolder::removeMedia(const QString &name) const
{
    QFile::remove(mediaPath(name));
}

void DataFolder::removeLeftovers(const QStringList &namedMedia) const
{
    QDir incoming(m_path + QStringLiteral("/incoming"));
    const QStringList parts = incoming.entryList(QDir::Files | QDir::Hidden);
    for (const QString &part : parts)
        incoming.remove(part);

    QDir media(m_path + QStringLiteral("/media"));
    const QSet<QString> named(namedMedia.cbegin(), namedMedia.cend());
    const QStringList found = media.entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : found) {
        if (!named.contains(name))
            media.remove(name);
    }
}
