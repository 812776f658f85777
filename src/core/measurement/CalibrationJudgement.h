#pragma once

#include "calibration/EnergyMapFile.h"
#include "measurement/Outcome.h"
#include "measurement/Stack.h"

class Analyzed2DRes;
class XafsSpectrum;

// What somebody should know of an energy calibration and of the files of its maps.

/// Of the standard (null: none) against the energies of the frames, before a calibration begins.
Outcome judgeStandard(const XafsSpectrum* standard, const QVector<Stack::File>& frames);

/// The edges with which a calibration works, in eV.
struct CalibrationEdges {
    double standard = 0.0;  ///< see calibrationEdge()
    double none = 0.0;      ///< what stands for the edge of a bin that has none
};

/// Of a finished map: always a note with the range and mean of the bins that have an edge, and the
/// number of those that have none. Warns when more than 30 % have none, or when the median of the
/// others' absolute shifts is above 40 eV.
Outcome judgeShifts(const Analyzed2DRes& map, const CalibrationEdges& edges);

/// Of a map file that was read, or was not.
Outcome judgeMapFile(const EMapReading& reading, const QString& fileName, const QSize& size);

/// Of a map that is to be saved; failed: nothing could read the file.
Outcome judgeMapToSave(const Analyzed2DRes& map, const EMapInfo& info);
/// Of one that is to be saved as TIFF.
Outcome judgeTiffMapToSave(const Analyzed2DRes& map);
