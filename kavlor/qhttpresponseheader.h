// SPDX-License-Identifier: MIT

#pragma once

#include "qhttpheader.h"

/** The header of an HTTP reply: its status code and its fields. A plain value. */
class QHttpResponseHeader : public QHttpHeader
{
public:
    QHttpResponseHeader() = default;
    explicit QHttpResponseHeader(int statusCode);

    /** As the server gave it; 0 when it gave none that is a number. */
    int statusCode() const;

private:
    int m_statusCode = 0;
};
