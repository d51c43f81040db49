// SPDX-License-Identifier: MIT

#pragma once

#include <QtTest>

/**
 * One step of a flow with the real client: it was done, or the test fails with the client's words
 * why not. For tests that have a WholeSystem named m_system.
 */
#define DO(step) QVERIFY2(step, qPrintable(m_system.client->error()))
