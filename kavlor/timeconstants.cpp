// SPDX-License-Identifier: MIT

#include "timeconstants.h"

const TimeConstants &timeConstants()
{
    static const TimeConstants constants;
    return constants;
}
