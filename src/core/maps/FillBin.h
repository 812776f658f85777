#pragma once

#include <algorithm>

#include "base/Numbers.h"
#include "maps/AnalysisGrid.h"

/// Gives all pixels of the bin of half-width xw and half-height yw around (ix, iy), as far as it
/// lies inside the image of the grid, the value.
inline void fillBin(double* values, const AnalysisGrid& grid, int ix, int iy, int xw, int yw,
                    double value) {
    const PixelRange columns = clipped(qint64(ix) - xw, qint64(ix) + xw, grid.width);
    const PixelRange lines = clipped(qint64(iy) - yw, qint64(iy) + yw, grid.height);
    if (columns.isEmpty()) {
        return;
    }
    for (qint64 row = lines.first; row <= lines.last; ++row) {
        double* const first = values + row * grid.width;
        std::fill(first + columns.first, first + columns.last + 1, value);
    }
}
