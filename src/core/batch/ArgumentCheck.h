#pragma once

#include <QStringList>

#include "measurement/Outcome.h"

struct CommandRow;

/// Whether the arguments of a line read as its row declares them: enough of them, numbers that are
/// numbers (none is infinite), words that are known. Failed: the line must not be carried out.
/// Surplus arguments, and a mode that is neither NEW nor ADD, are warnings.
Outcome judgeArguments(const CommandRow& row, const QStringList& args);
