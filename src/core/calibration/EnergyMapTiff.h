#pragma once

#include "calibration/EnergyMapFile.h"

// An energy-shift map as a TIFF image of 32-bit floats: the shifts themselves in eV, for images of
// any shape. Doubles become the nearest floats. What has no number is blank (NaN).

/// Whether a file begins as a TIFF file does ("II" or "MM"), whatever its name.
bool isTiffMap(const QString& fileName);

/// Whether a map is to be saved so: by the suffix of the name, .tif or .tiff in any case.
bool isTiffMapName(const QString& fileName);

/// Replaces @p map by the one in a file of 32-bit floats. Its half widths and area are those that
/// the file's origin tells; without an origin they are 0 and the whole image. A blank counts as no
/// shift; the reading tells how many there are. Otherwise as readEMap(), for any shape, and without
/// any edge energy.
EMapReading readTiffMap(const QString& fileName, QSize* imageSize, Analyzed2DRes* map);
/// The same of a device that can seek; a refusal has no debug line of its own.
EMapReading readTiffMap(QIODevice& in, QSize* imageSize, Analyzed2DRes* map);

/// Why readTiffMap() would refuse the map when it were written.
EMapRefusal refusalOfTiff(const Analyzed2DRes& map);

/// Writes the shifts of @p map, one a pixel of its grid, with the text of their @p origin.
bool writeTiffMap(const QString& fileName, const Analyzed2DRes& map, const QString& origin);
