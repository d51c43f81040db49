#include "testcase.h"

#include "testconstants.h"

#include <QRegularExpression>
#include <QTest>

void TestCase::init()
{
    resetTestConstants();
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
}
