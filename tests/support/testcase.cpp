// SPDX-License-Identifier: MIT

#include "testcase.h"

#include "testconstants.h"

#include <QRegularExpression>
#include <QTest>

void TestCase::init()
{
    resetTestConstants();
    // All but what the offscreen platform says it cannot do, and what the network stack says from
    // Qt 6.7 on when a service sends an odd header.
    QTest::failOnWarning(QRegularExpression(
        QStringLiteral("^(?!This plugin does not support |HTTP header (name|value) contained )")));
}
