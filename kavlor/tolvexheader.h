// SPDX-License-Identifier: MIT

#pragma once

#include "qhttprequestheader.h"

class QString;
class QUrl;

/** The percent-encoded path of @p url as a request names it; "/" when it has none. */
QString tolvexPath(const QUrl &url);

/** The header that every request to @p url begins with: User-Agent, Host and the like. */
QHttpRequestHeader tolvexHeader(const QUrl &url);
