#include "measurement/AreaAnalysis.h"

#include <QDebug>
#include <algorithm>
#include <cmath>

#include "absorption/AbsorptionSource.h"
#include "base/DebugLog.h"
#include "calibration/EnergyShift.h"
#include "fitting/LaneFit.h"

AreaAnalysis::AreaAnalysis(const AnalysisGrid& grid, std::shared_ptr<Run> run)
    : m_grid(grid), m_run(std::move(run)) {}

AreaAnalysis::~AreaAnalysis() = default;

void AreaAnalysis::startOver(Result* result, int number) {
    result->image.startOver(m_grid);
    result->image.setNo(number);
    result->run = m_run;
    result->deglitched.reset();
    result->isOfBefore = false;
}

void AreaAnalysis::empty(Result* result) {
    result->image.startOver(AnalysisGrid());
    result->run.reset();
    result->deglitched.reset();
    result->isOfBefore = false;
}

bool AreaAnalysis::followUp(Result* result, bool isShown) {
    const bool isNew = isShown || !result->image.isValid();
    if (isNew) {
        result->image.followUp();
    }
    return isNew;
}

namespace {

class Calibration : public AreaAnalysis {
  public:
    Calibration(const AnalysisGrid& grid, std::shared_ptr<Run> run, Result* newMap,
                const CalibrationEdges& edges)
        : AreaAnalysis(grid, std::move(run)), m_map(newMap), m_edges(edges) {}

    int valuesPerBin() const override { return 1; }

    std::vector<RasterPass::Evaluate> evaluators(int threads,
                                                 const AbsorptionSource& source) const override {
        return edgeEvaluators(threads, source.energies());
    }

    void begin() override {
        debugTimed(QStringLiteral("Start Calibration"));
        startOver(m_map, m_map->image.no());
        if (m_grid.inside) {
            m_map->image.fill(0.0);  // no shift where nothing is calibrated
        }
        sayProgress(m_grid.y);
    }

    void take(const RasterPass::Row& row, const BinRaster& raster) override {
        const int y = raster.y(row.row);
        if (row.row > 0) {
            sayProgress(y);
        }
        m_row.resize(static_cast<std::size_t>(raster.columns));
        for (int column = 0; column < raster.columns; ++column) {
            double shift = 0.0;
            if (raster.holds(column, row.row)) {
                shift = row.values[column] - m_edges.standard;
                m_count.add(shift);
            }
            m_row[static_cast<std::size_t>(column)] = shift;
        }
        m_map->image.setRow(raster.firstX, raster.stepX, y, m_grid.halfW, m_grid.halfH,
                            m_row.data(), 1, raster.columns);
    }

    void finish() override {
        m_map->image.updateExtremes();
        m_map->image.genImg();
        debugTimed(QStringLiteral("End Calibration   "));
    }

    Outcome judgement() const override { return m_count.judgement(); }

  private:
    void sayProgress(int y) {
        AnalysisGrid at = m_grid;
        at.y = y;
        qDebug() << "progress" << at.percent();
    }

    Result* m_map;
    CalibrationEdges m_edges;
    ShiftCount m_count{m_edges};
    std::vector<double> m_row;
};

Analyzed2DRes& imageOf(const ResidualResults& results, ResultId id) {
    return results[static_cast<std::size_t>(id) - static_cast<std::size_t>(ResultId::RaDmut)]
        ->image;
}

class Residual : public AreaAnalysis {
  public:
    Residual(const AnalysisGrid& grid, std::shared_ptr<Run> run, const ResidualResults& results,
             const Analyzed2DRes& map)
        : AreaAnalysis(grid, std::move(run)), m_results(results), m_shiftAt(shiftsOf(map)) {}

    int valuesPerBin() const override { return 2; }

    std::vector<RasterPass::Evaluate> evaluators(int threads,
                                                 const AbsorptionSource& source) const override {
        return backgroundEvaluators(threads, m_grid.raster(), source.energies(), sampleRule(*m_run),
                                    m_run->inputs.raEnergy, m_shiftAt);
    }

    void begin() override {
        for (Result* result : m_results) {
            startOver(result, -1);
        }
    }

    void take(const RasterPass::Row& row, const BinRaster& raster) override {
        const int y = raster.y(row.row);
        if (row.row > 0) {
            qDebug() << y;
        }
        const auto columns = static_cast<std::size_t>(raster.columns);
        m_jumps.resize(columns);
        m_rests.resize(columns);
        for (std::size_t column = 0; column < columns; ++column) {
            const double pre = row.values[2 * column];
            const double dmut = row.values[2 * column + 1] - pre;
            m_jumps[column] = dmut;
            m_rests[column] = pre - m_run->inputs.raFactor * dmut;
        }
        put(ResultId::RaDmut, y, raster, m_jumps);
        put(ResultId::RaRest, y, raster, m_rests);
    }

    void finish() override { makeResidualRatio(m_results); }
    void stopped() override { finish(); }

  private:
    void put(ResultId id, int y, const BinRaster& raster, const std::vector<double>& values) {
        imageOf(m_results, id)
            .setRow(raster.firstX, raster.stepX, y, m_grid.halfW, m_grid.halfH, values.data(), 1,
                    raster.columns);
    }

    ResidualResults m_results;
    std::vector<double> m_jumps;  // of a row
    std::vector<double> m_rests;
    std::function<double(int x, int y)> m_shiftAt;
};

}  // namespace

void makeResidualRatio(const ResidualResults& results) {
    const Analyzed2DRes* dMut = &imageOf(results, ResultId::RaDmut);
    const Analyzed2DRes* rest = &imageOf(results, ResultId::RaRest);
    Analyzed2DRes* ratio = &imageOf(results, ResultId::RaRatio);
    const int width = rest->grid().width;
    const int height = rest->hasData() && dMut->hasData() ? rest->grid().height : 0;
    const double* const rests = rest->data();
    const double* const jumps = dMut->data();
    double lowest = 1e300;
    for (qint64 i = 0; i < qint64(width) * height; ++i) {
        lowest = std::isfinite(rests[i]) && rests[i] < lowest ? rests[i] : lowest;
    }
    std::vector<double> row(static_cast<std::size_t>(std::max(0, width)));
    for (int y = 0; y < height; ++y) {
        const qint64 first = qint64(y) * width;
        for (int x = 0; x < width; ++x) {
            const double b = rests[first + x] - lowest;
            row[static_cast<std::size_t>(x)] = b / (jumps[first + x] + b);
        }
        ratio->setRow(0, 1, y, 0, 0, row.data(), 1, width);
    }
    for (Result* result : results) {
        result->image.genImg();
    }
}

std::unique_ptr<AreaAnalysis> makeCalibration(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                              Result* newMap, const CalibrationEdges& edges) {
    return std::make_unique<Calibration>(grid, std::move(run), newMap, edges);
}

std::unique_ptr<AreaAnalysis> makeResidual(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                           const ResidualResults& results,
                                           const Analyzed2DRes& map) {
    return std::make_unique<Residual>(grid, std::move(run), results, map);
}
