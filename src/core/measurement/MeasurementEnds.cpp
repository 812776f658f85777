// The analyses of an area: how far they are, and their end.

#include <memory>
#include <new>
#include <utility>

#include "absorption/RasterPass.h"
#include "base/LargeMemory.h"
#include "measurement/Display.h"
#include "measurement/FitJudgement.h"
#include "measurement/Measurement.h"
#include "measurement/Revision.h"

void Measurement::rowsTaken() {
    notePercent();
    if (!m_search) {
        m_promised.change(static_cast<quint64>(static_cast<double>(bytesToFill()) *
                                               (1.0 - 0.01 * percentOfPass())));
    }
    if (m_settings.showsEachRow && !m_search) {
        // Large images of many rows would take far longer to show than to fit.
        m_eachRow.spend([this] {
            if (m_analysis->followUp(shownResult())) {
                emit changed(Changes(Results) | Display);
            }
        });
    }
    emit progressed(working(), percentDone(percentOfPass()), 100.0);
}

QPair<int, int> Measurement::rowsDone() const {
    if (!m_analysis) {
        return {};
    }
    return {m_job.rowsTaken(),
            m_parts.isOfShare() ? m_parts.rowsToMake() : m_analysis->grid().raster().rows};
}

double Measurement::percentOfPass() const {
    if (m_parts.isOfShare()) {
        const int rows = m_parts.rowsToMake();
        return rows > 0 ? 100.0 * m_job.rowsTaken() / rows : 100.0;
    }
    AnalysisGrid at = m_analysis->grid();
    at.y = at.raster().y(m_job.rowsTaken() - 1);
    return at.percent();
}

/// How far the run is; its results have nothing of the search for the mean spectrum.
void Measurement::notePercent() {
    if (!m_search && m_job.rowsTaken() > 0) {
        m_analysis->run()->percent = percentOfPass();
    }
}

void Measurement::passEnded(RasterPass::Failure failure) {
    Outcome broken;
    m_parts.passEnded();
    if (m_parts.isOfShare() && failure == RasterPass::Failure::None) {
        shareEnded();
        return;
    }
    if (m_search && failure == RasterPass::Failure::None) {
        try {
            broken = takeMean();
        } catch (const std::bad_alloc&) {
            failure = RasterPass::Failure::Memory;
        }
        if (failure == RasterPass::Failure::None && !broken.failed()) {
            return;
        }
    }
    m_promised.change(0);
    const std::unique_ptr<AreaAnalysis> analysis = std::move(m_analysis);
    Run& run = *analysis->run();
    if (failure != RasterPass::Failure::None) {
        broken = Outcome::failure(failure == RasterPass::Failure::Read ? ofLoad(m_job.problem())
                                  : failure == RasterPass::Failure::NoThread
                                      ? tr("the system gives no thread")
                                      : lackOfMemory());
    }
    Outcome outcome = m_parts.end(failure == RasterPass::Failure::None);
    outcome += broken.failed() ? broken : judgeAfter(run);
    if (failure == RasterPass::Failure::None && !m_search) {
        outcome.warnings += m_saturated.warnings(m_i1, m_i0);
    }
    if (outcome.failed()) {
        if (!broken.failed()) {
            analysis->begin();  // what has been worked out means nothing
        }
        endAsStopped(analysis);
        emit ended(run.work, outcome);
        return;
    }
    analysis->finish();
    applyMask();
    run.state = Run::State::Complete;
    run.percent = 100.0;
    if (run.mean && !m_rehearsal) {
        outcome.notes << tr("E0 of the mean spectrum: %1 eV").arg(run.mean->e0(), 0, 'f', 2);
    }
    if (!m_rehearsal) {
        outcome += analysis->judgement();
    }
    Changes what = Changes(AtWork) | Results | Display | Position;
    if (m_newMap) {
        MapInput input;
        input.calibration = std::make_shared<const Inputs>(run.inputs);
        input.revision = nextRevision();
        m_map = std::move(m_newMap);
        m_mapInput = std::make_shared<const MapInput>(input);
        m_sample.reset();
        what |= Map;
    }
    emit changed(what);
    emit progressed(run.work, 100.0, 100.0);
    emit ended(run.work, outcome);
}

void Measurement::stop() {
    stopRun({});
    stopMapWork({});
}

void Measurement::stopRun(const QString& why) {
    if (!m_analysis) {
        return;
    }
    m_job.stop();
    m_promised.change(0);
    notePercent();
    const std::unique_ptr<AreaAnalysis> analysis = std::move(m_analysis);
    endAsStopped(analysis);
    QStringList text{stoppedText(*analysis->run())};
    if (!why.isEmpty()) {
        text << why;
    }
    Outcome outcome = Outcome::failure(text.join(QStringLiteral(": ")));
    outcome.stopped = true;
    emit ended(analysis->run()->work, outcome);
}

/// The rows done stay; a new energy map does not come into force.
void Measurement::endAsStopped(const std::unique_ptr<AreaAnalysis>& analysis) {
    Run& run = *analysis->run();
    run.state = Run::State::Stopped;
    if (m_search) {
        m_search.reset();
        markOfBefore(run.work);  // its own have not been begun
    } else {
        analysis->stopped();
    }
    applyMask();
    m_newMap.reset();
    if (run.work == Work::Calibrate) {
        m_map->isOfBefore = m_map->image.hasData();
    }
    emit changed(Changes(AtWork) | Results | Display | Position);
    emit progressed(run.work, 100.0, 100.0);
}
