#include "measurement/AreaValues.h"

#include <QCoreApplication>
#include <cmath>

#include "base/Limits.h"
#include "measurement/ResultParts.h"

namespace {

class AreaValues {
    Q_DECLARE_TR_FUNCTIONS(AreaValues)
};

/// Calls visit(x, y, value) for the bins that have a value, or for those that will have one.
template <typename Visit>
void forEachValue(const Result& result, const BinRaster& raster, Visit visit,
                  bool willHave = false) {
    const BinValue valueAt = valuesOf(result, true);
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            const double value = valueAt(column, row);
            if (willHave ? raster.holds(column, row) : std::isfinite(value)) {
                visit(raster.x(column), raster.y(row), value);
            }
        }
    }
}

}  // namespace

std::vector<double> valuesInArea(const Result& result, const Area& area) {
    std::vector<double> values;
    const AnalysisGrid& grid = result.image.grid();
    if (!result.image.hasData() || !result.tookPart()) {
        return values;
    }
    const std::shared_ptr<const PixelSet> shape = area.pixels(QSize(grid.width, grid.height));
    const QRectF selected = area.within(grid.width, grid.height);
    const bool isWhole = selected.isEmpty();
    const QRect box = selected.toRect();
    forEachValue(result, rasterOf(result), [&](int x, int y, double value) {
        if (shape ? shape->contains(x, y) : isWhole || box.contains(x, y)) {
            values.push_back(value);
        }
    });
    return values;
}

Outcome thresholdArea(const Measurement& measurement, ResultId id, int reference, double low,
                      double high, Area* area) {
    const Outcome judged = measurement.judgeMap(id, reference);
    if (judged.failed()) {
        return judged;
    }
    if (high < low) {
        return Outcome::failure(
            AreaValues::tr("the upper limit of a threshold must not lie below the lower one"));
    }
    const Result& result = *measurement.find(id, reference);
    const AnalysisGrid& grid = result.image.grid();
    const BinRaster raster = rasterOf(result);
    PixelSet pixels(QRect(0, 0, grid.width, grid.height));
    // What stands for the values of a rehearsal may lie outside any limits, or be masked.
    const bool isRehearsal = measurement.rehearsal() != nullptr;
    const auto insert = [&](int x, int y, double value) {
        const bool isTaken = isRehearsal || (value >= low && value <= high);
        for (int line = y - raster.halfHeight; isTaken && line <= y + raster.halfHeight; ++line) {
            pixels.insert(line, x - raster.halfWidth, x + raster.halfWidth + 1);
        }
    };
    forEachValue(result, raster, insert, isRehearsal);
    if (pixels.isEmpty()) {
        return Outcome::failure(AreaValues::tr("no bin of the map lies from %1 to %2")
                                    .arg(fieldText(low), fieldText(high)));
    }
    const QVector<QPoint> outline = outlineOf(pixels);
    if (outline.isEmpty()) {
        return Outcome::failure(
            AreaValues::tr("the area from %1 to %2 would have more than %3 corners")
                .arg(fieldText(low), fieldText(high))
                .arg(Limits::MostVertices));
    }
    *area = Area::polygon(outline);
    return {};
}
