// The fit of an area: what a row of its values becomes.

#include <QDebug>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "base/DebugLog.h"
#include "calibration/EnergyShift.h"
#include "fitting/LaneFit.h"
#include "measurement/AreaAnalysis.h"
#include "measurement/Reference.h"
#include "spectra/LiveCounts.h"

namespace {

/// Kinds of each reference and of all of them, in the order in which a bin's values come; the
/// first ReferenceKindCount are there without errors, too.
constexpr ResultId OfEach[] = {ResultId::DMut, ResultId::Ratio, ResultId::RatioError,
                               ResultId::DMutError};
constexpr ResultId OfAll[] = {ResultId::R, ResultId::Chi2Reduced, ResultId::Sum,
                              ResultId::TotalJump, ResultId::TotalJumpError};

class Fit : public AreaAnalysis {
  public:
    Fit(const AnalysisGrid& grid, std::shared_ptr<Run> run,
        const std::vector<std::unique_ptr<Reference>>& references, const ResultSet& ofAll,
        const Analyzed2DRes& map)
        : AreaAnalysis(grid, std::move(run)), m_shiftAt(shiftsOf(map)) {
        for (const auto& reference : references) {
            if (reference->takesPart()) {
                m_spectra.append(reference->spectrum());
            }
        }
        for (const ResultId id : OfEach) {
            addOfEach(id, references);
        }
        for (const ResultId id : OfAll) {
            add(ofAll.find(id), true);
        }
    }

    int valuesPerBin() const override { return m_valuesPerBin; }

    std::vector<RasterPass::Evaluate> evaluators(int threads,
                                                 const AbsorptionSource& source) const override {
        return fitEvaluators(threads, m_grid.raster(), m_spectra, fitRule(*m_run),
                             source.energies(), m_shiftAt);
    }

    void begin() override {
        logObjectCounts();
        debugTimed(QStringLiteral("2da 1:"));
        int number = 0;
        for (const Target& target : m_targets) {
            const bool hasNumber = target.result->id < ResultId::RaDmut;
            if (isMade(target)) {
                startOver(target.result, hasNumber ? number++ : -1);
            } else {
                empty(target.result);
            }
        }
        debugTimed(QStringLiteral("2da 2:"));
    }

    void take(const RasterPass::Row& row, const BinRaster& raster) override {
        const int y = raster.y(row.row);
        // One image after the other, so that each is written along its rows.
        for (const Target& target : m_targets) {
            if (target.value < 0) {
                continue;
            }
            target.result->image.setRow(raster.firstX, raster.stepX, y, m_grid.halfW, m_grid.halfH,
                                        row.values + target.value, m_valuesPerBin, raster.columns);
        }
    }

    void remakePictures() override {
        logPictures();
        makePictures();
    }

    bool followUp(const Result* shown) override {
        bool isNew = false;
        for (const Target& target : m_targets) {
            isNew |= AreaAnalysis::followUp(target.result, target.result == shown);
        }
        return isNew;
    }

    void finish() override {
        remakePictures();
        debugTimed(QStringLiteral("2da 3:"));
        logObjectCounts();
    }

    void stopped() override {
        makePictures();
        debugTimed(QStringLiteral("2da 4:"));
    }

  private:
    /// A result, and which of a bin's values it takes; -1: none.
    struct Target {
        Result* result;
        int value;
    };

    /// The map of a reference that takes no part is made, without values.
    bool isMade(const Target& target) const {
        return m_run->inputs.errorMaps || !target.result->kind().needsErrors;
    }

    void add(Result* result, bool takesPart) {
        const bool isFilled = takesPart && isMade({result, 0});
        m_targets.push_back({result, isFilled ? m_valuesPerBin++ : -1});
    }

    void addOfEach(ResultId id, const std::vector<std::unique_ptr<Reference>>& references) {
        for (const auto& reference : references) {
            add(reference->results().find(id), reference->takesPart());
        }
    }

    void logPictures() const {
        int stated = 0;
        for (const Target& target : m_targets) {
            stated += target.result->id < ResultId::RaDmut;
        }
        qDebug() << "generate res images" << stated;
    }

    void makePictures() {
        for (const Target& target : m_targets) {
            target.result->image.genImg();
        }
    }

    std::function<double(int x, int y)> m_shiftAt;
    std::vector<Target> m_targets;
    int m_valuesPerBin = 0;
    QVector<XafsSpectrum> m_spectra;  // of those that take part
};

}  // namespace

std::unique_ptr<AreaAnalysis> makeFit(const AnalysisGrid& grid, std::shared_ptr<Run> run,
                                      const std::vector<std::unique_ptr<Reference>>& references,
                                      const ResultSet& ofAll, const Analyzed2DRes& map) {
    return std::make_unique<Fit>(grid, std::move(run), references, ofAll, map);
}
