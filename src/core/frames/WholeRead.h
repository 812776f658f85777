#pragma once

#include <QtGlobal>

/// Reads all of a piece of a file into memory: 0; else why not, as errno says it, or -1 where the
/// file ends before.
int readWhole(int descriptor, quint64 offset, void* to, quint64 bytes);
