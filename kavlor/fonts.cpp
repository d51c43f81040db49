// SPDX-License-Identifier: MIT

#include "fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QStringList>

void installFontSubstitutes()
{
    // The first two are the handheld's own; the others come with a package of their own.
    for (const QString &family :
         {QStringLiteral("LargeSystemFont"), QStringLiteral("SmallSystemFont"),
          QStringLiteral("AlMateen"), QStringLiteral("AlArabiya")}) {
        if (!QFontDatabase::hasFamily(family))
            QFont::insertSubstitutions(
                family, {QStringLiteral("DejaVu Sans"), QStringLiteral("Sans Serif")});
    }
}
