// SPDX-License-Identifier: MIT

#include "formbody.h"

#include <QStringDecoder>

namespace {

constexpr int maxFields = 100;

// Members' devices send the bytes of their own locale: UTF-8, or else Latin-1.
QString decoded(QByteArray value)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(value.replace('+', ' '));
    QStringDecoder utf8(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    const QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

} // namespace

Fields fieldsOfForm(const QByteArray &body)
{
    Fields form;
    qsizetype from = 0;
    while (from < body.size() && form.count() < maxFields) {
        const qsizetype ampersand = body.indexOf('&', from);
        const QByteArray pair = body.mid(from, ampersand < 0 ? -1 : ampersand - from);
        const qsizetype equals = pair.indexOf('=');
        if (equals > 0)
            form.set(decoded(pair.left(equals)), decoded(pair.mid(equals + 1)));
        from = ampersand < 0 ? body.size() : ampersand + 1;
    }
    return form;
}
