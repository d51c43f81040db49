// SPDX-License-Identifier: MIT

#pragma once

#include <QCheckBox>

/** A check box that answers wherever it is touched, not on its mark and its letters alone. */
class RowCheckBox : public QCheckBox
{
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

protected:
    bool hitButton(const QPoint &position) const override;
};
