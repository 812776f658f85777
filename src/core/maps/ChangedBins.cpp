#include "maps/ChangedBins.h"

#include <cmath>

qint64 changedBins(const AnalysisGrid& grid, const double* before, const double* after) {
    const BinRaster raster = grid.raster();
    qint64 changed = 0;
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            const qint64 i = qint64(raster.y(row)) * grid.width + raster.x(column);
            const bool isNumber = !std::isnan(before[i]) || !std::isnan(after[i]);
            changed += isNumber && before[i] != after[i] ? 1 : 0;
        }
    }
    return changed;
}
