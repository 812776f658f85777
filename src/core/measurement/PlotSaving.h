#pragma once

#include "drawing/SpectrumPlot.h"
#include "measurement/Measurement.h"

// What a measurement saves of plots: PDF with that suffix, else a picture. Needs a QGuiApplication
// for its letters.

/// The plot of the spectrum at the position.
Outcome savePlot(Measurement& measurement, const QString& fileName);

/// Any plot; `alsoRead` are further files that it may not replace.
Outcome writePlotFile(const Measurement& measurement, const QString& fileName,
                      const SpectrumPlot& plot, const QStringList& alsoRead = {});
/// How that will fail, as far as can be told without writing.
Outcome judgePlotFile(const Measurement& measurement, const QString& fileName,
                      const QStringList& alsoRead = {});

/// Failed: there are no letters to draw with.
Outcome judgeLetters(const Measurement& measurement);
/// Failed: the suffix, which says the format, is not known.
Outcome judgePictureName(const QString& fileName, bool isKnown);
