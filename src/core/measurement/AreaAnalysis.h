#pragma once

#include <array>
#include <memory>
#include <vector>

#include "absorption/RasterPass.h"
#include "maps/AnalysisGrid.h"
#include "measurement/CalibrationJudgement.h"
#include "measurement/ResultSet.h"

class AbsorptionSource;
class Reference;

/// An analysis of an area: what is worked out for every bin, and what becomes of a row of it. It
/// works on the inputs of its run; its results are others' and outlive it.
class AreaAnalysis {
  public:
    AreaAnalysis(const AnalysisGrid& grid, std::shared_ptr<Run> run);
    virtual ~AreaAnalysis();
    AreaAnalysis(const AreaAnalysis&) = delete;
    AreaAnalysis& operator=(const AreaAnalysis&) = delete;

    const AnalysisGrid& grid() const { return m_grid; }
    const std::shared_ptr<Run>& run() const { return m_run; }

    virtual int valuesPerBin() const = 0;
    /// One for each thread.
    virtual std::vector<RasterPass::Evaluate> evaluators(int threads,
                                                         const AbsorptionSource& source) const = 0;
    /// Empties the results.
    virtual void begin() = 0;
    virtual void take(const RasterPass::Row& row, const BinRaster& raster) = 0;
    /// All rows are in.
    virtual void finish() = 0;
    /// What somebody should know of what it has found.
    virtual Outcome judgement() const { return {}; }
    /// Stopped before its end.
    virtual void stopped() {}
    /// Makes pictures of what there is so far.
    virtual void remakePictures() {}
    /// The same for the result on display, whose picture follows its values, and for those that had
    /// no picture yet, once anybody looks. False: no picture is another now.
    virtual bool followUp(const Result*) { return false; }

    /// A result that no run has made.
    static void empty(Result* result);

  protected:
    /// An empty result of this run.
    void startOver(Result* result, int number);
    /// See followUp(), for one result.
    static bool followUp(Result* result, bool isShown);

    AnalysisGrid m_grid;
    std::shared_ptr<Run> m_run;
};

/// The energy shift of every bin against the standard, into a map of its own that replaces the one
/// in force at the end.
std::unique_ptr<AreaAnalysis> makeCalibration(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                              Result* newMap, const CalibrationEdges& edges);

/// LCF or MLCF: edge jump and ratio of every reference that takes part, with the energy shifts of
/// the map, which may be without values, as they are now; with error maps their errors and the
/// results of all references, too, which are emptied without.
std::unique_ptr<AreaAnalysis> makeFit(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                      const std::vector<std::unique_ptr<Reference>>& references,
                                      const ResultSet& ofAll, const Analyzed2DRes& map);

/// Those of residual absorption, in the order of their ids.
using ResidualResults = std::array<Result*, ResidualCount>;

/// Residual absorption: the edge jump at an energy, what is left of the pre-edge there, and the
/// share of the latter. The energy shifts of the map move a common E0 alone.
std::unique_ptr<AreaAnalysis> makeResidual(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                           const ResidualResults& results,
                                           const Analyzed2DRes& map);

/// mu-t at the one energy less that at the other.
std::unique_ptr<AreaAnalysis> makeDifference(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                             Result* result, const Analyzed2DRes& map);

/// The ratio image of residual absorption from dmut and rest: with m the lowest finite rest,
/// (rest - m) / (dmut + rest - m); then all pictures.
void makeResidualRatio(const ResidualResults& results);
