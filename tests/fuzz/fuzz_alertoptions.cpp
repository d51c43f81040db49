// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "kavlornotificationoptions.h"

#include <QStringList>

// The choice of alerts as the service sends it; whatever it was, what goes back is four flags.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    CKavlorNotificationOptions options;
    options.parse(textOf(data, size));
    const QStringList flags = options.toText().split(QLatin1Char(','));
    mustHold(flags.size() == 4);
    for (const QString &flag : flags)
        mustHold(flag == QLatin1String("0") || flag == QLatin1String("1"));
    return 0;
}
