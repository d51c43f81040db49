#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

/**
 * The fields of a request, whichever way they travelled.
 *
 * A field that was not sent and one that was sent empty read the same, but for has().
 */
class FormBody
{
public:
    FormBody() = default;

    /**
     * Reads "name=value" pairs joined by "&", percent-encoded. Empty pairs are passed over, so
     * doubled ampersands do no harm; of a repeated field the last one stands. After a hundred
     * fields the rest is passed over.
     */
    static FormBody fromUrlEncoded(const QByteArray &body);

    void set(const QString &name, const QString &value);
    bool has(const QString &name) const;
    QString text(const QString &name) const;
    /** The whole number from 0 up to @p most in a field, or -1. Signs and blanks are refused. */
    qint64 number(const QString &name, qint64 most) const;

private:
    QHash<QString, QString> m_fields;
};
