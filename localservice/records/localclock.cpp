// SPDX-License-Identifier: MIT

#include "localclock.h"

#include <QDateTime>

#include <ctime>

LocalClock::LocalClock()
{
    ::tzset();
}

qint64 LocalClock::now()
{
    return QDateTime::currentSecsSinceEpoch();
}

QByteArray LocalClock::text(qint64 moment, const char *format) const
{
    const auto seconds = std::time_t(moment);
    std::tm shown = {};
    char text[64] = {};
    if (!::localtime_r(&seconds, &shown))
        return {};
    return {text, qsizetype(std::strftime(text, sizeof(text), format, &shown))};
}
