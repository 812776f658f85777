#pragma once

#include <functional>
#include <optional>

#include "maps/AnalysisGrid.h"
#include "maps/MapValues.h"

// What the two deglitchers of Analyzed2DRes make of a map's values, for any thread. Both walk the
// analysed points (bin centres), take the neighbours one step away, and leave what was not analysed
// as it is.

/// Values made from those of a map, and the range of the finite ones at its points; min > max for
/// none.
struct Processed {
    MapValues values;
    double min;
    double max;
};

/// Asked after every row: how much has been done, from 0 to 1. False: give up.
using GoOn = std::function<bool(double done)>;

/// The values of a map over a grid with the range of the finite ones.
struct MapToProcess {
    AnalysisGrid grid;
    MapValues values;
    double min;
    double max;
};

/// Points that stand out from their neighbours by more than `factor` times the mean of all points
/// and lie within `ratio` of the range from an end of it become the mean of their four neighbours.
/// None: given up.
std::optional<Processed> deglitched(const MapToProcess& map, double factor, double ratio,
                                    const GoOn& goOn);

/// Points further than limit from the mean become the mean of their eight neighbours that are
/// nearer, 0.0 without any. The mean is that of the values of magnitude below limit. None: given
/// up.
std::optional<Processed> smoothed(const MapToProcess& map, double limit, const GoOn& goOn);
