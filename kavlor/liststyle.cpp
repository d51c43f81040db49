// SPDX-License-Identifier: MIT

#include "liststyle.h"

const ListStyle &listStyle()
{
    static const ListStyle theOne;
    return theOne;
}
