// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QPair>
#include <QString>

/**
 * The fields of an HTTP header, in order.
 *
 * A plain value. Names keep the spelling they were set with and are compared without regard to
 * case. Any text can be set; isValid() tells whether it can be sent.
 */
class QHttpHeader
{
public:
    using Fields = QList<QPair<QString, QString>>;

    /** The value of the field @p name; empty when there is none. */
    QString value(const QString &name) const;
    const Fields &fields() const;
    /** Whether all names are words as HTTP knows them, and no value holds a control character. */
    bool isValid() const;

    /** Gives the field @p name this value, in its place when it has one, else at the end. */
    void setValue(const QString &name, const QString &value);
    void setContentLength(qint64 length);
    void setContentType(const QString &type);

private:
    qsizetype indexOf(const QString &name) const;

    Fields m_fields;
};
