// SPDX-License-Identifier: MIT

#include "settingsstore.h"

#include "leftovers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

void closeToOthers(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    // Made with the narrow rights from the first moment: QSettings keeps the rights of a file that
    // it finds.
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, ownerOnly))
        return;
    if (file.exists())
        file.setPermissions(ownerOnly);
}

// Of a program that was killed just when it made its lock, QSettings knows neither that it is dead
// nor who it was, and would wait half a minute for it. Whoever lives holds the file itself, too.
void removeAbandonedLock(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const int lock = ::open(name.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (lock < 0)
        return;
    if (::flock(lock, LOCK_EX | LOCK_NB) == 0)
        ::unlink(name.constData());
    ::close(lock);
}

// What killed programs left. QSettings saves only while it has the lock.
void tidyUp(const QString &path)
{
    const QString lockPath = path + QStringLiteral(".lock");
    removeAbandonedLock(lockPath);
    QLockFile lock(lockPath);
    if (lock.tryLock(0))
        removeLeftovers(path);
}

} // namespace

std::unique_ptr<QSettings> openSettingsStore()
{
    // QSettings makes a file anew that somebody has removed, as wide as it may.
    ::umask(S_IRWXG | S_IRWXO);
    auto settings = std::make_unique<QSettings>(QStringLiteral("kavlor"), QStringLiteral("kavlor"));
    closeToOthers(settings->fileName());
    tidyUp(settings->fileName());
    return settings;
}
