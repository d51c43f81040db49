// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

// The look that all frames share. Its rules are kept as style sheets among the program's resources.

/** For the root window: its background, and the tool tips and table headers of all it holds. */
QString rootStyleSheet();

/**
 * For the area that holds the content frames, which inherit it.
 *
 * A form sets these properties of its widgets instead of repeating rules:
 * "main" on a push button that leads on, "green" on one that confirms, "panel" on what stands on
 * the translucent panel, "error" on a label that tells a fault.
 */
QString themeStyleSheet();

/** For a message box, which may or may not have a frame with a style sheet of its own above it. */
QString messageBoxStyleSheet();

/** For the dialog that chooses a file. */
QString fileDialogStyleSheet();
