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
/// scan. Its text, split into lines, takes MemoryOfText times as much.
constexpr qint64 LargestText = qint64(64) << 20;
constexpr quint64 MemoryOfText = 10;

/// Characters of a number in a file: the longest double in full has 767 digits.
constexpr qint64 LongestNumber = 1 << 16;

/// Bytes of the origin and record of a saved result, in any kind of file.
constexpr qint64 LongestOrigin = qint64(32) << 20;

/// Bytes that a value of an energy map takes in its file at the least, with its blank: a header is
/// held against them.
constexpr qint64 LeastOfMapValue = 2;

/// Corners and vertices of an area lie no further from 0 than this, as far as a side is long: what
/// is worked out from them in whole numbers stays within 64 bits.
constexpr int LargestCoordinate = 1 << 20;

/// Vertices of the area that a threshold makes, in one of Qt's arrays of 512 MB: a map of so many
/// pixels that is nothing but noise has fewer.
constexpr qint64 MostVertices = qint64(1) << 26;

/// Vertices of an area in a record or origin, 14 bytes each: more are made by a threshold alone and
/// are not written.
constexpr int MostWrittenVertices = 10000;

/// Replacements of loop variables in one argument of a line, and its length in characters, at which
/// filling them in gives up: a variable may hold itself, or others many times.
constexpr int MostReplacements = 10000;
constexpr int LongestArgument = 1 << 20;

/// What a number in the name of a frame may be: in eV also when it is one of keV, and far beyond
/// any energy.
constexpr double LargestInName = 1e300;

/// Threads that an option may ask for: more cores than any machine has.
constexpr int MostThreads = 1024;

/// Chunks of a picture that are looked through for its origin.
constexpr int MostChunks = 100000;

}  // namespace Limits
