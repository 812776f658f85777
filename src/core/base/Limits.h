#pragma once

#include <QtGlobal>

/// What a file may hold, an array may have, a text may be long: the greatest that is taken, and
/// why. Each is held against what is about to be allocated, before it is.
namespace Limits {

/// Pixels of a frame and of a map: those of 16384 x 16384, more than any detector has. Their counts
/// take 512 MB, a map of them 2 GB: beyond what Qt's containers and pictures hold (2^31 bytes), so
/// that arrays with an element for each pixel are std::vector or MapValues.
constexpr qint64 MostPixels = qint64(1) << 28;

/// Pixels of a row and of a column: a row of a table has up to 100 columns of 25 bytes for each, in
/// one of Qt's byte arrays. Corners of areas reach as far.
constexpr qint64 LongestSide = 1 << 20;

/// Pixels that the narrowest row counts as: a row costs memory of its own.
constexpr quint64 SmallestRow = 32;

/// Bytes of a frame or map that are taken whatever little the file holds of it: so much costs less
/// than a second. More only as the file proves it.
constexpr quint64 SmallImage = quint64(64) << 20;

/// A file may claim so many times what has been found in it.
constexpr quint64 MostClaimed = 2;

// What a byte of a strip becomes at the most. Of deflate: a match of 258 bytes takes two bits. Of
// LZW: texts as long as the table, 3838 codes, each longer by one, in 12 bits. Of PackBits: two
// bytes repeat one 128 times.
constexpr quint64 MostOfDeflate = 1040;
constexpr quint64 MostOfLzw = 1400;
constexpr quint64 MostOfPackBits = 64;

/// Memory in bytes that libtiff may take at once for a file of no size; MostOfLzw times what the
/// file holds comes on top, up to that of the largest frame of doubles.
constexpr quint64 LeastForTiff = quint64(64) << 20;
constexpr quint64 MostForTiff = quint64(8) * quint64(MostPixels);

/// Characters of a line in a text file: longer ones are of foreign binary files, and are cut.
constexpr qint64 LongestLine = 1 << 16;

/// Bytes of a text file that is read whole, as spectra are: a hundred times those of the longest
/// scan. Its text, split into lines, takes ten times as much.
constexpr qint64 LargestText = qint64(64) << 20;

/// Characters of a number in a file: the longest double in full has 767 digits.
constexpr qint64 LongestNumber = 1 << 16;

/// Bytes of the origin and record of a saved result, in any kind of file.
constexpr qint64 LongestOrigin = qint64(32) << 20;

/// Chunks of a picture that are looked through for its origin.
constexpr int MostChunks = 100000;

}  // namespace Limits
