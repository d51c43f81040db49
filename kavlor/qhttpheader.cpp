#include "qhttpheader.h"

namespace {

QString withoutLineEnds(QString text)
{
    text.remove(QLatin1Char('\r')).remove(QLatin1Char('\n')).remove(QChar::Null);
    return text;
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

void QHttpHeader::setValue(const QString &name, const QString &value)
{
    const QString cleanName = withoutLineEnds(name);
    const qsizetype index = indexOf(cleanName);
    if (index < 0)
        m_fields.append({cleanName, withoutLineEnds(value)});
    else
        m_fields[index].second = withoutLineEnds(value);
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
