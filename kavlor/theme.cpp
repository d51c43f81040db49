// SPDX-License-Identifier: MIT

#include "theme.h"

#include <QFile>

namespace {

QString styleSheet(const QString &name)
{
    QFile file(QStringLiteral(":/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The style sheet %s is not part of the program.", qPrintable(name));
    return QString::fromUtf8(file.readAll());
}

} // namespace

QString rootStyleSheet()
{
    return styleSheet(QStringLiteral("root.qss")) + styleSheet(QStringLiteral("shared.qss"));
}

QString themeStyleSheet()
{
    return styleSheet(QStringLiteral("shared.qss")) + styleSheet(QStringLiteral("theme.qss"));
}

QString messageBoxStyleSheet()
{
    return themeStyleSheet() + styleSheet(QStringLiteral("messagebox.qss"));
}

QString fileDialogStyleSheet()
{
    return themeStyleSheet() + styleSheet(QStringLiteral("filedialog.qss"));
}
