#include "maps/AnalysisGrid.h"

#include <QRectF>
#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <utility>

#include "base/Numbers.h"

namespace {

/// Both ends cut to whole pixels, in order, inside 0..size.
std::pair<qint32, qint32> ends(double from, double to, qint32 size) {
    qint32 first = toClampedInt(from, 0, size);
    qint32 end = toClampedInt(to, 0, size);
    if (first > end) {
        std::swap(first, end);
    }
    return {first, end};
}

qint32 magnitude(int half, qint32 size) {
    return static_cast<qint32>(std::min<qint64>(std::abs(static_cast<qint64>(half)), size));
}

}  // namespace

AnalysisGrid AnalysisGrid::ofArea(int imageWidth, int imageHeight, int halfWidth, int halfHeight,
                                  const QRectF& area,
                                  const std::shared_ptr<const PixelSet>& inside) {
    AnalysisGrid grid;
    grid.width = std::max(0, imageWidth);
    grid.height = std::max(0, imageHeight);
    grid.halfW = magnitude(halfWidth, grid.width);
    grid.halfH = magnitude(halfHeight, grid.height);
    std::tie(grid.x0, grid.x1) = ends(area.left(), area.left() + area.width(), grid.width);
    std::tie(grid.y0, grid.y1) = ends(area.top(), area.top() + area.height(), grid.height);
    grid.stepX = 2 * grid.halfW + 1;
    grid.stepY = 2 * grid.halfH + 1;
    grid.inside = inside;
    grid.start();
    return grid;
}

void AnalysisGrid::start() {
    x = x0 + halfW;
    y = y0 + halfH;
}

bool AnalysisGrid::step(bool* newRow) {
    *newRow = false;
    const qint64 nextX = static_cast<qint64>(x) + std::max(1, stepX);
    if (nextX < x1) {
        x = static_cast<qint32>(nextX);
        return true;
    }
    *newRow = true;
    x = x0 + halfW;
    const qint64 nextY = static_cast<qint64>(y) + std::max(1, stepY);
    if (nextY >= y1) {
        return false;
    }
    y = static_cast<qint32>(nextY);
    return true;
}

namespace {

qint64 points(qint64 first, qint64 end, qint64 step) {
    return first >= end ? 1 : (end - 1 - first) / std::max<qint64>(1, step) + 1;
}

}  // namespace

qint64 AnalysisGrid::columns() const {
    return points(static_cast<qint64>(x0) + halfW, x1, stepX);
}

qint64 AnalysisGrid::rows() const {
    return points(static_cast<qint64>(y0) + halfH, y1, stepY);
}

BinRaster AnalysisGrid::raster() const {
    AnalysisGrid first = *this;
    first.start();
    const auto limited = [](qint64 n) { return static_cast<int>(std::min<qint64>(n, 1 << 30)); };
    BinRaster raster{first.x,
                     std::max(1, stepX),
                     limited(columns()),
                     first.y,
                     std::max(1, stepY),
                     limited(rows()),
                     halfW,
                     halfH,
                     inside};
    raster.cutTo(width, height);
    return raster;
}

double AnalysisGrid::percent() const {
    // Bins may be higher than the area: their rows lie below its end.
    return y1 == y0 ? 0.0 : std::clamp((double(y) - y0) / (double(y1) - y0), 0.0, 1.0) * 100.0;
}
