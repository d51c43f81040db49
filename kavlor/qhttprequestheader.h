// SPDX-License-Identifier: MIT

#pragma once

#include "qhttpheader.h"

/**
 * The header of an HTTP/1.1 request: its method, its percent-encoded path and its fields.
 *
 * A plain value; QHttp sends the fields in their order and spelling.
 */
class QHttpRequestHeader : public QHttpHeader
{
public:
    QHttpRequestHeader(const QString &method, const QString &path);

    QString method() const;
    QString path() const;

private:
    QString m_method;
    QString m_path;
};
