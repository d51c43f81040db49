// SPDX-License-Identifier: MIT

#include "rowcheckbox.h"

bool RowCheckBox::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}
