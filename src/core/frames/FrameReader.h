#pragma once

#include <QByteArray>
#include <QStringList>
#include <vector>

#include "frames/FrameHeader.h"

class QIODevice;
struct TiffData;

/// A format of frame files.
struct FrameReader {
    QString name;
    std::vector<QByteArray> magics;  ///< what its files begin with, one of them
    QStringList suffixes;            ///< in small letters
    /// Reads a frame from a device that can seek, from its beginning. Returns what went wrong,
    /// nothing when the frame has been read.
    QString (*read)(QIODevice& in, TiffData* frame);
    /// What a file of the format says before its counts are read.
    FrameHeader (*header)(const QString& name);
    /// A way of its own to a file's name, with its own debug lines; null: read() on the file.
    bool (TiffData::*readFile)(const QString& name) = nullptr;
};

/// All formats: a new one is a function beside its rows in FrameReader.cpp and a row.
const std::vector<FrameReader>& frameReaders();

/// Bytes from a file's beginning that tell its format.
constexpr int FrameMagicBytes = 2;
/// The format of a file that begins with these bytes; null for none.
const FrameReader* frameReaderOf(const QByteArray& head);

/// Reads a frame of any format from a device that can seek; returns what went wrong, nothing when
/// the frame has been read. Sets TiffData::loaded; the frame's file name stays as it is.
QString readFrame(QIODevice& in, TiffData* frame);

/// Name filters of a file dialog, one a format: %1 of the text is its name, %2 its patterns, as in
/// "%1 Files (%2)".
QStringList frameNameFilters(const QString& text);
