// The difference of mu-t between two energies.

#include "absorption/AbsorptionSource.h"
#include "absorption/EnergyDifference.h"
#include "calibration/EnergyShift.h"
#include "measurement/AreaAnalysis.h"

namespace {

class EnergyDifference : public AreaAnalysis {
  public:
    EnergyDifference(const AnalysisGrid& grid, std::shared_ptr<Run> run, Result* result,
                     const Analyzed2DRes& map)
        : AreaAnalysis(grid, std::move(run)), m_result(result), m_shiftAt(shiftsOf(map)) {}

    int valuesPerBin() const override { return 1; }

    std::vector<RasterPass::Evaluate> evaluators(int threads,
                                                 const AbsorptionSource& source) const override {
        const Inputs& in = m_run->inputs;
        return differenceEvaluators(threads, m_grid.raster(), source.energies(), in.differenceFrom,
                                    in.differenceTo, m_shiftAt);
    }

    void begin() override { startOver(m_result, -1); }

    void take(const RasterPass::Row& row, const BinRaster& raster) override {
        m_result->image.setRow(raster.firstX, raster.stepX, raster.y(row.row), m_grid.halfW,
                               m_grid.halfH, row.values, 1, raster.columns);
    }

    void remakePictures() override { m_result->image.genImg(); }
    bool followUp(const Result* shown) override {
        return AreaAnalysis::followUp(m_result, m_result == shown);
    }
    void finish() override { m_result->image.genImg(); }
    void stopped() override { m_result->image.genImg(); }

  private:
    Result* m_result;
    std::function<double(int x, int y)> m_shiftAt;
};

}  // namespace

std::unique_ptr<AreaAnalysis> makeDifference(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                             Result* result, const Analyzed2DRes& map) {
    return std::make_unique<EnergyDifference>(grid, std::move(run), result, map);
}
