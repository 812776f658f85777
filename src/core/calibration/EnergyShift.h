#pragma once

#include <functional>
#include <vector>

#include "absorption/RasterPass.h"
#include "maps/AnalysisGrid.h"
#include "maps/Deglitch.h"

class Analyzed2DRes;
class Spectrum;

// The energy-shift map: for every pixel how far, in eV, the edge of its bin lies above the edge
// of the standard. 0.0 outside the map and where nothing was calibrated.

/// Where on its way from minimum to maximum a spectrum's edge is taken for calibration, see
/// Spectrum::findE().
constexpr double kCalibrationLevel = 0.7;

/// Edge energy of @p spectrum as calibration compares it, in eV; 0.0 without a spectrum or points.
double calibrationEdge(const Spectrum* spectrum);

/// Whether the spectrum rises through the calibration's level at all; without that its edge is
/// taken to be its first energy.
bool hasCalibrationEdge(const Spectrum& spectrum);

/// Replaces @p map by the shifts of the bins of @p grid against @p standardEdge (eV).
/// @p edgeAt gives the calibration's edge of the binned spectrum at a position: its first energy
/// where there is no rising edge. @p progress, which may be empty, is told the
/// percentage done as each row of bins begins. Nothing happens when the grid has no size.
void calibrate(Analyzed2DRes* map, const AnalysisGrid& grid, const BinValuesAt& edgeAt,
               double standardEdge, const std::function<void(double percent)>& progress);

/// What a RasterPass works out for calibrate(): the edge of each bin's spectrum.
std::vector<RasterPass::Evaluate> edgeEvaluators(int threads, const std::vector<double>& energies);

/// Back to a map without size: the shift is 0.0 everywhere.
void clearShiftMap(Analyzed2DRes* map);

/// Replaces bins more than 40 eV off the mean by the mean of their neighbours, see
/// smoothed(). Nothing happens without a map.
void smoothShiftMap(Analyzed2DRes* map);
/// The same in two parts: the first for any thread, the second puts what it has made into the map.
std::optional<Processed> smoothedShifts(const MapToProcess& map, const GoOn& goOn);
void takeSmoothed(Analyzed2DRes* map, const Processed& made);

/// shiftAt() of a map as it is now, whatever becomes of it.
std::function<double(int x, int y)> shiftsOf(const Analyzed2DRes& map);

/// The shift at a pixel in eV; 0.0 outside the map or without one.
double shiftAt(const Analyzed2DRes* map, int x, int y);
