#pragma once

#include "frames/FrameHeader.h"

using TIFF = struct tiff;

/// Whether an image is taken for a damaged header: its rows would take more memory than any
/// detector's frame does.
bool isTooLarge(TIFF* tiff, quint32 width, quint32 height);

/// Whether so much of an image is not in its file, of which it holds so many of the rows at the
/// most, that no memory is taken for it.
bool isTooLittle(quint64 held, quint64 rows, quint64 rowBytes);

/// Size and kind of an open TIFF file, from its tags and the places of its strips.
FrameHeader tiffHeader(TIFF* tiff);

/// The same of a file of 32-bit floats, one a pixel: any other is refused.
FrameHeader floatTiffHeader(TIFF* tiff);

/// Its description (ImageDescription); empty where there is none, and where it is
/// longer than any origin.
QString descriptionIn(TIFF* tiff);
