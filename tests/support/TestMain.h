#pragma once

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "base/Globals.h"

/// The columns of a table of test data: columns<int, QString>("number", "text").
template <typename... Values, typename... Names>
void columns(Names... names) {
    (QTest::addColumn<Values>(names), ...);
}

// QTEST_MAIN and its kin with the process-wide tables built first, as in the programs, and with
// settings of its own: those of the user are neither read nor written.
#define TARNWICK_TEST_MAIN(APPLICATION, TEST)                                               \
    int main(int argc, char** argv) {                                                       \
        initGlobals();                                                                      \
        const QTemporaryDir settings;                                                       \
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path()); \
        APPLICATION app(argc, argv);                                                        \
        TEST test;                                                                          \
        return QTest::qExec(&test, argc, argv);                                             \
    }
