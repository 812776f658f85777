#pragma once

#include <QImage>
#include <QPair>

#include "base/ColorMap.h"

struct TiffData;

/// Picture of a frame's counts with the given range from the lower to the upper end of the colours,
/// of its own memory; of 8-bit grey for a grey map. A range that is empty or not finite gives the
/// colour of the lower end everywhere.
QImage framePicture(const TiffData& frame, double low, double high,
                    const ColorScale& colors = frameColors());

/// The counts that a share of the frame's pixels, and all but that share, do not exceed: 0.01 gives
/// the percentiles 1 and 99. (0, 0) for a frame without pixels.
QPair<double, double> countPercentiles(const TiffData& frame, double share);

/// The picture with the pixels whose value is no number in mid grey, a colour outside the map. The
/// values lie row by row, one a pixel. The picture itself when there is none such, or when the
/// sizes differ.
QImage withGapsMarked(const QImage& picture, const double* values, int width, int height);
