// SPDX-License-Identifier: MIT

#include "testconstants.h"

#include "servicehost.h"

namespace {

QString &host()
{
    static QString text = QStringLiteral("127.0.0.1:9");
    return text;
}

} // namespace

void setServiceHost(const QString &newHost)
{
    host() = newHost;
}

TimeConstants &testTimeConstants()
{
    static TimeConstants constants;
    return constants;
}

void resetTestConstants()
{
    setServiceHost(QStringLiteral("127.0.0.1:9"));
    testTimeConstants() = TimeConstants();
    testTimeConstants().startUpMinimum = 100;
    testTimeConstants().proxyAnswer = 0; // good for no other test
    testTimeConstants().nameAnswer = 0;
}

QString serviceHost()
{
    return host();
}

const TimeConstants &timeConstants()
{
    return testTimeConstants();
}
