// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

/** The most memory that this process has held since resetPeakMemory(), or ever; in KiB. */
qint64 peakMemory();
/**
 * peakMemory(); under the address sanitizer, which keeps its notes of every way to an allocation
 * for ever, what the program itself has allocated now. In KiB.
 */
qint64 ownMemory();
/** Lets the peak begin anew with what is held now. False where the system does not allow it. */
bool resetPeakMemory();
/** The most memory that the process @p id has held, in KiB; 0 when there is none. */
qint64 peakMemoryOf(qint64 id);
