// SPDX-License-Identifier: MIT

#pragma once

#include <QApplication>
#include <QTest>

/** The main function of a test program: an application named like the client, then the tests. */
#define KAVLOR_TEST_MAIN(TestClass)                                                                \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        QApplication app(argc, argv);                                                              \
        app.setQuitOnLastWindowClosed(false);                                                      \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
