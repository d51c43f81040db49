// SPDX-License-Identifier: MIT

#include "languages.h"

#include <QCoreApplication>
#include <QLibraryInfo>

QString Languages::translationFor(const QStringList &languages)
{
    static const QStringList known{QStringLiteral("de"), QStringLiteral("fi")};
    for (const QString &language : languages) {
        const QString name = language.left(language.indexOf(QLatin1Char('-')));
        if (name == QLatin1String("en"))
            return {}; // preferred to what comes after it
        if (known.contains(name))
            return name;
    }
    return {};
}

void Languages::use(const QLocale &locale)
{
    QCoreApplication::removeTranslator(&m_own);
    QCoreApplication::removeTranslator(&m_toolkit);
    const QString translation = translationFor(locale.uiLanguages());
    if (translation.isEmpty())
        return;
    // The toolkit's first: the program's own count more.
    if (m_toolkit.load(QStringLiteral("qtbase_") + translation,
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&m_toolkit);
    if (m_own.load(QStringLiteral(":/translations/kavlor_") + translation))
        QCoreApplication::installTranslator(&m_own);
}
