#include "liststyle.h"

const ListStyle &listStyle()
{
    static const ListStyle theOne;
    return theOne;
}
