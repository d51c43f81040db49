// SPDX-License-Identifier: MIT

#pragma once

#include "patience.h"

#include <QTest>

/** Waits until @p predicate holds; false when the patience is over. */
template <typename Predicate>
bool waitUntil(Predicate predicate)
{
    return QTest::qWaitFor(predicate, patience);
}

// QtTest's own waits are over after 5 s, which a machine that has much else to do may take.
#undef QTRY_VERIFY
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), patience)
#undef QTRY_VERIFY2
#define QTRY_VERIFY2(condition, text) QTRY_VERIFY2_WITH_TIMEOUT((condition), text, patience)
#undef QTRY_COMPARE
#define QTRY_COMPARE(value, expected) QTRY_COMPARE_WITH_TIMEOUT((value), expected, patience)
