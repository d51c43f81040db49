// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

/**
 * Goes by the tab key through all that takes the focus in the window that is in front, until it is
 * back where it began, and looks at each stop with the focus and without. A member sees where the
 * keyboard is when the outline of the control, or of the current cell or tab in it, is of another
 * colour then, by a contrast of 3 to 1.
 *
 * @return what is wrong, stop by stop; empty when every ring is seen.
 */
QString unseenFocus();
