#pragma once

#include <QString>
#include <optional>

#include "files/OriginText.h"

class QIODevice;

/// The origin in a file that this program saved: the ImageDescription of a TIFF file, the text
/// chunk "Tarnwick origin" of a PNG file, the notes of a results file (HDF5), lines that begin with
/// "#" at the start of a text table.
/// Nothing for any other file, with the reason in one line. The content decides, not the suffix;
/// neither pixels nor values are read.
std::optional<OriginText> readOrigin(const QString& fileName, QString* whyNot = nullptr);
/// The same of an open device that can seek, at its beginning; but for results files (HDF5), which
/// are read by their names alone.
std::optional<OriginText> readOrigin(QIODevice& in, QString* whyNot = nullptr);
