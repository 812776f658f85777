#pragma once

#include <QtGlobal>
#include <memory>

#include "maps/BinRaster.h"

class QRectF;

/// Which points of an image an analysis visits: row by row from (x0 + halfW, y0 + halfH) in steps
/// of stepX and stepY, each with a bin of (2 halfW + 1) x (2 halfH + 1) pixels around it. All
/// numbers in pixels.
struct AnalysisGrid {
    qint32 width = 0;  ///< of the images
    qint32 height = 0;
    qint32 halfW = 0;  ///< bin half-width
    qint32 halfH = 0;
    qint32 x0 = 0;  ///< first and end column of the area
    qint32 x1 = 0;
    qint32 stepX = 1;
    qint32 y0 = 0;  ///< first and end row of the area
    qint32 y1 = 0;
    qint32 stepY = 1;
    qint32 x = 0;  ///< current point
    qint32 y = 0;
    /// Points that are not among these are not analysed; null: all are.
    std::shared_ptr<const PixelSet> inside;

    /// The grid whose bins tile an area without overlap, at its first point. The area is cut to
    /// whole pixels, ordered and clipped to the image; half sizes count by magnitude and no
    /// further than the image is wide or high.
    static AnalysisGrid ofArea(int imageWidth, int imageHeight, int halfWidth, int halfHeight,
                               const QRectF& area,
                               const std::shared_ptr<const PixelSet>& inside = nullptr);

    /// Goes to the first point.
    void start();

    /// Goes to the next point; false when none remains. *newRow tells whether a row was begun.
    bool step(bool* newRow);

    /// Columns and rows of points; at least one each, since the first point is always visited.
    qint64 columns() const;
    qint64 rows() const;
    qint64 pointCount() const { return columns() * rows(); }

    /// The bins of all points that lie inside the image.
    BinRaster raster() const;

    bool isInsideImage(qint64 px, qint64 py) const {
        return px >= 0 && py >= 0 && px < width && py < height;
    }
    bool isLeftOut(qint64 px, qint64 py) const {
        return inside && !inside->contains(static_cast<int>(px), static_cast<int>(py));
    }
    bool isAnalysed(qint64 px, qint64 py) const {
        return isInsideImage(px, py) && !isLeftOut(px, py);
    }

    /// Per cent of the rows that lie behind the current one, at most 100; 0.00 for no height.
    double percent() const;
};

/// Calls visit(x, y) for every point in grid order, and beginRow(y) before each row but the first.
template <typename Visit, typename BeginRow>
void forEachPoint(AnalysisGrid grid, Visit visit, BeginRow beginRow) {
    grid.start();
    for (;;) {
        visit(grid.x, grid.y);
        bool newRow = false;
        if (!grid.step(&newRow)) {
            return;
        }
        if (newRow) {
            beginRow(grid.y);
        }
    }
}

template <typename Visit>
void forEachPoint(const AnalysisGrid& grid, Visit visit) {
    forEachPoint(grid, visit, [](int) {});
}
