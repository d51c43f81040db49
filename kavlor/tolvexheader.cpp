// SPDX-License-Identifier: MIT

#include "tolvexheader.h"

#include <QString>
#include <QUrl>

QString tolvexPath(const QUrl &url)
{
    const QByteArray path = QUrl::toPercentEncoding(url.path(QUrl::FullyDecoded), "!$&'()*+,;=:@/");
    return path.isEmpty() ? QStringLiteral("/") : QString::fromLatin1(path);
}

QHttpRequestHeader tolvexHeader(const QUrl &url)
{
    const QString host = url.authority(QUrl::FullyEncoded).section(QLatin1Char('@'), -1);
    QHttpRequestHeader header(QStringLiteral("POST"), tolvexPath(url));
    header.setValue(QStringLiteral("User-Agent"),
                    QStringLiteral("Nokia N900, kavlor application " KAVLOR_VERSION));
    header.setValue(QStringLiteral("Host"), host);
    header.setValue(QStringLiteral("Connection"), QStringLiteral("Keep-Alive"));
    header.setValue(QStringLiteral("Cache-Control"), QStringLiteral("no-cache"));
    header.setValue(QStringLiteral("Accept"), QStringLiteral("*/*"));
    header.setValue(QStringLiteral("Accept-Language"), QStringLiteral("en-us"));
    header.setValue(QStringLiteral("Accept-Encoding"), QStringLiteral("gzip,deflate"));
    header.setValue(QStringLiteral("Accept-Charset"), QStringLiteral("ISO-8859-1,utf-8"));
    return header;
}
