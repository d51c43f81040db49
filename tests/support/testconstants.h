// SPDX-License-Identifier: MIT

#pragma once

#include "timeconstants.h"

#include <QString>

// This library stands in for the program's service host and time constants. A test sets them to
// what it needs; until then the host is a port nobody listens on and the times are the program's
// own, except that the start-up window does not hold up every flow for 5 s.

void setServiceHost(const QString &host);
TimeConstants &testTimeConstants();
/** Back to what stands before each test function. */
void resetTestConstants();
