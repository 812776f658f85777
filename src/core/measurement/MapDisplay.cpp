#include "measurement/MapDisplay.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <tuple>

const MapView& viewOf(const Measurement& measurement, const Result& result) {
    return measurement.settings().views[result.id];
}

const ColorScale& frameColorsOf(const Settings& settings) {
    return settings.views.frames.inPlaceOf(frameColors());
}

MapColoring coloringOf(const Measurement& measurement, const Result& result) {
    const MapView& view = viewOf(measurement, result);
    const Analyzed2DRes& image = result.image;
    MapColoring coloring;
    coloring.colors = &view.colors.inPlaceOf(resultColors());
    coloring.marksOutside = image.isFixedScale() && !view.isStated();
    if (view.range.kind == MapRange::Kind::Fixed) {
        coloring.low = view.range.low;
        coloring.high = view.range.high;
        coloring.marksOutside = true;
    } else if (view.range.kind == MapRange::Kind::Robust && !image.isFixedScale()) {
        std::tie(coloring.low, coloring.high) = image.robustRange(measurement.threads());
        coloring.marksOutside = true;
    } else {
        coloring.low = image.rangeMin();
        coloring.high = image.rangeMax();
    }
    if (coloring.colors->isDiverging && coloring.low <= coloring.high) {
        coloring.high = std::max(std::abs(coloring.low), std::abs(coloring.high));
        coloring.low = -coloring.high;
    }
    return coloring;
}

ShownValues valuesOf(const Result& result) {
    const Analyzed2DRes& image = result.image;
    return {image.shown(), image.grid().width, image.grid().height, image.filled(),
            image.mask().get()};
}

QImage pictureOf(const Measurement& measurement, const Result& result) {
    const Analyzed2DRes& image = result.image;
    if (viewOf(measurement, result).isStated() || !image.isValid()) {
        return image.img() != nullptr ? *image.img() : QImage();
    }
    return mapPicture(valuesOf(result), coloringOf(measurement, result),
                      std::max(1, measurement.threads()));
}
