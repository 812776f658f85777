#pragma once

#include "measurement/Measurement.h"

/// What has to end before another analysis of the image or another map, as a sentence for the user;
/// empty: nothing runs.
QString whileAnalyzing(const Measurement& measurement);

/// What keeps an analysis of the image from being started, as a sentence for the user; empty: it
/// can be started, or it runs and a click stops it.
QString whyNotAnalyze(const Measurement& measurement, Work work);

/// What keeps from whatever needs images.
QString whyNoImages(const Measurement& measurement);

/// What is to be said of a reference without a map while others have one.
QString tookNoPart();
