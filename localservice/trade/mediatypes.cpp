// SPDX-License-Identifier: MIT

#include "mediatypes.h"

#include <QHash>

namespace {

const QHash<QString, QByteArray> &types()
{
    static const QHash<QString, QByteArray> all{
        {QStringLiteral("png"), "image/png"},
        {QStringLiteral("jpg"), "image/jpeg"},
        {QStringLiteral("jpeg"), "image/jpeg"},
        {QStringLiteral("bmp"), "image/bmp"},
        {QStringLiteral("gif"), "image/gif"},
        {QStringLiteral("tiff"), "image/tiff"},
        {QStringLiteral("pbm"), "image/x-portable-bitmap"},
        {QStringLiteral("pgm"), "image/x-portable-graymap"},
        {QStringLiteral("ppm"), "image/x-portable-pixmap"},
        {QStringLiteral("xbm"), "image/x-xbitmap"},
        {QStringLiteral("xpm"), "image/x-xpixmap"},
        {QStringLiteral("mp4"), "video/mp4"},
        {QStringLiteral("3gp"), "video/3gpp"},
    };
    return all;
}

QString ending(const QString &fileName)
{
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : fileName.mid(dot + 1).toLower();
}

} // namespace

QString mediaExtension(const QString &fileName)
{
    const QString found = ending(fileName);
    return types().contains(found) ? found : QString();
}

bool isVideo(const QString &fileName)
{
    return mediaType(fileName).startsWith("video/");
}

QByteArray mediaType(const QString &fileName)
{
    return types().value(ending(fileName), "application/octet-stream");
}
