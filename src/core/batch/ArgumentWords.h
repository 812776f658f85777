#pragma once

#include <QStringList>

#include "batch/CommandTables.h"

/// The words that an argument of this kind may be, as the reference writes them; they are taken in
/// any case. Empty for a kind that has none. Numbers, files and texts are not among them.
QStringList argumentWords(ArgKind kind);

/// Whether an argument of this kind may be a number.
bool mayBeNumber(ArgKind kind);
