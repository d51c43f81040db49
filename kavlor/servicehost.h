// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

/**
 * The host of the auction service, as "host" or "host:port".
 *
 * Chosen when the program is configured (KAVLOR_SERVICE_HOST). It stands in a file of its own so
 * that a test can be linked against another definition.
 */
QString serviceHost();
