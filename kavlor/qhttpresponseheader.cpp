// SPDX-License-Identifier: MIT

#include "qhttpresponseheader.h"

QHttpResponseHeader::QHttpResponseHeader(int statusCode)
    : m_statusCode(statusCode)
{
}

int QHttpResponseHeader::statusCode() const
{
    return m_statusCode;
}
