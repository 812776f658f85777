#pragma once

#include <QSize>

#include "drawing/PlotLayout.h"

class Letters;
class QPainter;
class QString;
struct SpectrumPlot;

/// Paints the plot in the rectangle with these letters and returns where everything lies.
PlotLayout paintPlot(QPainter& painter, const SpectrumPlot& plot, const QRectF& all,
                     const Letters& letters);

/// The layout that paintPlot() has with these letters.
PlotLetters plotLettersOf(const Letters& letters);

/// The size of saved plots in pixels of a screen: the same whatever window a plot was seen in.
constexpr QSize SavedPlotSize{720, 480};

/// Saves the plot black on white, in English, with the letters of pictures: with the suffix "pdf"
/// as lines and text, otherwise as a picture of three times as many pixels, whose bytes depend on
/// the plot and the size alone. Needs a QGuiApplication. False, and the old file as it was, when it
/// cannot be written.
bool writePlot(const QString& fileName, const SpectrumPlot& plot,
               const QSize& size = SavedPlotSize);
