// SPDX-License-Identifier: MIT

#pragma once

#include "waituntil.h"

#include <QObject>

/**
 * What every test class of the project derives from: before each test function the constants are
 * reset, and from then on a warning that the function does not expect fails it.
 *
 * A class with an init() of its own calls TestCase::init() first.
 */
class TestCase : public QObject
{
    Q_OBJECT

protected slots:
    void init();
};
