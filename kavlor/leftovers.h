// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

/**
 * Removes what a program that was killed while it saved @p file has left beside it: the new
 * contents under a name of their own, the file's with six letters after it. Whoever calls this sees
 * to it that nobody is saving the file meanwhile.
 *
 * What could be a word, as a member's own "backup", is left alone; one leftover in twenty is too.
 */
void removeLeftovers(const QString &file);
