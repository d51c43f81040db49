// SPDX-License-Identifier: MIT

#pragma once

class QSpinBox;

/**
 * Has @p box write a price as the member's locale groups its digits: 12.000 in German. In English
 * it stays without, as in the summary.
 */
void writePriceByLocale(QSpinBox *box);
