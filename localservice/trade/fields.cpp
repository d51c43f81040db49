// SPDX-License-Identifier: MIT

#include "fields.h"

#include <algorithm>

void Fields::set(const QString &name, const QString &value)
{
    m_values.insert(name, value);
}

bool Fields::has(const QString &name) const
{
    return m_values.contains(name);
}

int Fields::count() const
{
    return int(m_values.size());
}

QString Fields::text(const QString &name) const
{
    return m_values.value(name);
}

qint64 Fields::number(const QString &name, qint64 most) const
{
    const QString digits = text(name);
    const bool isWhole = !digits.isEmpty() && digits.size() <= 18
        && std::all_of(digits.cbegin(), digits.cend(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    const qint64 number = isWhole ? digits.toLongLong() : -1;
    return number <= most ? number : -1;
}
