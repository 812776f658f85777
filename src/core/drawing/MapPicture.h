#pragma once

#include <QImage>
#include <QRect>

#include "base/ColorMap.h"
#include "maps/Mask.h"

/// The values of a map, row by row, one a pixel.
struct ShownValues {
    const double* values = nullptr;
    int width = 0;
    int height = 0;
    QRect filled;                       ///< pixels beside it have no value
    const MaskPixels* blank = nullptr;  ///< further pixels that have none; null: none
};

/// What stands for what in a picture of a map.
struct MapColoring {
    const ColorScale* colors = &resultColors();
    double low = 0.0;  ///< of the colours' lower end
    double high = 1.0;
    bool marksOutside = false;  ///< values below and above the range have colours of their own
};

/// Picture of a map, of its own memory: a value v has the colour of (v - low) / (high - low), no
/// number and no value have the blank's. A range that is empty or not finite gives the colour of
/// the lower end. The same pixels for any number of threads.
QImage mapPicture(const ShownValues& map, const MapColoring& coloring, int threads = 1);
