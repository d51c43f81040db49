// SPDX-License-Identifier: MIT

#include "servicehost.h"

QString serviceHost()
{
    return QStringLiteral(KAVLOR_SERVICE_HOST);
}
