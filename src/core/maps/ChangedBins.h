#pragma once

#include "maps/AnalysisGrid.h"

/// How many bins of a grid differ between two maps of the image's size, row by row; no number
/// counts as equal to no number.
qint64 changedBins(const AnalysisGrid& grid, const double* before, const double* after);
