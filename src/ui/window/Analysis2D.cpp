#include "window/Analysis2D.h"

#include <QCoreApplication>
#include <QDebug>
#include <QString>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "base/DebugLog.h"
#include "maps/Analyzed2DRes.h"
#include "panels/AnalyzeProc.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "spectra/LiveCounts.h"

namespace {

void empty(Analyzed2DRes* result, const AnalysisGrid& grid, int no) {
    result->startOver(grid);
    result->setNo(no);
}

}  // namespace

bool Analysis2D::startLcf(const AnalysisGrid& grid, SpectrumAt spectrumAt, QString* whyNot,
                          const FitPass& fitPass) {
    m_panels = m_analyzer->references().size();
    if (m_panels < 2) {
        *whyNot = QCoreApplication::translate("Analysis2D", "fewer than two reference panels");
        return false;
    }
    m_spectrumAt = std::move(spectrumAt);
    m_grid = grid;
    m_grid.start();
    if (!prepare(m_grid, true)) {
        *whyNot =
            QCoreApplication::translate("Analysis2D", "no point of the area lies inside the image");
        return false;
    }

    m_running = true;
    m_analyzer->setContAccess(true);
    m_reportsToIgnore = m_analyzer->fitsOut();
    m_analyzer->setProgress(0.0);
    logObjectCounts();
    debugTimed(QStringLiteral("2da 1:"));
    m_analyzer->applyScales();
    m_results.clear();
    for (int kind = 0; kind < m_analyzer->imageKinds(); ++kind) {
        for (int r = 0; r < m_panels; ++r) {
            Analyzed2DRes* result = m_analyzer->references().at(r)->result(kind);
            empty(result, grid, m_panels * kind + r);
            m_results.append(result);
        }
    }
    debugTimed(QStringLiteral("2da 2:"));
    if (!startPass(fitPass)) {
        handOverPrepared();
    }
    return true;
}

bool Analysis2D::startPass(const FitPass& fitPass) {
    if (!fitPass) {
        return false;
    }
    const QVector<XafsSpectrum> references = m_analyzer->freezeReferences(&m_passPanels);
    if (!references.isEmpty()) {
        m_pass = fitPass(references, m_analyzer->method());
        m_hasNext = false;
    }
    return m_pass != nullptr;
}

void Analysis2D::recordRow(const RasterPass::Row& row) {
    const BinRaster& raster = m_pass->raster();
    const int references = static_cast<int>(m_passPanels.size());
    const int y = raster.y(row.row);
    m_grid.y = y;
    // One image after the other, so that each is written along its rows.
    for (int kind = 0; kind < m_analyzer->imageKinds(); ++kind) {
        for (int u = 0; u < references; ++u) {
            const int image = m_panels * kind + m_passPanels[static_cast<std::size_t>(u)];
            const double* value = row.values + kind * references + u;
            for (int column = 0; column < raster.columns; ++column) {
                m_results[image]->setData(raster.x(column), y, m_grid.halfW, m_grid.halfH, *value);
                value += 2 * references;
            }
        }
    }
}

Analysis2D::Progress Analysis2D::lcfRowsReady() {
    if (!m_pass) {
        return Progress::Idle;
    }
    bool pending = false;
    for (;;) {
        const RasterPass::Row row = m_pass->tryTake(&pending);
        if (row.values == nullptr) {
            break;
        }
        recordRow(row);
    }
    m_analyzer->setProgress(m_grid.percent());
    if (pending) {
        return Progress::NewRow;
    }
    if (m_pass->failed()) {
        idle();
        return Progress::OutOfMemory;
    }
    const BinRaster raster = m_pass->raster();
    m_pass.reset();
    m_grid.x = raster.x(raster.columns - 1);
    m_analyzer->analyzeSpectrum(m_spectrumAt(m_grid.x, m_grid.y));
    return Progress::NewRow;
}

bool Analysis2D::prepare(AnalysisGrid grid, bool atFirst) {
    Point& point = m_points[m_prepared];
    point.newRow = false;
    for (;;) {
        if (!atFirst) {
            bool begun = false;
            if (!grid.step(&begun)) {
                return false;
            }
            point.newRow = point.newRow || begun;
        }
        atFirst = false;
        point.spectrum = m_spectrumAt(grid.x, grid.y);
        if (!point.spectrum.isEmpty()) {
            point.grid = grid;
            return true;
        }
    }
}

