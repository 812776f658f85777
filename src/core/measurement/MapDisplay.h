#pragma once

#include "drawing/MapPicture.h"
#include "measurement/Measurement.h"

// Maps as they are looked at, see MapView.h.

/// The view of a result's kind.
const MapView& viewOf(const Measurement& measurement, const Result& result);

/// The colours of frames.
const ColorScale& frameColorsOf(const Settings& settings);

/// Colours and range of a result's picture. While the result has a fixed scale its limits are the
/// range, unless the view has one of its own. About 0, as wide as needed, for diverging colours.
MapColoring coloringOf(const Measurement& measurement, const Result& result);

/// What a result shows, as of now.
ShownValues valuesOf(const Result& result);

/// The picture of a result in its view: its own, see Analyzed2DRes::img(), in the stated one. Null
/// where there is none.
QImage pictureOf(const Measurement& measurement, const Result& result);
