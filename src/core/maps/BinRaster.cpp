#include "maps/BinRaster.h"

#include <algorithm>

namespace {

/// Places first, first + step, ... of `count` that lie in 0 .. size - 1; the first one must.
int inside(int first, int step, int count, int size) {
    if (first < 0 || first >= size || count <= 0) {
        return 0;
    }
    return std::min(count, (size - 1 - first) / std::max(1, step) + 1);
}

}  // namespace

void BinRaster::cutTo(int width, int height) {
    columns = inside(firstX, stepX, columns, width);
    rows = columns > 0 ? inside(firstY, stepY, rows, height) : 0;
}
