// SPDX-License-Identifier: MIT

#pragma once

class QWidget;

/**
 * Has a screen reader say what @p widget, such as a label that tells a fault, shows now: it stands
 * where the member is not. To be called once the text is there.
 */
void announce(QWidget *widget);
