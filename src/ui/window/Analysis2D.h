#pragma once

#include <QVector>
#include <cstddef>
#include <functional>
#include <memory>

#include "absorption/RasterPass.h"
#include "fitting/LinearFit.h"
#include "maps/AnalysisGrid.h"
#include "spectra/XafsSpectrum.h"

class Analyzed2DRes;
class Analyzer;
class QString;

/// The two analyses of a whole image area.
///
/// LCF: one point at a time is with the analyzer's fitter; each report records the point and hands
/// over the next, whose spectrum has been prepared meanwhile. Points without a spectrum are passed
/// over. The result is a DMut and a Ratio image for every reference. Where no window has to stay
/// alive, a pass over the raster fits rows of points on all cores instead, with the same results,
/// and only the last point goes to the fitter, so that the analyzer ends as it would.
///
/// Residual absorption (RA): one pass that blocks. The result is a dmut, a rest and a ratio image.
class Analysis2D {
  public:
    /// Normalised spectrum of the bin around a point; called in grid order.
    using SpectrumAt = std::function<XafsSpectrum(int x, int y)>;

    /// What a report of the fitter has led to: nothing runs; it was of an older fit and does not
    /// count; the next point of the row, or of a new row, is with the fitter; the last point is
    /// recorded; memory ran out.
    enum class Progress { Idle, SamePoint, NextPoint, NewRow, Finished, OutOfMemory };

    /// Makes the pass that fits all points, see fitEvaluators(); null where they must be fitted one
    /// at a time.
    using FitPass = std::function<std::unique_ptr<RasterPass>(
        const QVector<XafsSpectrum>& references, LinearFit::Method method)>;

    explicit Analysis2D(Analyzer* analyzer) : m_analyzer(analyzer) {}

    /// Starts the LCF analysis. False with a reason when there are fewer than two references or no
    /// point of the area has a spectrum.
    bool startLcf(const AnalysisGrid& grid, SpectrumAt spectrumAt, QString* whyNot,
                  const FitPass& fitPass = {});
    void stopLcf();
    bool lcfRunning() const { return m_running; }
    /// A pass over the raster is under way: its threads read frames and energy shifts.
    bool fitsRows() const { return m_pass != nullptr; }
    double lcfPercent() const { return m_grid.percent(); }
    /// The fitter has reported: records its point and hands over the next. After Finished the
    /// caller makes the images and ends the analysis.
    Progress lcfPointReported();
    /// Rows of the pass are ready: records them. After OutOfMemory the analysis has ended.
    Progress lcfRowsReady();
    /// Writes the fitter's results into the images of the panels that took part in the fit.
    void recordPoint();
    /// Remakes the pictures of all DMut and Ratio images.
    void generateLcfImages();
    void endLcf();

    /// Runs the RA analysis; progress gets the per cent done at each new row. curvesAt gives the
    /// values of the pre-edge and the post-edge curve at raEnergy().
    void runRa(const AnalysisGrid& grid, const BinValuesAt& curvesAt,
               const std::function<void(double)>& progress);
    /// Computes the ratio image and remakes the three pictures.
    void generateRaImages();

  private:
    /// A point with its spectrum.
    struct Point {
        AnalysisGrid grid;
        XafsSpectrum spectrum;
        bool newRow = false;
    };

    bool prepare(AnalysisGrid grid, bool atFirst);
    void handOverPrepared();
    bool startPass(const FitPass& fitPass);
    void recordRow(const RasterPass::Row& row);
    void idle();

    Analyzer* m_analyzer;
    SpectrumAt m_spectrumAt;
    bool m_running = false;
    int m_reportsToIgnore = 0;
    AnalysisGrid m_grid;  // at the point that is being fitted
    // By turns the one prepared, the one that is being fitted and the one before, which the fitter
    // may be letting go of: storage is taken over here only from one that it has done with.
    Point m_points[3];
    std::size_t m_prepared = 0;
    bool m_hasNext = false;
    QVector<Analyzed2DRes*> m_results;  // all DMut images, then all Ratio images, in panel order
    int m_panels = 0;
    std::unique_ptr<RasterPass> m_pass;
    std::vector<int> m_passPanels;  // whose references the pass fits
};
