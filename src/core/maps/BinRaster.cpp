#include "maps/BinRaster.h"

#include <algorithm>

namespace {

/// Places first, first + step, ... of `count` that lie in 0 .. size - 1; the first one must.
int placesInside(int first, int step, int count, int size) {
    if (first < 0 || first >= size || count <= 0) {
        return 0;
    }
    return std::min(count, (size - 1 - first) / std::max(1, step) + 1);
}

}  // namespace

void BinRaster::cutTo(int width, int height) {
    columns = placesInside(firstX, stepX, columns, width);
    rows = columns > 0 ? placesInside(firstY, stepY, rows, height) : 0;
}

int BinRaster::count() const {
    if (!inside) {
        return rows * columns;
    }
    int bins = 0;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            bins += holds(column, row) ? 1 : 0;
        }
    }
    return bins;
}
