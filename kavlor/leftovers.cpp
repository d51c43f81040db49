// SPDX-License-Identifier: MIT

#include "leftovers.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

void removeLeftovers(const QString &file)
{
    static const QRegularExpression sixLetters(QStringLiteral("\\A[A-Za-z]{6}\\z"));
    static const QRegularExpression word(QStringLiteral("\\A([A-Za-z][a-z]*|[A-Z]*)\\z"));
    const QFileInfo kept(file);
    const QString prefix = kept.fileName() + QLatin1Char('.');
    QDir folder = kept.absoluteDir();
    const QStringList names =
        folder.entryList({prefix + QStringLiteral("??????")}, QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        const QString letters = name.mid(prefix.size());
        if (sixLetters.match(letters).hasMatch() && !word.match(letters).hasMatch())
            folder.remove(name);
    }
}
