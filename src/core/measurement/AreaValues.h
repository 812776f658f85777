#pragma once

#include "measurement/Measurement.h"

// What the maps of a measurement hold inside an area, bin by bin.

/// The values of the bins of a map whose centre lies in the area, row by row, as they are shown:
/// without those that are masked, no number or infinite, or that a stopped run has not reached.
std::vector<double> valuesInArea(const Result& result, const Area& area);

/// The area of the bins of a map whose value lies from low to high, both included, as they are
/// now: a polygon that holds exactly their pixels. In a rehearsal, which knows no values, all bins
/// of the map. Fails where there is no such map, and where it has no such bin; the area stays as it
/// was then.
Outcome thresholdArea(const Measurement& measurement, ResultId id, int reference, double low,
                      double high, Area* area);
