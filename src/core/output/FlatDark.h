#pragma once

#include "frames/TiffFile.h"

/// A neutral frame that is written into the current folder.
struct FlatDark {
    const char* name;
    bool (*write)(const QString& name, quint32 width, quint32 height);
};

/// Every pixel 1, and every pixel 0.
constexpr FlatDark FlatDarkFiles[] = {{"flat.dat", writeOnesTiff}, {"dark.dat", writeZerosTiff}};

/// Writes one of them, over an existing one. A negative size counts as 0 and gives a file without
/// pixels, which counts as a failure.
bool writeFlatDark(const FlatDark& file, int width, int height);
