#pragma once

#include <QSize>
#include <QString>
#include <cstddef>
#include <functional>
#include <vector>

#include "frames/FrameHeader.h"

class QIODevice;

/// Writes width x height 16-bit values, row after row, as an uncompressed single-channel TIFF.
///
/// Rows per strip is the image's width, and after each strip the place in the data moves on by
/// twice the strip's bytes. Both are kept as they are: an image at least as wide as it is high is
/// one strip and comes out right; the strips of a taller one are taken from twice as far apart,
/// with zeros for what lies beyond the data.
///
/// The file appears whole or not at all; false on failure. A width or height of 0 is a failure
/// after which the file exists all the same, without pixels.
///
/// A text of the image's origin becomes the file's description (ImageDescription, in UTF-8);
/// without one the file has none.
bool writeTiff(const QString& name, quint32 width, int height, const quint16* data,
               const QString& origin = {});

/// Puts `count` values of an image, row by row, from number `first` on.
using FillCounts = std::function<void(quint64 first, std::size_t count, quint16* to)>;
using FillFloats = std::function<void(quint64 first, std::size_t count, float* to)>;

/// The same of an image that is asked for in pieces, which is never in memory as a whole.
bool writeTiff(const QString& name, quint32 width, int height, const FillCounts& fill,
               const QString& origin = {});

/// An image of values, one 32-bit float a pixel.
struct FloatTiff {
    QSize size;
    std::vector<float> values;  ///< row by row; not a number: blank
    QString description;        ///< the text of its origin, or of another program
};

/// Writes values of any shape, row by row, as an uncompressed single-channel TIFF of 32-bit floats
/// (IEEE, little endian), with the text of their origin as writeTiff() does. Whole or not at all;
/// false on failure.
bool writeFloatTiff(const QString& name, const QSize& size, const FillFloats& fill,
                    const QString& origin = {});

/// Reads such a file, of either byte order and any compression that libtiff knows. Returns why it
/// cannot, in one phrase (no TIFF file, other samples, cut, damaged ...), and leaves the image
/// then.
QString readFloatTiff(const QString& name, FloatTiff* image);

/// The same of a device that can seek.
QString readFloatTiff(QIODevice& in, FloatTiff* image);

/// The header of a frame in a device that can seek, see frameHeader().
FrameHeader readTiffHeader(QIODevice& in);

/// The description in a TIFF file, of which no pixel is read; empty where there is none, or where
/// the file cannot be opened as TIFF.
QString tiffDescription(const QString& name);
QString tiffDescription(QIODevice& in);

/// A frame whose every pixel holds the value, also when taller than wide.
bool writeConstTiff(const QString& name, quint32 width, quint32 height, quint16 value);
bool writeOnesTiff(const QString& name, quint32 width, quint32 height);
bool writeZerosTiff(const QString& name, quint32 width, quint32 height);

/// Keeps libtiff from printing to standard error. The handlers are global: call it once, early.
void silenceTiffMessages();
