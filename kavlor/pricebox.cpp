// SPDX-License-Identifier: MIT

#include "pricebox.h"

#include <QLocale>
#include <QSpinBox>

void writePriceByLocale(QSpinBox *box)
{
    const QLocale::Language language = box->locale().language();
    box->setGroupSeparatorShown(language != QLocale::English && language != QLocale::C);
}
