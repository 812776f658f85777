#pragma once

#include "measurement/Measurement.h"

// What a measurement writes. Files appear whole or not at all; a failure says which could not be
// written. Results carry their origin; one that the present inputs would not give again is saved
// with a warning.

/// The picture on display, in the format of the name's suffix. A composite is saved with its
/// legend, here and below.
Outcome saveImage(Measurement& measurement, const QString& fileName);
/// The same with title, source and colour bar. Needs a QGuiApplication for its letters.
Outcome saveImageWithBar(Measurement& measurement, const QString& fileName);
/// The picture of every result of the references in use, each under the name with "-R-K" before
/// the suffix (reference R, kind K).
Outcome saveAllImages(const Measurement& measurement, const QString& fileName);
/// The result selected, else the energy-shift map on display, in the form chosen.
Outcome saveData(const Measurement& measurement, const QString& fileName);
/// Every map that holds values, in the form chosen, each under the name with that of its kind and
/// the number of its reference before the suffix: "-fraction-0", "-R".
Outcome saveAllMaps(const Measurement& measurement, const QString& fileName);
/// The spectrum at the position (none: fails), the standard and what else is given under names with
/// "-1",
/// "-2", ... before the suffix.
Outcome saveSpectra(Measurement& measurement, const QString& fileName,
                    const QVector<XafsSpectrum>& more = {});
/// The energy-shift map as changes of the Bragg angle; under a name with .tif or .tiff, as a float
/// TIFF of the shifts in eV.
Outcome saveMap(const Measurement& measurement, const QString& fileName);
/// All results of the last analysis of each kind in one HDF5 file, see output/NexusFile.h.
Outcome saveResults(Measurement& measurement, const QString& fileName);
/// All results of the fit as one table with a row for each bin.
Outcome saveTable(const Measurement& measurement, const QString& fileName);
/// "flat.dat" and "dark.dat" of the images' size, in the present folder.
Outcome saveFlatDark(const Measurement& measurement);
