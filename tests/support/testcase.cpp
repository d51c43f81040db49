#include "testcase.h"

#include "testconstants.h"

#include <QRegularExpression>
#include <QTest>

void TestCase::init()
{
    resetTestConstants();
    // All but what the offscreen platform says it cannot do.
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support )")));
}
