#pragma once

#include <QImage>
#include <QPair>

#include "base/ColorMap.h"

/// Picture of width x height values, row by row, with the given range from the lower to the upper
/// end of the colours; of 8-bit grey for a grey map. What is no number is mid grey; a range that is
/// empty or not finite gives the colour of the lower end everywhere else. The same pixels for any
/// number of threads.
QImage valuePicture(const double* values, int width, int height, double low, double high,
                    const ColorScale& colors, int threads);

/// The values that a share of those that are numbers, and all but that share, do not exceed: 0.01
/// gives the percentiles 1 and 99, to 1/65536 of the range from min to max that they lie in; that
/// range where it is empty.
QPair<double, double> valuePercentiles(const double* values, int width, int height, double min,
                                       double max, double share, int threads);
