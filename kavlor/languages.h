// SPDX-License-Identifier: MIT

#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>
#include <QTranslator>

/**
 * The language in which the program speaks to the member: English, as in the sources, or one of
 * the translations that are built in. The toolkit's own texts follow from where it is installed.
 *
 * Made after the application object and kept for as long as texts are shown.
 */
class Languages
{
public:
    Languages() = default;
    Q_DISABLE_COPY_MOVE(Languages)

    /**
     * The translation for a member who prefers @p languages, best first, such as "de-AT"; empty for
     * English, also when none of them is known.
     */
    static QString translationFor(const QStringList &languages);

    /** Speaks the language of @p locale from now on; every widget gets a LanguageChange event. */
    void use(const QLocale &locale);

private:
    QTranslator m_own;
    QTranslator m_toolkit;
};
