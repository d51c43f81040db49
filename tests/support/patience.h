// SPDX-License-Identifier: MIT

#pragma once

/**
 * How long a test waits for what must happen, in ms: far beyond what it takes even on a machine
 * that has much else to do. It is reached only when something is wrong.
 */
constexpr int patience = 60000;
