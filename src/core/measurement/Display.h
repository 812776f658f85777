#pragma once

#include <QImage>

#include "drawing/BarPicture.h"
#include "drawing/SpectrumPlot.h"
#include "measurement/Measurement.h"

// What a measurement has on display, as pictures and words. Titles are English, context
// "ResultKind" of the translation.

/// The frame on display; null while a result is, or without frames.
TiffData* shownFrame(Measurement& measurement);

/// The range of a frame's absorption or difference that its colours get: of diverging ones about 0.
QPair<double, double> colorRange(double low, double high, const Measurement& measurement);

/// Picture of what a frame shows in place of its counts, in the range of the view or its own.
QImage pictureOf(const FrameImage& image, const Measurement& measurement);

/// The picture on display at full resolution: of a frame in the range of the view, of a result
/// through the colour map; null for nothing, and where counts could not be read, of which a problem
/// tells with the file's name.
QImage shownPicture(Measurement& measurement, QString* problem = nullptr);

/// What the frame on display shows and at which energy, for a corner of it: "mu-t  7112.00 eV",
/// "mu-t (no I0)  7112.00 eV" where I0 counts as 1.
/// Empty for a result and for nothing.
QString shownCaption(Measurement& measurement);

/// The same with title, source, unit and range, pixels that are no number in grey.
BarPicture shownWithBar(Measurement& measurement, QString* problem = nullptr);

/// The spectrum at the position and the standard, plotted over the axes chosen.
SpectrumPlot shownPlot(Measurement& measurement);

/// Fixes the view's range at the percentiles 1 and 99 of what the frame on display shows.
Outcome fixPercentiles(Measurement& measurement);

/// What keeps a result from being one of the present inputs, for behind its title: "of earlier
/// frames", "before the energy calibration"; empty for nothing. English, context "Difference".
const char* differenceText(Difference difference);

/// Of a result that is saved: what differs. An energy map is made of a standard's frames and kept
/// for those of samples, so that other inputs than its own are no difference of it.
Difference differenceWhenSaved(const Measurement& measurement, const Result& result);

/// What somebody should know of a result wherever it is shown or saved: "stopped at 43 %", and the
/// text of its difference. In English.
QStringList marksOf(const Measurement& measurement, const Result& result);

/// The same in the language of the program, in one text; empty for nothing.
QString stateText(const Measurement& measurement, const Result& result);

/// "stopped at 43 %" in the language of the program.
QString stoppedText(const Run& run);

/// A result's title, its reference and what keeps it from being one of now, in the language of the
/// program.
QString describe(const Measurement& measurement, const Result& result);
