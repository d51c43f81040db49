#include "timeconstants.h"

const TimeConstants &timeConstants()
{
    static const TimeConstants constants;
    return constants;
}
