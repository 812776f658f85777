#pragma once

#include <QtTest>

#include "base/Globals.h"

/// The columns of a table of test data: columns<int, QString>("number", "text").
template <typename... Values, typename... Names>
void columns(Names... names) {
    (QTest::addColumn<Values>(names), ...);
}

// QTEST_MAIN and its kin with the process-wide tables built first, as in the programs.
#define TARNWICK_TEST_MAIN(APPLICATION, TEST)   \
    int main(int argc, char** argv) {           \
        initGlobals();                          \
        APPLICATION app(argc, argv);            \
        TEST test;                              \
        return QTest::qExec(&test, argc, argv); \
    }