void Analysis2D::handOverPrepared() {
    const Point& point = m_points[m_prepared];
    m_grid = point.grid;
    AnalysisGrid ahead = m_grid;
    bool newRow = false;
    const bool isLast = !ahead.step(&newRow);
    m_analyzer->analyzePoint(point.spectrum, isLast);
    // While the fitter works on this one.
    m_prepared = (m_prepared + 1) % std::size(m_points);
    m_hasNext = prepare(m_grid, false);
}

Analysis2D::Progress Analysis2D::lcfPointReported() {
    if (!m_running) {
        return Progress::Idle;
    }
    if (m_reportsToIgnore > 0) {  // of a fit that was under way when the analysis started
        --m_reportsToIgnore;
        return Progress::SamePoint;
    }
    recordPoint();
    if (!m_hasNext) {
        return Progress::Finished;
    }
    const bool newRow = m_points[m_prepared].newRow;
    handOverPrepared();
    if (!newRow) {
        return Progress::NextPoint;
    }
    m_analyzer->setProgress(m_grid.percent());
    return Progress::NewRow;
}

void Analysis2D::recordPoint() {
    const AnalyzeProc* worker = m_analyzer->worker();
    const std::vector<int>& used = worker->usedPanels();
    const std::size_t n = std::min({used.size(), worker->ratios().size(), worker->dMuts().size()});
    for (std::size_t u = 0; u < n; ++u) {
        const int r = used[u];
        if (r < m_panels && r + m_panels < m_results.size()) {
            m_results[r]->setData(m_grid.x, m_grid.y, m_grid.halfW, m_grid.halfH,
                                  worker->dMuts()[u]);
            m_results[r + m_panels]->setData(m_grid.x, m_grid.y, m_grid.halfW, m_grid.halfH,
                                             worker->ratios()[u]);
        }
    }
}

void Analysis2D::generateLcfImages() {
    qDebug() << "generate res images" << m_results.size();
    for (Analyzed2DRes* result : qAsConst(m_results)) {
        result->genImg();
    }
}

void Analysis2D::idle() {
    m_running = false;
    m_pass.reset();
    for (Point& point : m_points) {
        point.spectrum = XafsSpectrum();
    }
    m_spectrumAt = nullptr;
    m_analyzer->setContAccess(false);
}

void Analysis2D::endLcf() {
    idle();
    m_analyzer->setProgress(100.0);
    debugTimed(QStringLiteral("2da 3:"));
    logObjectCounts();
}

void Analysis2D::stopLcf() {
    if (m_running) {
        idle();
        debugTimed(QStringLiteral("2da 4:"));
    }
}

void Analysis2D::runRa(const AnalysisGrid& grid, const BinValuesAt& curvesAt,
                       const std::function<void(double)>& progress) {
    const double factor = m_analyzer->raFactor();
    Analyzed2DRes* dmutImage = m_analyzer->raDmut();
    Analyzed2DRes* restImage = m_analyzer->raRest();
    m_analyzer->applyScales();
    for (Analyzed2DRes* result : {dmutImage, restImage, m_analyzer->raRatio()}) {
        empty(result, grid, -1);
    }
    AnalysisGrid current = grid;
    forEachPoint(
        grid,
        [&](int x, int y) {
            const double* curves = curvesAt(x, y);
            if (curves == nullptr) {
                return;
            }
            const double pre = curves[0];
            const double dmut = curves[1] - pre;
            dmutImage->setData(x, y, grid.halfW, grid.halfH, dmut);
            restImage->setData(x, y, grid.halfW, grid.halfH, pre - factor * dmut);
        },
        [&](int row) {
            qDebug() << row;
            current.y = row;
            progress(current.percent());
        });
}

void Analysis2D::generateRaImages() {
    Analyzed2DRes* dmut = m_analyzer->raDmut();
    Analyzed2DRes* rest = m_analyzer->raRest();
    Analyzed2DRes* ratio = m_analyzer->raRatio();
    const int width = rest->grid().width;
    const int height = rest->hasData() ? rest->grid().height : 0;
    double lowest = 1e300;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double value = rest->valueAt(x, y);
            lowest = std::isfinite(value) && value < lowest ? value : lowest;
        }
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double b = rest->valueAt(x, y) - lowest;
            ratio->setData(x, y, 0, 0, b / (dmut->valueAt(x, y) + b));
        }
    }
    for (Analyzed2DRes* result : {dmut, rest, ratio}) {
        result->genImg();
    }
}
