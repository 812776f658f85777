#include "calibration/EnergyShift.h"

#include <QDebug>
#include <algorithm>

#include "base/DebugLog.h"
#include "maps/Analyzed2DRes.h"
#include "spectra/Lanes.h"
#include "spectra/Spectrum.h"

namespace {

constexpr int kRisingEdge = 0;
constexpr double kLargestShift = 40.0;  // eV; farther from the mean it is a glitch

void refreshPicture(Analyzed2DRes* map) {
    map->updateExtremes();
    map->genImg();
}

}  // namespace

double calibrationEdge(const Spectrum* spectrum) {
    return spectrum ? spectrum->findE(kCalibrationLevel, kRisingEdge) : 0.0;
}

bool hasCalibrationEdge(const Spectrum& spectrum) {
    return spectrum.findIndex(kCalibrationLevel, kRisingEdge) >= 0;
}

void calibrate(Analyzed2DRes* map, const AnalysisGrid& grid, const BinValuesAt& edgeAt,
               double standardEdge, const std::function<void(double percent)>& progress) {
    if (grid.width <= 0 || grid.height <= 0) {
        return;
    }
    debugTimed(QStringLiteral("Start Calibration"));
    map->startOver(grid);

    AnalysisGrid at = grid;
    at.start();
    bool newRow = true;
    do {
        if (newRow) {
            qDebug() << "progress" << at.percent();
            if (progress) {
                progress(at.percent());
            }
        }
        // An area narrower than its bin can put the centre beside the image, where there is no
        // spectrum; writing its bin would spread nonsense over the border.
        if (at.isInsideImage(at.x, at.y)) {
            const double* edge = edgeAt(at.x, at.y);
            if (edge != nullptr) {
                map->setData(at.x, at.y, at.halfW, at.halfH, *edge - standardEdge);
            }
        }
    } while (at.step(&newRow));

    refreshPicture(map);
    debugTimed(QStringLiteral("End Calibration   "));
}

std::vector<RasterPass::Evaluate> edgeEvaluators(int threads, const std::vector<double>& energies) {
    const auto evaluate = [energies](const RasterPass::Pack& pack, double* values) {
        double edges[lanes::Count] = {};
        if (energies.empty()) {
            std::copy_n(edges, pack.count, values);
            return RasterPass::Found{};
        }
        lanes::kernels(lanes::bestUnits())
            .risingEdge(pack.mu, energies.data(), static_cast<int>(energies.size()),
                        kCalibrationLevel, edges);
        std::copy_n(edges, pack.count, values);
        return RasterPass::Found{};
    };
    return std::vector<RasterPass::Evaluate>(static_cast<std::size_t>(threads), evaluate);
}

void clearShiftMap(Analyzed2DRes* map) {
    map->startOver(AnalysisGrid());
}

void smoothShiftMap(Analyzed2DRes* map) {
    if (!map || !map->hasData()) {
        return;
    }
    takeSmoothed(map, *smoothedShifts(map->toProcess(), {}));
}

std::optional<Processed> smoothedShifts(const MapToProcess& map, const GoOn& goOn) {
    debugTimed(QStringLiteral("Start Normalize E Shift"));
    return smoothed(map, kLargestShift, goOn);
}

void takeSmoothed(Analyzed2DRes* map, const Processed& made) {
    map->takeProcessed(made);
    map->copyProc2Data();
    refreshPicture(map);
    debugTimed(QStringLiteral("End Normalize E Shift  "));
}

std::function<double(int x, int y)> shiftsOf(const Analyzed2DRes& map) {
    if (!map.hasData()) {
        return [](int, int) { return 0.0; };
    }
    return [values = map.values(), grid = map.grid()](int x, int y) {
        return grid.isInsideImage(x, y) ? values[y * grid.width + x] : 0.0;
    };
}

double shiftAt(const Analyzed2DRes* map, int x, int y) {
    return map ? map->valueAt(x, y) : 0.0;
}
