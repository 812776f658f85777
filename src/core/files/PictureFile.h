#pragma once

#include <QSize>
#include <QString>
#include <functional>

class QImage;
class QPainter;

// Writers of pictures. Each returns whether the file was written, and says so in one debug line
// with its name. A writer that fails stays silent and leaves an existing file of that name as it
// was.

/// Whether the suffix names a format that writePicture() and writeDrawing() know.
bool isPictureName(const QString& fileName);
bool isDrawingName(const QString& fileName);

/// Writes @p picture in the format that the suffix names, with default quality. Nothing is written
/// for an empty picture, without a suffix or with a suffix that no picture format has. A PNG file
/// carries the text of the picture's origin, if it has one, in a chunk (readers refuse one of more
/// than 8 million bytes); the pixels are the same.
bool writePicture(const QString& fileName, const QImage& picture, const QString& origin = {});

/// The key of that chunk.
QString originChunkKey();

/// Writes what @p paint paints on a canvas of @p size screen pixels: with the suffix "pdf" as lines
/// and text on a page of that size, otherwise as a picture of three times as many pixels.
bool writeDrawing(const QString& fileName, const QSize& size,
                  const std::function<void(QPainter&)>& paint);
