#pragma once

#include "measurement/Measurement.h"

// What a measurement writes of its area.

/// The mean spectrum of the area, as a spectrum file.
Outcome saveAreaSpectrum(Measurement& measurement, const QString& fileName);

/// Statistics of every map inside the area, a line for each.
Outcome saveStatistics(const Measurement& measurement, const QString& fileName);
