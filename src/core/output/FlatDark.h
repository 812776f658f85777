#pragma once

/// Writes the neutral frames "flat.dat" (every pixel 1) and "dark.dat" (every pixel 0) of
/// @p width x @p height pixels as TIFF content into the current directory, over existing ones. A
/// negative size counts as 0 and gives files without pixels. Returns whether both frames were
/// written; one that fails does not keep the other from being written.
bool writeFlatDark(int width, int height);
