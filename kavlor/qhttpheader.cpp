// SPDX-License-Identifier: MIT

#include "qhttpheader.h"

#include <algorithm>

namespace {

bool isNameCharacter(QChar c)
{
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
        || (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
        || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
        || QLatin1String("!#$%&'*+-.^_`|~").contains(c);
}

bool isValueCharacter(QChar c)
{
    return c == QLatin1Char('\t') || (c >= QLatin1Char(' ') && c != QLatin1Char('\x7f'));
}

} // namespace

QString QHttpHeader::value(const QString &name) const
{
    const qsizetype index = indexOf(name);
    return index < 0 ? QString() : m_fields.at(index).second;
}

const QHttpHeader::Fields &QHttpHeader::fields() const
{
    return m_fields;
}

bool QHttpHeader::isValid() const
{
    return std::all_of(m_fields.cbegin(), m_fields.cend(), [](const auto &field) {
        const auto &[name, value] = field;
        return !name.isEmpty() && std::all_of(name.cbegin(), name.cend(), isNameCharacter)
            && std::all_of(value.cbegin(), value.cend(), isValueCharacter);
    });
}

void QHttpHeader::setValue(const QString &name, const QString &value)
{
    const qsizetype index = indexOf(name);
    if (index < 0)
        m_fields.append({name, value});
    else
        m_fields[index].second = value;
}

void QHttpHeader::setContentLength(qint64 length)
{
    setValue(QStringLiteral("Content-Length"), QString::number(length));
}

void QHttpHeader::setContentType(const QString &type)
{
    setValue(QStringLiteral("Content-type"), type);
}

qsizetype QHttpHeader::indexOf(const QString &name) const
{
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        if (m_fields.at(i).first.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}
