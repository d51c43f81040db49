// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

/**
 * What this machine's clock on the wall shows. Moments are kept as seconds since 1970.
 *
 * The time zone is looked up once for each clock, since that costs more than all else: one clock
 * serves for a whole list.
 */
class LocalClock
{
public:
    LocalClock();

    /** The moment that it is. */
    static qint64 now();
    /** @p moment as strftime() writes it, such as "%Y-%m-%d %H:%M". */
    QByteArray text(qint64 moment, const char *format) const;
};
