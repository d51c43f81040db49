#include "formbody.h"

#include <QStringDecoder>

#include <algorithm>

namespace {

constexpr qsizetype maxFields = 100;

// Members' devices send the bytes of their own locale: UTF-8, or else Latin-1.
QString decoded(QByteArray value)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(value.replace('+', ' '));
    QStringDecoder utf8(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    const QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

} // namespace

FormBody FormBody::fromUrlEncoded(const QByteArray &body)
{
    FormBody form;
    qsizetype from = 0;
    while (from < body.size() && form.m_fields.size() < maxFields) {
        const qsizetype ampersand = body.indexOf('&', from);
        const QByteArray pair = body.mid(from, ampersand < 0 ? -1 : ampersand - from);
        const qsizetype equals = pair.indexOf('=');
        if (equals > 0)
            form.set(decoded(pair.left(equals)), decoded(pair.mid(equals + 1)));
        from = ampersand < 0 ? body.size() : ampersand + 1;
    }
    return form;
}

void FormBody::set(const QString &name, const QString &value)
{
    m_fields.insert(name, value);
}

bool FormBody::has(const QString &name) const
{
    return m_fields.contains(name);
}

QString FormBody::text(const QString &name) const
{
    return m_fields.value(name);
}

qint64 FormBody::number(const QString &name, qint64 most) const
{
    const QString digits = text(name);
    const bool isWhole = !digits.isEmpty() && digits.size() <= 18
        && std::all_of(digits.cbegin(), digits.cend(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    const qint64 number = isWhole ? digits.toLongLong() : -1;
    return number <= most ? number : -1;
}
