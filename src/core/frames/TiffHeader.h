#pragma once

#include <vector>

#include "frames/FrameHeader.h"

using TIFF = struct tiff;

/// Whether an image is taken for a damaged header: its rows would take more memory than any
/// detector's frame does.
bool isTooLarge(TIFF* tiff, quint32 width, quint32 height);

/// Size and kind of an open TIFF file, from its tags and the places of its strips.
FrameHeader tiffHeader(TIFF* tiff);

/// The same of a file of 32-bit floats, one a pixel: any other is refused.
FrameHeader floatTiffHeader(TIFF* tiff);

/// Its description (ImageDescription); empty where there is none.
QString descriptionIn(TIFF* tiff);

/// Rows that lie one after another in a file: a strip, or several neighbours.
struct StripRun {
    quint64 offset;  ///< bytes from the start of the file
    quint64 rows;
};

/// Where the rows of the plainest kind of file lie (whole strips of uncompressed 16-bit counts), in
/// order. Nothing for any other file, which is to be read row by row.
std::vector<StripRun> plainRuns(TIFF* tiff, quint32 width, quint32 height);
