// SPDX-License-Identifier: MIT

#include "formbody.h"
#include "fuzztarget.h"

#include <limits>

// A form as the local service gets it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Fields fields = fieldsOfForm(bytesOf(data, size));
    constexpr int most = 100;
    mustHold(fields.count() <= most);
    const QString name = QStringLiteral("Username");
    mustHold(fields.has(name) || fields.text(name).isEmpty());
    mustHold(fields.number(name, std::numeric_limits<qint32>::max()) >= -1);
    return 0;
}
