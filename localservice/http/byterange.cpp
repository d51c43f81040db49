// SPDX-License-Identifier: MIT

#include "byterange.h"

#include <QRegularExpression>

#include <algorithm>

std::optional<ByteRange> ByteRange::parse(const QByteArray &line, qint64 size)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A\\s*bytes\\s*=\\s*([0-9]{0,18})\\s*-\\s*([0-9]{0,18})\\s*\\z"));
    const QRegularExpressionMatch match = pattern.match(QString::fromLatin1(line));
    const QString from = match.captured(1);
    const QString to = match.captured(2);
    if (!match.hasMatch() || (from.isEmpty() && to.isEmpty()))
        return {};
    if (from.isEmpty()) {
        const qint64 length = std::min(to.toLongLong(), size);
        return ByteRange{size - length, length};
    }
    const qint64 first = from.toLongLong();
    const qint64 last = to.isEmpty() ? size - 1 : std::min(to.toLongLong(), size - 1);
    if (!to.isEmpty() && to.toLongLong() < first)
        return {};
    return ByteRange{first, std::max<qint64>(0, last - first + 1)};
}
