// SPDX-License-Identifier: MIT

#pragma once

#include <QHash>
#include <QString>

/**
 * The fields that a request came with, whichever way they travelled.
 *
 * A field that was not sent and one that was sent empty read the same, but for has().
 */
class Fields
{
public:
    Fields() = default;

    void set(const QString &name, const QString &value);
    bool has(const QString &name) const;
    int count() const;
    QString text(const QString &name) const;
    /** The whole number from 0 up to @p most in a field, or -1. Signs and blanks are refused. */
    qint64 number(const QString &name, qint64 most) const;

private:
    QHash<QString, QString> m_values;
};
