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

/// The bins of a calibration, counted as they come.
class ShiftCount {
  public:
    explicit ShiftCount(const CalibrationEdges& edges) : m_edges(edges) {}

    void add(double shift);
    /// Always a note with the range and mean of the bins that have an edge, and the number of those
    /// that have none. Warns when more than 30 % have none, or when the median of the others'
    /// absolute shifts is above 40 eV.
    Outcome judgement() const;

  private:
    QString summary() const;

    CalibrationEdges m_edges;
    qint64 m_all = 0;
    qint64 m_withEdge = 0;
    qint64 m_farOff = 0;
    double m_lowest = 1e300;
    double m_highest = -1e300;
    double m_sum = 0.0;
};

/// Of a map file that was read, or was not.
Outcome judgeMapFile(const EMapReading& reading, const QString& fileName, const QSize& size);

/// Of a map that is to be saved; failed: nothing could read the file.
Outcome judgeMapToSave(const Analyzed2DRes& map, const EMapInfo& info);
/// Of one that is to be saved as TIFF.
Outcome judgeTiffMapToSave(const Analyzed2DRes& map);
