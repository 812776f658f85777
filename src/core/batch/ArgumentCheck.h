#pragma once

#include <QStringList>

#include "measurement/Outcome.h"

struct CommandRow;

/// Whether the arguments of a line read as its row declares them: enough of them, numbers that are
/// numbers (none is infinite), words that are known. Failed: the line must not be carried out.
/// Surplus arguments, and a mode that is neither NEW nor ADD, are warnings.
Outcome judgeArguments(const CommandRow& row, const QStringList& args);

/// The arguments as the commands take them: names of files and folders mean the same to Qt as to
/// the system.
QStringList withTypedNames(const CommandRow& row, QStringList args);
