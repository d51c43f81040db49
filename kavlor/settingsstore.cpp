// SPDX-License-Identifier: MIT

#include "settingsstore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

void closeToOthers(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    // Made with the narrow rights from the first moment: QSettings keeps the rights of a file that
    // it finds, but would make a new one readable by everybody.
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, ownerOnly))
        return;
    if (file.exists())
        file.setPermissions(ownerOnly);
}

} // namespace

std::unique_ptr<QSettings> openSettingsStore()
{
    auto settings = std::make_unique<QSettings>(QStringLiteral("kavlor"), QStringLiteral("kavlor"));
    closeToOthers(settings->fileName());
    return settings;
}
