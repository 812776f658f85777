#pragma once

#include <QString>

// Debug lines in the two forms that the program uses. Failures are said once, in one line; no
// dialog reports an error.

/// "message name": the fixed message of a failure and the file that it is about.
void debugFile(const char* message, const QString& fileName);

/// The message followed by the local date and time, "yyMMdd hh:mm:ss.zzz".
void debugTimed(const QString& message);

/// The current local date and time as "yyMMdd hh:mm:ss.zzz".
QString timeStamp();
