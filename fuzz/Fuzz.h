#pragma once

#include <QByteArray>
#include <QString>

// What every target has in common. A target is a file fuzz_NAME.cpp with fuzz(): it gives the input
// to a reader and requires what must hold whatever the input is. Crashes, sanitizer reports, too
// much memory and too much time are found without its help, see fuzz/run.

/// One input. It is not copied: a read behind its end is seen.
void fuzz(const QByteArray& input);

/// Ends the program, as a finding, where the property does not hold.
void require(bool holds, const char* property);
/// The same, saying of what.
void require(bool holds, const char* property, const QString& of);

/// Lines that went to the debug log since the input began. None is printed.
int logLines();
