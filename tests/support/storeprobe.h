// SPDX-License-Identifier: MIT

#pragma once

#include "auctionrecord.h"
#include "kavloruser.h"

/** What the store probe saves as number so-and-so, so that a test knows it again. */
namespace StoreProbe {

inline QString member()
{
    return QStringLiteral("m1");
}

// Longer and shorter ones in turn, so that the end of one does not hide behind another's.
inline QString text(int number, int field)
{
    return QStringLiteral("%1 of %2 ").arg(field).arg(number).repeated(1 + number * 7 % 40);
}

inline CKavlorUser::Fields fields(int number)
{
    CKavlorUser::Fields fields;
    for (int field = 0; field < CKavlorUser::fieldCount; ++field)
        fields[field] = text(number, field);
    fields[CKavlorUser::Username] = member();
    return fields;
}

inline CAuctionRecord record(int number)
{
    CAuctionRecord record;
    record.mediaPath = text(number, 1);
    record.caption = text(number, 2);
    record.description = text(number, 3);
    record.category = number;
    return record;
}

} // namespace StoreProbe
