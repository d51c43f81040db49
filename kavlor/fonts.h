// SPDX-License-Identifier: MIT

#pragma once

/**
 * Gives every font family that the program names, but this system lacks, a substitute that it has.
 *
 * A system that knows the family keeps it. Only the face is chosen here; the sizes are those that
 * the forms ask for. Called once, after the application object exists.
 */
void installFontSubstitutes();
