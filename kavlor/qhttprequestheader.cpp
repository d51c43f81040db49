// SPDX-License-Identifier: MIT

#include "qhttprequestheader.h"

QHttpRequestHeader::QHttpRequestHeader(const QString &method, const QString &path)
    : m_method(method)
    , m_path(path)
{
}

QString QHttpRequestHeader::method() const
{
    return m_method;
}

QString QHttpRequestHeader::path() const
{
    return m_path;
}
