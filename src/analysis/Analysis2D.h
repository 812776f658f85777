#pragma once

#include <QVector>
#include <functional>
#include <optional>

#include "analysis/AnalysisGrid.h"
#include "spectra/XafsSpectrum.h"

class Analyzed2DRes;
class Analyzer;
class QString;

/// The two analyses of a whole image area.
///
/// LCF: one point at a time is with the analyzer's fitter; each report records the point and hands
/// over the next, whose spectrum has been prepared meanwhile. Points without a spectrum are passed
/// over. The result is a DMut and a Ratio image for every reference.
///
/// Residual absorption (RA): one pass that blocks. The result is a dmut, a rest and a ratio image.
class Analysis2D {
  public:
    /// Normalised spectrum of the bin around a point; called in grid order.
    using SpectrumAt = std::function<XafsSpectrum(int x, int y)>;

    /// What a report of the fitter has led to: nothing runs; it was of an older fit and does not
    /// count; the next point of the row, or of a new row, is with the fitter; the last point is
    /// recorded.
    enum class Progress { Idle, SamePoint, NextPoint, NewRow, Finished };

    explicit Analysis2D(Analyzer* analyzer) : m_analyzer(analyzer) {}

    /// Starts the LCF analysis. False with a reason when there are fewer than two references or no
    /// point of the area has a spectrum.
    bool startLcf(const AnalysisGrid& grid, SpectrumAt spectrumAt, QString* whyNot);
    void stopLcf();
    bool lcfRunning() const { return m_running; }
    double lcfPercent() const { return m_grid.percent(); }
    /// The fitter has reported: records its point and hands over the next. After Finished the
    /// caller makes the images and ends the analysis.
    Progress lcfPointReported();
    /// Writes the fitter's results into the images of the panels that took part in the fit.
    void recordPoint();
    /// Remakes the pictures of all DMut and Ratio images.
    void generateLcfImages();
    void endLcf();

    /// Runs the RA analysis; progress gets the per cent done at each new row.
    void runRa(const AnalysisGrid& grid, const SpectrumAt& spectrumAt,
               const std::function<void(double)>& progress);
    /// Computes the ratio image and remakes the three pictures.
    void generateRaImages();

  private:
    /// A point that waits for its fit.
    struct Point {
        AnalysisGrid grid;
        XafsSpectrum spectrum;
        bool newRow;
    };

    std::optional<Point> nextPoint(AnalysisGrid grid, bool atFirst) const;
    void handOver(const Point& point);
    void idle();

    Analyzer* m_analyzer;
    SpectrumAt m_spectrumAt;
    bool m_running = false;
    int m_reportsToIgnore = 0;
    AnalysisGrid m_grid;  // at the point that is being fitted
    std::optional<Point> m_next;
    QVector<Analyzed2DRes*> m_results;  // all DMut images, then all Ratio images, in panel order
    int m_panels = 0;
};
